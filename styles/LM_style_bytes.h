// Styles in either form: a style file's bytes, or JSON.
#pragma once

#include <cstddef>
#include <string>

#include "LM_height_source.h"
#include "LM_style.h"

// A style's file is never longer: far above what sixteen lights need in JSON, far below what could
// hurt.
constexpr size_t LM_LONGEST_STYLE_FILE = 1 << 20;

// Reads a style from the whole content of a file. What begins with a brace, or with a byte order
// mark, is JSON, anything else a style file. The answer, `why` and `relief` are those of
// LM_StyleFromJson or LM_DecodeStyle.
bool LM_StyleFromBytes(const uint8_t* bytes, size_t size, LM_style& style, std::string& why,
                       LM_height_source* relief = nullptr);
