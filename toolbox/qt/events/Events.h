// The mouse, the keys, and the queue of events.
//
// Every call here lets the desktop's own events run, so windows are repainted and timers fire
// during a drag. Nothing spins: StillDown waits a moment for something to happen before it answers.
// Option, Command and Shift are the Alt, Ctrl and Shift keys.
#pragma once

#include "MacTypes.h"

struct GrafPort;

enum { nullEvent = 0, mouseDown = 1, mouseUp = 2, keyDown = 3, autoKey = 5, updateEvt = 6 };

// EventRecord.modifiers. btnState is set while the button is up.
enum { btnState = 0x0080, cmdKey = 0x0100, shiftKey = 0x0200, optionKey = 0x0800 };

// EventRecord.message of a key event: the virtual key code in bits 8 to 15, the character in 0
// to 7.
enum { charCodeMask = 0x000000FF, keyCodeMask = 0x0000FF00 };

// Virtual key codes and characters that programs ask for.
enum {
  kReturnKeyCode = 36,
  kTabKeyCode = 48,
  kDeleteKeyCode = 51,
  kEscapeKeyCode = 53,
  kCommandKeyCode = 55,
  kShiftKeyCode = 56,
  kOptionKeyCode = 58,
  kEnterKeyCode = 76,
  kForwardDeleteKeyCode = 117,
  kLeftArrowKeyCode = 123,
  kRightArrowKeyCode = 124,
  kDownArrowKeyCode = 125,
  kUpArrowKeyCode = 126,
  kEnterCharCode = 3,
  kReturnCharCode = 13,
  kEscapeCharCode = 27
};

struct EventRecord {
  uint16_t what;
  uint32_t message; // the window of an update event is in FrontWindow's place: see UpdateDialog
  uint32_t when;    // in ticks
  Point where;      // in global coordinates
  uint16_t modifiers;
};

// Bit (code & 7) of byte (code / 8) is set while the key of that virtual code is held.
typedef uint8_t KeyMap[16];
inline bool KeyIsDown(const KeyMap keys, short code) {
  return ((keys[(code >> 3) & 15] >> (code & 7)) & 1) != 0;
}

// True until the button that went down last is released. After the release, and until the next
// event is taken from the queue, GetMouse and GetKeys answer what held at the moment of release.
// Also false once the drag cannot go on: its window or the host's closes, or the program quits.
TB_EXPORT Boolean StillDown();
// In the current port's coordinates.
TB_EXPORT void GetMouse(Point* mouse);
TB_EXPORT void GetKeys(KeyMap keys);

// Puts a drag into the queue, from one point of the window's port to another, as if the mouse had
// made it with no key held: for programs that can be used without a mouse.
TB_EXPORT void TB_PostDrag(GrafPort* window, Point from, Point to);
