#include "LM_ui_services.h"

#include <string>

#include "Cursors.h"
#include "LM_mac_UI.h"
#include "LM_style_library.h"
#include "ToolboxDesktop.h"

namespace {

int16_t Construct(FilterRecord* record, LM_globals* globals) {
  if (!TB_HasDesktop())
    return CV_RESULT_NO_DIALOG;
  // Without a style folder the dialog works on, with an empty style menu.
  std::string why;
  LM_UseStyleLibrary(why);
  return LM_ConstructParameterDialog(record, globals);
}

Rect ItemBox(LM_globals* globals, int16_t item) {
  return LM_ItemGetBox(globals->dialog, item);
}

void SetItemBox(LM_globals* globals, int16_t item, const Rect& box) {
  LM_ItemSetBox(globals->dialog, item, box);
}

void RedrawItem(LM_globals* globals, int16_t item) {
  LM_ItemForceDraw(globals->dialog, item);
}

void ShowWatch() {
  const CursHandle watch = GetCursor(watchCursor);
  if (watch != nullptr)
    SetCursor(*watch);
}

} // namespace

const LM_dialog_services& LM_DesktopDialogServices() {
  static const LM_dialog_services services = {Construct,
                                              LM_DoParameterDialog,
                                              LM_DisposeParameterDialog,
                                              ItemBox,
                                              SetItemBox,
                                              RedrawItem,
                                              ShowWatch,
                                              InitCursor};
  return services;
}
