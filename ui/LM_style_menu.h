// The style menu's part of the parameter dialog: opening, saving, loading and deleting styles.
#pragma once

#include "LM_mac_UI.h"

// What the flows work on while the dialog runs.
struct LM_style_menu {
  DialogPtr dialog;
  LM_globals* globals;
  FilterRecord* record;
  Str255 defaultName;  // a style of this name comes first and cannot be deleted
  Str255 openingName;  // the style that the dialog opens with; empty when it keeps settings
  int16_t loadedPlace; // of the style in the menu that this dialog loaded or saved last, or 0
};

// What a flow came to.
struct LM_style_outcome {
  int16_t result; // CV_RESULT_OK, or what ends the dialog
  bool render;    // the settings changed
};

// Prepares the flows. To be called when the dialog is built: it reads the menu of the resource.
LM_style_menu LM_UseStyleMenu(DialogPtr dialog, LM_globals* globals, FilterRecord* record);

// Fills the menu. Without kept settings the opening style is loaded, or the first of the menu.
void LM_OpenStyleMenu(LM_style_menu& menu);

// A document that does not have the settings' relief channel has none: sets it to 0 then, else
// collects the preview's relief.
int16_t LM_CheckBumpChannel(DialogPtr dialog, LM_globals* globals);

// The Save button, a new choice in the menu, and the Delete button.
void LM_RunSaveFlow(LM_style_menu& menu);
LM_style_outcome LM_RunLoadFlow(LM_style_menu& menu);
LM_style_outcome LM_RunDeleteFlow(LM_style_menu& menu);
