// What the loops of this layer take their events from. Private to this layer.
#pragma once

#include "Events.h"
#include "QDPorts.h"

// Events of this layer's own, which a dialog's loop keeps to itself: an item that is to be pressed,
// or changed without the mouse. message: the item in the high 16 bits, its new value in the low
// ones.
enum { ITEM_CHANGED = 14, ITEM_PRESSED = 15 };

// The next event and the window it belongs to, waiting up to milliseconds. False, and a null event,
// when none came or the front window has been closed.
bool FetchEvent(short mask, EventRecord* event, WindowPtr* window, int milliseconds);
