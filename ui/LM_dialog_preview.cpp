// The preview's place in the dialog, and what a change of the settings shows there.
#include "LM_preview.h"

#include "Cursors.h"
#include "LM_mac_UI.h"

int16_t LM_CalculatePreviewScaling(FilterRecord* record, LM_globals* globals) {
  Rect preview = LM_ItemGetBox(globals->dialog, LM_PREVIEW_ITEM);
  const int16_t result =
      LM_SetUpPreview(record, globals, LM_ItemGetBox(globals->dialog, LM_WORK_AREA_ITEM), &preview);
  LM_ItemSetBox(globals->dialog, LM_PREVIEW_ITEM, preview);
  return result;
}

int16_t LM_GeneratePreview([[maybe_unused]] GrafPort* port, LM_globals* globals) {
  const CursHandle watch = GetCursor(watchCursor);
  if (watch != nullptr)
    SetCursor(*watch);
  int16_t result = CV_RESULT_OK;
  if (globals->previewOn == 1)
    result = LM_ShadePreview(globals);
  else
    LM_CopyUnshadedPreview(globals);
  InitCursor();
  if (result == CV_RESULT_OK)
    LM_ItemForceDraw(globals->dialog, LM_WORK_AREA_ITEM);
  return result;
}
