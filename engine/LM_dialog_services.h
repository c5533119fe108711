// What the session asks of the parameter dialog. The dialog is a module above it, which hands these
// functions in.
#pragma once

#include "LM_export.h"
#include "LM_types.h"

class LM_globals;

// All present. Results are the program's result codes.
struct LM_dialog_services {
  // Builds the dialog, unseen by the settings until it is stored in globals->dialog, and sets the
  // preview up in it.
  int16_t (*construct)(FilterRecord* record, LM_globals* globals);
  // Runs it: 0 after OK, CV_RESULT_STOPPED after Cancel, or what failed. Releases the shading
  // caches and the dialog however it ends.
  int16_t (*run)(FilterRecord* record, LM_globals* globals);
  // Releases a dialog that was built and not run.
  void (*dispose)(LM_globals* globals);
};

// The dialog in use; null in a program without one, where an interactive run is refused.
const LM_dialog_services* LM_DialogServices();
LM_EXPORT void LM_SetDialogServices(const LM_dialog_services* services);
