// Controls that draw in the small font: their definition is wrapped in one that sets the font
// around every call. The definition that was there hangs on the control's auxiliary record.
#include "HostDialogs.h"
#include "LM_drawing_scopes.h"
#include "LM_mac_UI.h"

namespace {

constexpr int16_t SMALL_FONT_ITEMS[] = {LM_LIGHT_TYPE_ITEM,    LM_BUMP_CHANNEL_ITEM,
                                        LM_STYLE_ITEM,         LM_LIGHT_ON_ITEM,
                                        LM_WHITE_IS_HIGH_ITEM, LM_PREVIEW_ON_ITEM};

Handle SavedDefinition(AuxCtlHandle record) {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the reference field is an integer by contract
  return reinterpret_cast<Handle>((*record)->acRefCon);
}

int32_t CallSavedDefinition(Handle saved, short varCode, ControlHandle control, short message,
                            intptr_t param) {
  if (*saved == nullptr) {
    LoadResource(saved);
    if (ResError() != noErr)
      return 0;
  }
  HLock(saved);
  const int32_t result = CallControlDefinition(saved, varCode, control, message, param);
  HUnlock(saved);
  return result;
}

int32_t LM_SmallFontControlFunc(short varCode, ControlHandle control, short message,
                                intptr_t param) {
  AuxCtlHandle record = nullptr;
  if (GetAuxCtl(control, &record) == 0)
    return 0;
  const Handle saved = SavedDefinition(record);
  const LM_small_text_scope text;
  return saved != nullptr ? CallSavedDefinition(saved, varCode, control, message, param) : 0;
}

void LM_InitSmallFontControl(ControlHandle control) {
  AuxCtlHandle record = nullptr;
  if (control == nullptr || GetAuxCtl(control, &record) == 0 || (*record)->acRefCon != 0)
    return;
  const Handle wrapper = NewControlDefinition(LM_SmallFontControlFunc);
  // Without memory for the wrapper the control stays as it is, in the large font.
  if (wrapper == nullptr)
    return;
  (*record)->acRefCon = reinterpret_cast<intptr_t>((*control)->contrlDefProc);
  (*control)->contrlDefProc = wrapper;
}

void LM_ResetSmallFontControl(ControlHandle control) {
  AuxCtlHandle record = nullptr;
  if (control == nullptr || GetAuxCtl(control, &record) == 0 || (*record)->acRefCon == 0)
    return;
  const Handle wrapper = (*control)->contrlDefProc;
  (*control)->contrlDefProc = SavedDefinition(record);
  (*record)->acRefCon = 0;
  DisposeHandle(wrapper);
}

} // namespace

void LM_InitSmallFontControls(DialogPtr dialog) {
  for (const int16_t item : SMALL_FONT_ITEMS)
    LM_InitSmallFontControl(LM_ItemControl(dialog, item));
}

void LM_ResetSmallFontControls(DialogPtr dialog) {
  for (const int16_t item : SMALL_FONT_ITEMS)
    LM_ResetSmallFontControl(LM_ItemControl(dialog, item));
}
