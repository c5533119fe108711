// Sources of heights in words, as the JSON form and the command line have them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "LM_height_source.h"

// Takes a word such as "luminance", or a channel's number in digits. False, and nothing set, for
// any other.
bool LM_SetHeightSource(LM_height_source& source, std::string_view word);

// All words, to be told after "it is": "auto, luminance, … or none".
std::string LM_HeightSourceWords();

// Sets smoothing, detail, fit, invert or, as a channel's number, source. False, with `why` saying
// what it takes.
bool LM_SetHeightNumber(LM_height_source& source, std::string_view key, int64_t value,
                        std::string& why);

// The object of the JSON form, without what is usual; empty for the channel that a style names, or
// a file.
std::string LM_HeightSourceToJson(const LM_height_source& source);
