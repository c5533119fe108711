// What assistive programs see of a dialog: its items as its children. Private to this layer.
#pragma once

// Lets them see dialogs, and changes of their controls, from now on; once per process is enough.
void OfferDialogsToAssistance();
