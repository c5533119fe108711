// The desktop's colour chooser.
#pragma once

#include "MacTypes.h"

// Lets the user pick a colour, starting from *inColor, in a modal dialog titled with the prompt.
// where: ignored, the desktop places it. True and *outColor when one was chosen; else false and
// *outColor as it was.
TB_EXPORT Boolean GetColor(Point where, ConstStr255Param prompt, const RGBColor* inColor,
                           RGBColor* outColor);
