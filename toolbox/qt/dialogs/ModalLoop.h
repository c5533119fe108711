// The loop behind ModalDialog and MoveableModalDialog. Private to this layer.
#ifndef MODAL_LOOP_H
#define MODAL_LOOP_H

#include "Dialogs.h"

// One call of the loop; processEvent may be null.
int16_t RunModalDialog(CVProcessEventProc processEvent, ModalFilterUPP filter);

#endif
