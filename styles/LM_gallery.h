// The styles that the program carries.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "LM_style.h"

// Names of the bundled styles, in alphabetical order, the default style first.
std::vector<std::string> LM_BundledStyleNames();

// The bundled style of that name, ignoring case and diacritical marks. False when there is none.
bool LM_BundledStyle(std::string_view name, LM_style& style);
