// Styles as JSON: the same fields under their names, lossless both ways.
#pragma once

#include <string>
#include <string_view>

#include "LM_height_source.h"
#include "LM_style.h"

// Reads the JSON form. Fields that are not there keep the values of a new style, or of a new light.
// False, with `why` naming the field or the place in the text, when it is no JSON, a field is
// unknown or out of range, there is no light, or there are more than LM_MAX_LIGHTS. Depth and size
// of the text cost no memory. relief: where the style's heights come from, for callers who can
// prepare them; those who give none have the style's channel.
bool LM_StyleFromJson(std::string_view text, LM_style& style, std::string& why,
                      LM_height_source* relief = nullptr);

// The JSON form of a style's settings and whole lights, one field a line, with a final newline; of
// the relief what is not usual. It has no file.
std::string LM_StyleToJson(const LM_style& style, const LM_height_source& relief = {});
