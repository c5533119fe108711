// The dialog, as the session reaches it.
#include <string>

#include "LM_dialog_services.h"
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
  const int16_t result = LM_ConstructParameterDialog(record, globals);
  return result != CV_RESULT_OK ? result : LM_CalculatePreviewScaling(record, globals);
}

constexpr LM_dialog_services SERVICES = {Construct, LM_DoParameterDialog,
                                         LM_DisposeParameterDialog};

} // namespace

void LM_UseDesktopDialog() {
  LM_SetDialogServices(&SERVICES);
}
