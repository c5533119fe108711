// Running the parameter dialog.
#include "Cursors.h"
#include "HostDialogs.h"
#include "LM_drawing_scopes.h"
#include "LM_keyboard.h"
#include "LM_mac_UI.h"
#include "LM_preview.h"
#include "LM_style_menu.h"

namespace {

struct ItemFetch {
  int16_t item;
  void (*fetch)(DialogPtr, LM_globals*);
};
constexpr ItemFetch FETCHES[] = {
    {LM_LIGHT_TYPE_ITEM, LM_FetchLightType},
    {LM_GLOSS_ITEM, LM_FetchGloss},
    {LM_MATERIAL_ITEM, LM_FetchMaterial},
    {LM_EXPOSURE_ITEM, LM_FetchExposure},
    {LM_AMBIENCE_ITEM, LM_FetchAmbientBrightness},
    {LM_INTENSITY_ITEM, LM_FetchCurrentLightIntensity},
    {LM_SPREAD_ITEM, LM_FetchCurrentLightSpread},
    {LM_BUMP_AMPLITUDE_ITEM, LM_FetchBumpAmplitude},
};

struct ItemAction {
  int16_t item;
  void (*act)(DialogPtr, int16_t, LM_globals*);
};
constexpr ItemAction ACTIONS[] = {
    {LM_AMBIENT_COLOR_ITEM, LM_PickAmbientColor}, {LM_LIGHT_COLOR_ITEM, LM_PickLightColor},
    {LM_LIGHT_ON_ITEM, LM_DoLightCheckBox},       {LM_WHITE_IS_HIGH_ITEM, LM_DoBumpCheckBox},
    {LM_PREVIEW_ON_ITEM, LM_DoPreviewCheckBox},   {LM_LIGHT_WELL_ITEM, LM_PullLightByKey},
};

// Does what a hit item that changes settings stands for. True when there is such an item.
bool FetchOrAct(DialogPtr dialog, int16_t item, LM_globals* globals) {
  for (const ItemFetch& entry : FETCHES) {
    if (entry.item == item) {
      entry.fetch(dialog, globals);
      return true;
    }
  }
  for (const ItemAction& entry : ACTIONS) {
    if (entry.item == item) {
      entry.act(dialog, item, globals);
      return true;
    }
  }
  return false;
}

LM_style_outcome AnswerItem(LM_style_menu& menu, int16_t item) {
  switch (item) {
  case LM_OK_ITEM:
    LM_GetGlobalsFromDialog(menu.dialog, menu.globals);
    return {CV_RESULT_OK, false};
  case LM_SAVE_STYLE_ITEM:
    LM_RunSaveFlow(menu);
    return {CV_RESULT_OK, false};
  case LM_BUMP_CHANNEL_ITEM:
    return {LM_FetchBumpMap(menu.dialog, menu.globals), true};
  case LM_STYLE_ITEM:
    return LM_RunLoadFlow(menu);
  case LM_DELETE_STYLE_ITEM:
    return LM_RunDeleteFlow(menu);
  default:
    return {CV_RESULT_OK, FetchOrAct(menu.dialog, item, menu.globals)};
  }
}

// Fills the popups and the preview, and shows the window.
int16_t OpenDialog(LM_style_menu& menu) {
  DialogPtr dialog = menu.dialog;
  LM_globals* globals = menu.globals;
  if (globals->UseCurrentSettings() == 0)
    globals->Default();
  globals->InvalidateCaches();
  LM_DrawPreviewFrameToPixelMap(dialog, globals);
  InitCursor();
  globals->record = menu.record;
  LM_SetGlobalsOfDialog(dialog, globals);
  int16_t result = LM_RebuildBumpMapPopup(dialog, LM_BUMP_CHANNEL_ITEM, menu.record);
  // A host that does not tell of its channels offers no relief, and that is all.
  if (result != CV_RESULT_OK && result != CV_RESULT_NO_SERVICE)
    return result;
  LM_OpenStyleMenu(menu);
  result = LM_CheckBumpChannel(dialog, globals);
  if (result != CV_RESULT_OK)
    return result;
  LM_InitDialogUserItems(dialog);
  result = LM_GeneratePreview(dialog, globals);
  if (result != CV_RESULT_OK)
    return result;
  LM_SetControlValue(dialog, LM_PREVIEW_ON_ITEM, globals->previewOn == 1 ? 1 : 0);
  ShowWindow(dialog);
  LM_SetGlobalsToDialog(dialog, globals);
  LM_SetCurLightToDialog(dialog, globals);
  return CV_RESULT_OK;
}

// Runs the dialog's loop until OK or Cancel, or a failure.
int16_t RunDialog(LM_style_menu& menu) {
  for (;;) {
    int16_t item = 0;
    SetWRefCon(menu.dialog, CV_RESULT_OK);
    MoveableModalDialog(menu.record->processEvent, LM_DialogFilterProc, &item);
    // A render inside the filter may have failed.
    int16_t result = static_cast<int16_t>(GetWRefCon(menu.dialog));
    if (result != CV_RESULT_OK)
      return result;
    if (item == LM_CANCEL_ITEM || item == LM_NO_DIALOG)
      return CV_RESULT_STOPPED;
    const LM_style_outcome outcome = AnswerItem(menu, item);
    result = outcome.result;
    if (result == CV_RESULT_OK && outcome.render)
      result = LM_GeneratePreview(menu.dialog, menu.globals);
    if (result != CV_RESULT_OK || item == LM_OK_ITEM)
      return result;
  }
}

} // namespace

int16_t LM_DoParameterDialog(FilterRecord* record, LM_globals* globals) {
  if (globals->dialog == nullptr)
    return CV_RESULT_STOPPED;
  const LM_port_scope port(globals->dialog);
  LM_style_menu menu = LM_UseStyleMenu(globals->dialog, globals, record);
  int16_t result = OpenDialog(menu);
  if (result == CV_RESULT_OK)
    result = RunDialog(menu);
  globals->FreeCaches();
  LM_DisposeParameterDialog(globals);
  return result;
}
