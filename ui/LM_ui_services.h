// The dialog, as the engine and the session reach it.
#ifndef LM_UI_SERVICES_H
#define LM_UI_SERVICES_H

#include "LM_dialog_services.h"

// Hand them to LM_SetDialogServices. Building the dialog also sets up the user's style library.
const LM_dialog_services& LM_DesktopDialogServices();

#endif
