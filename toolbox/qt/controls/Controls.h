// The Control Manager: controls, and the definition procedures that draw and track them.
//
// Buttons (definition 0, variants 0 and 1: push button, check box) and popups
// (definition 63) are drawn in the desktop's own style with the current port's font, size and face.
// A program registers further definitions by number and name. A control's definition can be
// wrapped: put another handle made by NewControlDefinition into contrlDefProc, and call the one
// that was there with CallControlDefinition.
#pragma once

#include "MacMemory.h"
#include "Menus.h"
#include "QDPorts.h"
#include "QDRegions.h"

struct ControlRecord;
typedef ControlRecord** ControlHandle;

typedef void (*ControlActionProcPtr)(ControlHandle control, short part);

// A definition procedure. param and the result depend on the message, below.
typedef int32_t (*ControlDefProcPtr)(short varCode, ControlHandle control, short message,
                                     intptr_t param);

enum {
  drawCntl = 0,     // param: part to draw in its low 16 bits, 0 for all, 129 for all that moves
  testCntl = 1,     // param: a point, v in bits 16 to 31, h in 0 to 15; result: its part, or 0
  calcCRgns = 2,    // param: region to store into; the highest bit chooses which
  initCntl = 3,     // the record is filled in; make contrlData
  dispCntl = 4,     // release it
  posCntl = 5,      // param: the indicator was moved by (v, h), packed as a point
  dragCntl = 7,     // param: 0 for the whole control, else the indicator; drag it
  calcCntlRgn = 10, // param: region to store the control's outline into
  calcThumbRgn = 11 // param: region to store the indicator's outline into
};
// The highest bit of calcCRgns' param.
constexpr intptr_t kCalcRegionHighBit = INTPTR_MIN;

struct ControlRecord {
  ControlHandle nextControl;
  WindowPtr contrlOwner;
  Rect contrlRect;
  uint8_t contrlVis;    // 255 visible, 0 hidden
  uint8_t contrlHilite; // part drawn pressed; 0 none, 255 inactive
  short contrlValue;
  short contrlMin;
  short contrlMax;
  Handle contrlDefProc; // made by NewControlDefinition; may be replaced
  Handle contrlData;    // the definition's own
  intptr_t contrlRfCon;
  Str255 contrlTitle;
  short varCode;
};

// What hangs on a control for its owner's use, such as the definition that a wrapper replaced.
struct AuxCtlRec {
  intptr_t acRefCon;
};
typedef AuxCtlRec** AuxCtlHandle;
// Lives as long as the control. False without a control.
TB_EXPORT Boolean GetAuxCtl(ControlHandle control, AuxCtlHandle* record);

// What a popup's contrlData holds.
struct PopupPrivateData {
  MenuHandle mHandle;
};
typedef PopupPrivateData** PopupPrivateDataHandle;

// Definition numbers times 16 plus variant.
enum { pushButProc = 0, checkBoxProc = 1, popupMenuProc = 1008 };
// Part codes. From 129 on a part is an indicator.
enum { inButton = 10, inCheckBox = 11, inMenu = 1, inThumb = 129 };

// Makes a definition known under a number, from 1 to 2047, and the name that a dialog's resource
// calls it by. Registering a number again replaces it for controls made later. Result: 0, or -50
// for no procedure.
TB_EXPORT OSErr RegisterControlDefinition(short number, ConstStr255Param name,
                                          ControlDefProcPtr procedure);
// A handle that can stand in contrlDefProc; released with DisposeHandle once no control uses it.
// Null when memory is short.
TB_EXPORT Handle NewControlDefinition(ControlDefProcPtr procedure);
// Calls the procedure behind such a handle; 0 for a null or purged one.
TB_EXPORT int32_t CallControlDefinition(Handle definition, short varCode, ControlHandle control,
                                        short message, intptr_t param);

// part: 0 active, 255 inactive, else drawn pressed. Redraws when it changes something.
TB_EXPORT void HiliteControl(ControlHandle control, short part);

// The part under the point (in the port's coordinates), 0 for none or for an inactive or hidden
// one.
TB_EXPORT short TestControl(ControlHandle control, Point point);
// The control of a window under a point (in the port's coordinates) and its part, 0 for none or for
// an inactive or hidden one; *control is then null.
TB_EXPORT short FindControl(Point point, WindowPtr window, ControlHandle* control);
// Follows the mouse until it is released. The part when released inside it, else 0. Buttons are
// drawn pressed meanwhile, popups open their menu and set their value, an indicator is the
// definition's to drag (dragCntl). action: null for none, -1 for the control's own, of which no
// control has one.
TB_EXPORT short TrackControl(ControlHandle control, Point start, ControlActionProcPtr action);

// Kept within minimum and maximum. A change redraws the control's moving part.
TB_EXPORT void SetControlValue(ControlHandle control, short value);
TB_EXPORT short GetControlValue(ControlHandle control);
TB_EXPORT void SetControlMinimum(ControlHandle control, short minimum);
TB_EXPORT void SetControlMaximum(ControlHandle control, short maximum);
TB_EXPORT short GetControlMaximum(ControlHandle control);
TB_EXPORT void SetControlReference(ControlHandle control, intptr_t value);
TB_EXPORT intptr_t GetControlReference(ControlHandle control);
// What the value is told as, for who cannot see it: a number from `least`, for 0, to `most`, for
// the maximum, cut as a whole one. Equal ends, as at first: the value itself.
TB_EXPORT void TB_TellControlBetween(ControlHandle control, short least, short most);
// Tells the value, after a definition has changed it in the record by itself, as in a drag.
TB_EXPORT void TB_TellControlValue(ControlHandle control);
