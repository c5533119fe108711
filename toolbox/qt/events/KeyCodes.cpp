#include "Input.h"

#include <QKeyEvent>
#include <string_view>

namespace {

struct KeyCode {
  int virtualCode;
  int key;
  uint8_t character; // 0: what the key types
};

constexpr KeyCode KEY_CODES[] = {
    {kReturnKeyCode, Qt::Key_Return, kReturnCharCode},
    {kTabKeyCode, Qt::Key_Tab, 9},
    {kTabKeyCode, Qt::Key_Backtab, 9},
    {kDeleteKeyCode, Qt::Key_Backspace, 8},
    {kEscapeKeyCode, Qt::Key_Escape, kEscapeCharCode},
    {kCommandKeyCode, Qt::Key_Control, 0},
    {kShiftKeyCode, Qt::Key_Shift, 0},
    {kOptionKeyCode, Qt::Key_Alt, 0},
    {kEnterKeyCode, Qt::Key_Enter, kEnterCharCode},
    {kForwardDeleteKeyCode, Qt::Key_Delete, 127},
    {115, Qt::Key_Home, 1},
    {119, Qt::Key_End, 4},
    {116, Qt::Key_PageUp, 11},
    {121, Qt::Key_PageDown, 12},
    {123, Qt::Key_Left, 28},
    {124, Qt::Key_Right, 29},
    {126, Qt::Key_Up, 30},
    {125, Qt::Key_Down, 31},
    {49, Qt::Key_Space, ' '},
};

// Keys that type what they are called, by their virtual codes from 0; x where there is none.
constexpr std::string_view TYPING_KEYS = "ASDFHGZXCVxBQWERYT123465x97-80xOUxIPxLJxKxx,/NM.";

const KeyCode* FindKey(int key) {
  for (const KeyCode& entry : KEY_CODES) {
    if (entry.key == key)
      return &entry;
  }
  return nullptr;
}

} // namespace

int VirtualKeyCode(int key) {
  if (const KeyCode* entry = FindKey(key))
    return entry->virtualCode;
  const bool isTyping = key > ' ' && key <= 'Z';
  return isTyping ? static_cast<int>(TYPING_KEYS.find(static_cast<char>(key))) : -1;
}

uint8_t CharacterOf(const QKeyEvent& event) {
  const KeyCode* entry = FindKey(event.key());
  if (entry != nullptr && entry->character != 0)
    return entry->character;
  const QString text = event.text();
  if (text.size() == 1 && text[0].unicode() >= 32 && text[0].unicode() < 127)
    return static_cast<uint8_t>(text[0].unicode());
  // With Command held a key types a control character or nothing; its own is meant.
  const int key = event.key();
  if (key < 32 || key > 126)
    return 0;
  const bool capital = event.modifiers().testFlag(Qt::ShiftModifier) || key < 'A' || key > 'Z';
  return static_cast<uint8_t>(capital ? key : key - 'A' + 'a');
}
