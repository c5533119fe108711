// What the engine and the session ask of the parameter dialog. The dialog's own code lies above
// them, so whoever assembles the plug-in hands these functions in.
#ifndef LM_DIALOG_SERVICES_H
#define LM_DIALOG_SERVICES_H

#include "LM_types.h"

class LM_globals;

// The items of the parameter dialog that the preview depends on; the others are in LM_mac_UI.h.
constexpr int16_t LM_WORK_AREA_ITEM = 6;
constexpr int16_t LM_PREVIEW_ITEM = 8;

// All present. Results are the program's result codes.
struct LM_dialog_services {
  // Builds the dialog, unseen by the settings until it is stored in globals->dialog.
  int16_t (*construct)(FilterRecord* record, LM_globals* globals);
  // Runs it: 0 after OK, CV_RESULT_STOPPED after Cancel, or what failed. Releases the shading
  // caches and the dialog however it ends.
  int16_t (*run)(FilterRecord* record, LM_globals* globals);
  // Releases a dialog that was built and not run.
  void (*dispose)(LM_globals* globals);
  // An item's rectangle, in the dialog's coordinates.
  Rect (*itemBox)(LM_globals* globals, int16_t item);
  void (*setItemBox)(LM_globals* globals, int16_t item, const Rect& box);
  void (*redrawItem)(LM_globals* globals, int16_t item);
  // The cursor while the preview is being rendered, and afterwards.
  void (*showWatch)();
  void (*showArrow)();
};

// The dialog in use; null in a program without one, where an interactive run is refused.
const LM_dialog_services* LM_DialogServices();
void LM_SetDialogServices(const LM_dialog_services* services);

#endif
