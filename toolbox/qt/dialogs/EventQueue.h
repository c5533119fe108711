// What the loop of this layer takes its events from. Private to this layer.
#pragma once

#include "Input.h"

// Events of this layer's own, which a dialog's loop keeps to itself: an item that is to be pressed,
// or changed without the mouse. message: the item in the high 16 bits, its new value in the low
// ones.
enum { ITEM_CHANGED = 14, ITEM_PRESSED = 15 };

// The next event, after waiting up to milliseconds. A null event of no window when none came or the
// front window has been closed.
QueuedEvent NextEvent(int milliseconds);
