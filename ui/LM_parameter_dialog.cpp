// Building the parameter dialog, and releasing it.
#include "HostDialogs.h"
#include "LM_drawing_scopes.h"
#include "LM_item_drawing.h"
#include "LM_mac_UI.h"
#include "LM_mac_slider_handler.h"
#include "MacStrings.h"

#include <memory>

namespace {

constexpr OSType DIALOG_RESOURCE = CV_FOUR_CHARS('D', 'L', 'O', 'G');

struct ItemDrawing {
  int16_t item;
  UserItemUPP draw;
};
constexpr ItemDrawing DRAWINGS[] = {
    {LM_OK_OUTLINE_ITEM, LM_DrawOKOutline},
    {LM_SAVE_STYLE_ITEM, LM_DrawSmallButton},
    {LM_AMBIENT_COLOR_ITEM, LM_DrawAmbientColorBox},
    {LM_WORK_AREA_ITEM, LM_DrawWorkArea},
    {LM_LIGHT_COLOR_ITEM, LM_DrawLightColorBox},
    {LM_PREVIEW_ITEM, LM_DrawPreview},
    {LM_LIGHT_WELL_ITEM, LM_DrawLightWell},
    {LM_TRASH_ITEM, LM_DrawTrash},
    {LM_DELETE_STYLE_ITEM, LM_DrawSmallButton},
    {LM_LIGHT_GROUP_ITEM, LM_DrawGroupBox},
    {LM_PROPERTIES_GROUP_ITEM, LM_DrawGroupBox},
    {LM_BUMP_GROUP_ITEM, LM_DrawGroupBox},
    {LM_STYLE_GROUP_ITEM, LM_DrawGroupBox},
    {LM_PROPERTIES_TITLE_ITEM, LM_DrawPropertiesTitle},
};

void DisposeBuilt(DialogPtr dialog) {
  LM_ResetSmallFontControls(dialog);
  DisposeDialog(dialog);
}

// Builds the dialog, its small controls in the small font; null when that fails.
DialogPtr BuildDialog() {
  DialogPtr dialog = nullptr;
  {
    const LM_small_text_scope text;
    RegisterControlDefinition(LM_SLIDER_DEFINITION, TB_PString("SliderControl"), SC_main);
    dialog = GetNewDialog(LM_PARAMETER_DIALOG, nullptr, nullptr);
  }
  if (dialog == nullptr)
    return nullptr;
  // Drawing may run out of memory, and nobody else knows of the dialog yet.
  std::unique_ptr<GrafPort, decltype(&DisposeBuilt)> built(dialog, DisposeBuilt);
  const LM_port_scope port(dialog);
  {
    const LM_small_text_scope text;
    LM_InitSmallFontControls(dialog);
  }
  DrawDialog(dialog);
  return built.release();
}

} // namespace

LM_globals* LM_GlobalsOfDialog(DialogPtr dialog) {
  AuxWinHandle record = nullptr;
  if (dialog == nullptr || GetAuxWin(dialog, &record) == 0)
    return nullptr;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the reference field is an integer by contract
  return reinterpret_cast<LM_globals*>((*record)->awRefCon);
}

void LM_SetGlobalsOfDialog(DialogPtr dialog, LM_globals* globals) {
  AuxWinHandle record = nullptr;
  if (dialog != nullptr && GetAuxWin(dialog, &record) != 0)
    (*record)->awRefCon = reinterpret_cast<intptr_t>(globals);
}

void LM_InitDialogUserItems(DialogPtr dialog) {
  for (const ItemDrawing& entry : DRAWINGS)
    LM_UserItemSetDrawProc(dialog, entry.item, entry.draw);
}

int16_t LM_ConstructParameterDialog(FilterRecord* record, LM_globals* globals) {
  const Handle resource = GetResource(DIALOG_RESOURCE, LM_PARAMETER_DIALOG);
  if (resource == nullptr)
    return CV_RESULT_NO_MEMORY;
  HNoPurge(resource);
  CenterDialog(resource);
  SetUpMoveableModal(resource, record->hostSignature);
  DialogPtr dialog = BuildDialog();
  if (dialog == nullptr) {
    HPurge(resource);
    return CV_RESULT_NO_MEMORY;
  }
  globals->dialogResource = resource;
  globals->dialog = dialog;
  return CV_RESULT_OK;
}

void LM_DisposeParameterDialog(LM_globals* globals) {
  DialogPtr dialog = globals->dialog;
  if (dialog != nullptr) {
    LM_ResetSmallFontControls(dialog);
    LM_DisposePopupMenus(dialog);
    DisposeDialog(dialog);
  }
  if (globals->dialogResource != nullptr)
    HPurge(globals->dialogResource);
  globals->dialog = nullptr;
  globals->dialogResource = nullptr;
}
