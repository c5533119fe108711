// Styles as JSON: the same fields under their names, lossless both ways.
#pragma once

#include <string>
#include <string_view>

#include "LM_style.h"

// Reads the JSON form. Fields that are not there keep the values of a new style, or of a new light.
// False, with `why` naming the field or the place in the text, when it is no JSON, a field is
// unknown or out of range, there is no light, or there are more than LM_MAX_LIGHTS. Depth and size
// of the text cost no memory.
bool LM_StyleFromJson(std::string_view text, LM_style& style, std::string& why);

// The JSON form of a style's settings and whole lights, one field a line, with a final newline.
std::string LM_StyleToJson(const LM_style& style);
