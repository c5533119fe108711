// The Dialog Manager: windows built from resources, and the loop that runs them.
//
// A dialog is resource 'DLOG':
//
//   { "title": "Lighting", "size": [620, 420],
//     "items": [
//       { "number": 1, "kind": "button", "title": "OK", "box": [530, 380, 80, 24] },
//       { "number": 2, "kind": "checkBox", "title": "On", "box": [300, 20, 90, 18], "value": 1 },
//       { "number": 3, "kind": "userItem", "name": "Preview", "box": [20, 20, 280, 280] },
//       { "number": 4, "kind": "popup", "choices": ["Omni", "Spot"], "box": [300, 50, 120, 22] },
//       { "number": 5, "kind": "control", "definition": "SliderControl", "title": "Gloss",
//         "min": 0, "max": 255, "value": 0, "refCon": [134, 60], "box": [300, 80, 200, 30] },
//       { "number": 6, "kind": "editText", "title": "text to begin with", "box": [20, 20, 200, 24]
//       }, { "number": 7, "kind": "staticText", "title": "Replace “^0”?", "box": [20, 60, 200, 40]
//       } ] }
//
// size: width and height of the content. box: left, top, width, height, within it. Items are
// numbered from 1 without a gap, in any order. kind: button, checkBox, popup, control, editText,
// staticText or userItem. What may be given besides:
//   value, min, max   of a control; a check box has 0, 0, 1 of itself
//   choices           of a popup: its texts
//   titleWidth        of a popup: the part of its box, at the left, that its title is drawn in
//   definition        of a control: the name it was registered under
//   refCon            of a control: [high 16 bits, low 16 bits], else 0
//   enabled           false: clicks are not reported. Static texts are so unless they say true
//   name              what the item is called where a title is not drawn (user items, popups)
//   role              "picture": a user item that shows something, and is not pressed
//   small             true: a static text in font 1, size 9
//   align             of a static text: left, center or right
// Unknown members are ignored. Texts have ^0 to ^3 replaced when they are drawn. Another language's
// file may change any member.
#pragma once

#include "Controls.h"
#include "Events.h"
#include "MacDialogs.h"
#include "MacWindows.h"

// Draws a user item; the dialog's port is current.
typedef void (*UserItemUPP)(DialogPtr dialog, int16_t item);

// Item types. A control's is ctrlItem + a control kind. itemDisable: clicks are not reported.
enum {
  userItem = 0,
  ctrlItem = 4,
  btnCtrl = 0,
  chkCtrl = 1,
  resCtrl = 3,
  statText = 8,
  editText = 16,
  itemDisable = 128
};
// Item numbers of OK and Cancel.
enum { kOKItem = 1, kCancelItem = 2 };

// Builds a dialog from its resource: not shown, its controls made, nothing drawn. storage, behind:
// ignored; it opens in front of all windows. Null when there is no such resource, it makes no
// sense, a control definition is unknown, or the program has no desktop.
TB_EXPORT DialogPtr GetNewDialog(int16_t dialogID, void* storage, WindowPtr behind);
// Releases the dialog with its controls and popup menus, except menus disposed of before.
TB_EXPORT void DisposeDialog(DialogPtr dialog);

// Erases to the background and draws every item, in the order of their numbers.
TB_EXPORT void DrawDialog(DialogPtr dialog);
// The same within a region of the dialog's port, and nothing outside it.
TB_EXPORT void UpdateDialog(DialogPtr dialog, RgnHandle updateRegion);

// An item's type; its control, its UserItemUPP (or null), or its text's handle; its rectangle. Any
// of the three may be null. An item that does not exist has type 0, null and an empty rectangle.
TB_EXPORT void GetDialogItem(DialogPtr dialog, int16_t item, int16_t* itemType, Handle* itemHandle,
                             Rect* box);
// Sets all three. Of a control item the handle is ignored, and the control moves with the
// rectangle. Redraws nothing.
TB_EXPORT void SetDialogItem(DialogPtr dialog, int16_t item, int16_t itemType, Handle itemHandle,
                             const Rect* box);
inline Handle ItemHandleOf(UserItemUPP procedure) {
  return reinterpret_cast<Handle>(procedure);
}
inline ControlHandle ItemControlOf(Handle itemHandle) {
  return reinterpret_cast<ControlHandle>(itemHandle);
}
// The number less one of the first item whose rectangle holds the point (in the dialog's port), -1
// for none. Disabled items are found too.
TB_EXPORT int16_t FindDialogItem(DialogPtr dialog, Point point);

// What an edit field holds, by the handle that GetDialogItem answered for that item. Another handle
// has an empty text and is never written to.
TB_EXPORT void GetDialogItemText(Handle itemHandle, Str255 text);
TB_EXPORT void SetDialogItemText(Handle itemHandle, ConstStr255Param text);
// Selects characters from start up to end of an edit field and gives it the keyboard; 0 to 32767
// selects all.
TB_EXPORT void SelectDialogItemText(DialogPtr dialog, int16_t item, int16_t start, int16_t end);

// Draws a button item pressed for an eighth of a second.
TB_EXPORT void FlashDialogButton(DialogPtr dialog, int16_t item);

// Runs the front dialog until an enabled item is hit, and answers its number.
//
// Every event goes to the filter first (null for none), with *itemHit 0; when that answers non-zero
// the call ends with the item it set. Else: a click in a control tracks it, and hits it when it is
// released inside (an indicator: when its value changed; a popup: when something was chosen); a
// click in another item hits it as the button goes down; Return and Enter press item 1, Escape and
// Command-period item 2, where those are active buttons. Keys typed into an edit field go to it
// alone, but for Return, Enter, Escape, Tab and those with Command-period. F6, and Tab where the
// filter leaves it, give the keyboard to the next item, with Shift to the one before; there Space
// hits it, and arrow keys, Page Up, Page Down, Home and End change a control that has a range and
// hit it. Assistive programs hit items in the same way. Closing the window, or the program, hits
// item 2, or item 1 in a dialog without a button 2, again at every call. -1 when no dialog is open.
TB_EXPORT void ModalDialog(ModalFilterUPP filter, int16_t* itemHit);
