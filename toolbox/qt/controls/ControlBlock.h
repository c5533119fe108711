// Controls behind their handles, and the definitions that come with the layer. Private to it.
#pragma once

#include "Controls.h"

#include <string_view>

// A control with its master pointer and its auxiliary record.
struct ControlBlock {
  ControlRecord* master;
  ControlRecord record;
  AuxCtlRec auxiliary;
  AuxCtlRec* auxiliaryMaster;
  Handle ownDefinition; // what contrlDefProc was at first
  short definitionNumber;
  short toldLeast; // see TB_TellControlBetween
  short toldMost;
};

inline ControlBlock& BlockOf(ControlHandle control) {
  return *reinterpret_cast<ControlBlock*>(control);
}

constexpr short STANDARD_BUTTON_DEFINITION = 0;
constexpr short POPUP_DEFINITION = 63;

// Null for a number or name that nobody registered.
ControlDefProcPtr FindControlDefinition(short number);
// -1 for none.
short ControlDefinitionNumber(std::string_view name);

int32_t StandardButtonDefinition(short varCode, ControlHandle control, short message,
                                 intptr_t param);
int32_t PopupDefinition(short varCode, ControlHandle control, short message, intptr_t param);

// bounds in the window's port. Null when the definition is unknown or memory is short.
ControlHandle NewControl(WindowPtr window, const Rect* bounds, ConstStr255Param title, short value,
                         short minimum, short maximum, short procID, intptr_t refCon);
void DisposeControl(ControlHandle control);
short GetControlMinimum(ControlHandle control);
// Who is told of every change of a control's value; null for nobody.
typedef void (*ControlListener)(ControlHandle control);
// Returns the one before.
ControlListener ListenToControls(ControlListener listener);

// Sends a message to the control's definition with its window's port current.
int32_t SendToControl(ControlHandle control, short message, intptr_t param);
// The part at a point, whatever the highlighting.
short PartAt(ControlHandle control, Point point);
// The menu of a popup, or null.
MenuHandle PopupMenuOf(ControlHandle control);
// Lets the user choose from a popup's menu and sets its value. inMenu, or 0 when nothing was
// chosen.
short TrackPopup(ControlHandle control);
// Draws a control's part (0: all, erased first, so that no older drawing shines through) when it is
// visible.
void DrawControlPart(ControlHandle control, short part);

inline bool IsVisible(ControlHandle control) {
  return (**control).contrlVis != 0;
}
inline bool IsActive(ControlHandle control) {
  return (**control).contrlHilite != 255;
}
