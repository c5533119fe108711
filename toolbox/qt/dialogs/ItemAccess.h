// What assistive programs see of a dialog: its items as its children. Private to this layer.
#ifndef ITEM_ACCESS_H
#define ITEM_ACCESS_H

// Lets them see dialogs, and changes of their controls, from now on; once per process is enough.
void OfferDialogsToAssistance();

#endif
