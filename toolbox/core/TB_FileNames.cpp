#include "TB_FileNames.h"

#include "TB_Text.h"

#include <array>

namespace {

constexpr size_t LONGEST_FILE_NAME = 255;
constexpr std::string_view DIGITS = "0123456789ABCDEF";

bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// The byte that "%XY" at the start of text stands for, when it is one that gets escaped at all.
std::optional<char> EscapeAt(std::string_view text) {
  if (text.size() < 3 || text[0] != '%')
    return std::nullopt;
  const size_t high = DIGITS.find(text[1]);
  const size_t low = DIGITS.find(text[2]);
  if (high == std::string_view::npos || low == std::string_view::npos)
    return std::nullopt;
  const auto byte = static_cast<unsigned char>(high * 16 + low);
  const bool escaped = byte < 0x20 || byte >= 0x7F || byte == '/' || byte == '.' || byte == '%';
  return escaped ? std::optional<char>(static_cast<char>(byte)) : std::nullopt;
}

void AppendEscaped(std::string_view bytes, std::string* to) {
  for (char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    *to += {'%', DIGITS[value / 16], DIGITS[value % 16]};
  }
}

} // namespace

std::optional<std::string> TB_FileNameFor(std::string_view name) {
  const bool dots = name == "." || name == "..";
  std::string fileName;
  for (std::string_view rest = name; !rest.empty();) {
    const TB_Character next = TB_FirstCharacter(rest);
    const std::string_view bytes = rest.substr(0, next.length);
    const bool harmful = next.code == '/' || IsControl(next.code) || next.code >= TB_STRAY_BYTE ||
                         (dots && rest.size() == name.size());
    if (harmful || EscapeAt(rest))
      AppendEscaped(bytes, &fileName);
    else
      fileName += bytes;
    rest.remove_prefix(next.length);
  }
  if (fileName.empty() || fileName.size() > LONGEST_FILE_NAME)
    return std::nullopt;
  return fileName;
}

std::optional<std::string> TB_NameForFile(std::string_view fileName) {
  std::string name;
  for (size_t at = 0; at < fileName.size();) {
    const std::optional<char> byte = EscapeAt(fileName.substr(at));
    name += byte.value_or(fileName[at]);
    at += byte ? 3 : 1;
  }
  if (TB_FileNameFor(name) != fileName)
    return std::nullopt;
  return name;
}
