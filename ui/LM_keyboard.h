// The lights of the dialog from the keyboard. Each key becomes a short drag of the mouse, so that
// it does what dragging does.
#pragma once

#include "Dialogs.h"

class LM_globals;

// An arrow key moves the current light by a preview pixel, by ten with Shift. With Option it drags
// the first handle, with Command the second. Any other event does nothing.
void LM_DragByKey(DialogPtr dialog, LM_globals* globals, const EventRecord& event);

// Pulls a light out of the well to the middle of the work area: what pressing the well without the
// mouse does.
void LM_PullLightByKey(DialogPtr dialog, int16_t well, LM_globals* globals);
