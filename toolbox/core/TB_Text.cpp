#include "TB_Text.h"

#include <array>

TB_Character TB_FirstCharacter(std::string_view text) {
  if (text.empty())
    return {0, 0};
  auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const char32_t first = byte(0);
  if (first < 0x80)
    return {first, 1};
  const TB_Character stray{TB_STRAY_BYTE + first, 1};
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length)
    return stray;
  char32_t code = first & (0x7FU >> length);
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80)
      return stray;
    code = code << 6 | (byte(i) & 0x3FU);
  }
  constexpr std::array<char32_t, 5> SMALLEST{0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < SMALLEST[length] || surrogate || code > 0x10FFFF)
    return stray;
  return {code, length};
}

std::string TB_Printable(std::string_view text, char32_t kept) {
  std::string printable;
  while (!text.empty()) {
    const TB_Character next = TB_FirstCharacter(text);
    const bool control = next.code < 0x20 || (next.code >= 0x7F && next.code < 0xA0);
    const bool harmful = (control && next.code != kept) || next.code >= TB_STRAY_BYTE;
    printable += harmful ? std::string_view("?") : text.substr(0, next.length);
    text.remove_prefix(next.length);
  }
  return printable;
}
