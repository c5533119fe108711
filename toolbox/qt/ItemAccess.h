// What assistive programs see of a dialog: its items as its children. Private to this layer.
#ifndef ITEM_ACCESS_H
#define ITEM_ACCESS_H

#include "DialogWindow.h"

// Lets them see dialogs from now on; once per process is enough.
void OfferDialogsToAssistance();
// Tells them that an item's control has another value.
void TellValueChange(DialogWindow& window, ControlHandle control);

#endif
