// Colours as people write them.
#pragma once

#include <string>
#include <string_view>

#include "LM_types.h"

// Reads "#ff8800", "#f80", a name of CSS, "255,136,0/255" or "65535,34952,0". Three numbers that do
// not say what is full are of 65535, unless none is above 255: they could be meant either way, and
// are refused. False, with `why` telling what is wrong.
bool LM_ReadColor(std::string_view text, LM_color48& color, std::string& why);
