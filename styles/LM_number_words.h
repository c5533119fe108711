// Numbers in words, whatever the locale.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

// False where the text is anything but one whole number that the type holds.
template <std::integral Integer>
bool LM_ReadInteger(std::string_view text, Integer& value, int base = 10) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  return error == std::errc() && end == text.data() + text.size();
}

#ifdef __cpp_lib_to_chars

// False where the text is anything but one number.
inline bool LM_ReadFraction(std::string_view text, double& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// The shortest text that gives the same number again; large ones with a power of ten.
inline std::string LM_ShortText(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

// The same of a length, never with a power.
inline std::string LM_ShortFixed(float value) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr};
}

#else // libc++ knows whole numbers alone. WebAssembly, which it is for, has one locale.

inline bool LM_ReadFraction(std::string_view text, double& value) {
  const std::string ended(text);
  char* end = nullptr;
  value = std::strtod(ended.c_str(), &end);
  return !ended.empty() && end == ended.c_str() + ended.size();
}

inline std::string LM_ShortText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.15g", value);
  return text;
}

inline std::string LM_ShortFixed(float value) {
  char text[128];
  for (int digits = 0; digits <= 50; ++digits) {
    std::snprintf(text, sizeof text, "%.*f", digits, static_cast<double>(value));
    if (std::strtof(text, nullptr) == value)
      break;
  }
  return text;
}

#endif
