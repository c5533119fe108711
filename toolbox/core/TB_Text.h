// Decoding of UTF-8 that may be damaged.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "MacTypes.h"

// Decoded in place of a byte that is no part of a character: this plus the byte.
constexpr char32_t TB_STRAY_BYTE = 0x110000;

struct TB_Character {
  char32_t code;
  size_t length; // in bytes, 0 only at the end of the text
};

// The character at the start of text.
TB_EXPORT TB_Character TB_FirstCharacter(std::string_view text);

// Text that may hold a stranger's file name, safe for a terminal: control characters, except
// `kept`, and bytes that are not UTF-8 become question marks.
TB_EXPORT std::string TB_Printable(std::string_view text, char32_t kept = TB_STRAY_BYTE);
