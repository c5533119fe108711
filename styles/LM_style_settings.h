// Styles and the settings object.
#pragma once

#include "LM_style_lighting.h"

class LM_globals;

// Replaces the settings with the style's, its lights moved into the present preview. False, and
// nothing changed, when the style has no whole light.
bool LM_ApplyStyle(const LM_style& style, LM_globals& globals);

// The style that saving the present settings gives.
LM_style LM_StyleOfSettings(const LM_globals& globals);
