#include "guard.h"

#include "MacStrings.h"
#include "TB_Text.h"

#include <string_view>

namespace limn {

void Report(limn_error* error, limn_result code, const char* text) noexcept {
  if (error == nullptr)
    return;
  error->code = code;
  size_t length = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const TB_Character next = TB_FirstCharacter(rest);
    const std::string_view shown =
        next.code < TB_STRAY_BYTE ? rest.substr(0, next.length) : "\uFFFD";
    if (length + shown.size() >= sizeof error->text)
      break;
    length += shown.copy(error->text + length, shown.size());
    rest.remove_prefix(next.length);
  }
  error->text[length] = '\0';
}

void NeedPointer(const void* pointer, const char* name) {
  if (pointer == nullptr)
    throw CallFailure{LIMN_BAD_ARGUMENT, std::string(name) + ": it is a null pointer"};
}

size_t CopyText(const std::string& text, char* buffer, size_t room) noexcept {
  if (buffer != nullptr && room > 0) {
    buffer[TB_CutUTF8(text, room - 1).copy(buffer, room - 1)] = '\0';
  }
  return text.size();
}

} // namespace limn
