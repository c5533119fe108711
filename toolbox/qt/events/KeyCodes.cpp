#include "Input.h"

#include <QKeyEvent>

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
    {0, Qt::Key_A, 0},
    {1, Qt::Key_S, 0},
    {2, Qt::Key_D, 0},
    {3, Qt::Key_F, 0},
    {4, Qt::Key_H, 0},
    {5, Qt::Key_G, 0},
    {6, Qt::Key_Z, 0},
    {7, Qt::Key_X, 0},
    {8, Qt::Key_C, 0},
    {9, Qt::Key_V, 0},
    {11, Qt::Key_B, 0},
    {12, Qt::Key_Q, 0},
    {13, Qt::Key_W, 0},
    {14, Qt::Key_E, 0},
    {15, Qt::Key_R, 0},
    {16, Qt::Key_Y, 0},
    {17, Qt::Key_T, 0},
    {18, Qt::Key_1, 0},
    {19, Qt::Key_2, 0},
    {20, Qt::Key_3, 0},
    {21, Qt::Key_4, 0},
    {22, Qt::Key_6, 0},
    {23, Qt::Key_5, 0},
    {25, Qt::Key_9, 0},
    {26, Qt::Key_7, 0},
    {27, Qt::Key_Minus, 0},
    {28, Qt::Key_8, 0},
    {29, Qt::Key_0, 0},
    {31, Qt::Key_O, 0},
    {32, Qt::Key_U, 0},
    {34, Qt::Key_I, 0},
    {35, Qt::Key_P, 0},
    {37, Qt::Key_L, 0},
    {38, Qt::Key_J, 0},
    {40, Qt::Key_K, 0},
    {43, Qt::Key_Comma, 0},
    {44, Qt::Key_Slash, 0},
    {45, Qt::Key_N, 0},
    {46, Qt::Key_M, 0},
    {47, Qt::Key_Period, 0},
};

const KeyCode* FindKey(int key) {
  for (const KeyCode& entry : KEY_CODES) {
    if (entry.key == key)
      return &entry;
  }
  return nullptr;
}

} // namespace

int VirtualKeyCode(int key, bool keypad) {
  if (key == Qt::Key_Return && keypad)
    return kEnterKeyCode;
  const KeyCode* entry = FindKey(key);
  return entry != nullptr ? entry->virtualCode : -1;
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
