// The loop behind ModalDialog and MoveableModalDialog. Private to this layer.
#pragma once

#include "Dialogs.h"

// One call of the loop; processEvent may be null.
int16_t RunModalDialog(CVProcessEventProc processEvent, ModalFilterUPP filter);
