#include "guard.h"

#include <algorithm>
#include <cstring>

namespace limn {
namespace {

// How much of the text fits without splitting a character of UTF-8.
size_t FittingLength(const char* text, size_t length, size_t room) {
  if (length <= room)
    return length;
  size_t end = room;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
    --end;
  return end;
}

} // namespace

void Report(limn_error* error, limn_result code, const char* text) noexcept {
  if (error == nullptr)
    return;
  error->code = code;
  const size_t length = FittingLength(text, std::strlen(text), sizeof error->text - 1);
  std::memcpy(error->text, text, length);
  error->text[length] = '\0';
}

void NeedPointer(const void* pointer, const char* name) {
  if (pointer == nullptr)
    throw CallFailure{LIMN_BAD_ARGUMENT, std::string(name) + ": it is a null pointer"};
}

size_t CopyText(const std::string& text, char* buffer, size_t room) noexcept {
  if (buffer != nullptr && room > 0) {
    const size_t length = FittingLength(text.data(), text.size(), room - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
  }
  return text.size();
}

} // namespace limn
