// A look behind the Toolbox, for tests that link its private functions: what ports hold, ports
// without a window, single events.
#pragma once

#include "ControlBlock.h"
#include "Events.h"
#include "QDPorts.h"

class QImage;
class QWidget;

// What has been drawn into a port, in device pixels: a copy.
QImage TB_PortImage(GrafPtr port);
// The window of a port, or null.
QWidget* TB_PortWindow(GrafPtr port);
// The colour of one unit square of the current port, taken at its top-left device pixel; white
// outside the port.
void GetCPixel(short h, short v, RGBColor* color);

// A port without a window, erased to white, which does not follow the theme. Null when it cannot be
// had; released with DisposePort.
GrafPtr NewOffscreenPort(const Rect& bounds, double ratio = 1);
void DisposePort(GrafPort* port);

// The visible window opened last, or null.
WindowPtr FrontWindow();
inline void Draw1Control(ControlHandle control) {
  DrawControlPart(control, 0);
}
bool HaveSameSquares(RgnHandle a, RgnHandle b);

// Takes the next event of the mask, waiting for it, and drops those before it. False when none
// came.
bool TakeEvent(short mask, EventRecord* event, int milliseconds);
// Drops every event that is queued.
void FlushEvents();
bool IsButtonDown();
// Lets events run for so long.
void RunEvents(int milliseconds);
