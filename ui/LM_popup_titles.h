// Titles of the groups that have a popup on their top line.
#ifndef LM_POPUP_TITLES_H
#define LM_POPUP_TITLES_H

#include "Dialogs.h"

// Draws the title of a group, items 30 to 32, over the group's top line.
void LM_DrawPopupTitle(DialogPtr dialog, int16_t item);

#endif
