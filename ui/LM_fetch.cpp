// Values between the dialog's controls and the settings.
#include <algorithm>

#include "Cursors.h"
#include "LM_host_services.h"
#include "LM_light_kinds.h"
#include "LM_mac_UI.h"
#include "LM_preview.h"
#include "MacResources.h"

namespace {

// Styles may hold any 16 bits; the control keeps its value within its range.
int16_t Shifted(int16_t value, int offset) {
  return static_cast<int16_t>(std::clamp(value + offset, INT16_MIN, INT16_MAX));
}

using ItemSwitch = void (*)(DialogPtr, int16_t);

// Intensity, type and colour go with the light being on; spread is a spot's alone.
void EnableLightItems(DialogPtr dialog, const LM_light_UI& light) {
  const bool on = light.on == 1;
  const bool spot = on && light.type == LM_LIGHT_SPOT;
  const ItemSwitch control = on ? LM_EnableControl : LM_DisableControl;
  control(dialog, LM_INTENSITY_ITEM);
  control(dialog, LM_LIGHT_TYPE_ITEM);
  (on ? LM_EnableItem : LM_DisableItem)(dialog, LM_LIGHT_COLOR_ITEM);
  (spot ? LM_EnableControl : LM_DisableControl)(dialog, LM_SPREAD_ITEM);
}

void EnableBumpItems(DialogPtr dialog, bool enabled) {
  const ItemSwitch control = enabled ? LM_EnableControl : LM_DisableControl;
  control(dialog, LM_WHITE_IS_HIGH_ITEM);
  control(dialog, LM_BUMP_AMPLITUDE_ITEM);
}

int16_t ToggleBox(DialogPtr dialog, int16_t item) {
  const int16_t value = LM_ControlValue(dialog, item) == 0 ? 1 : 0;
  LM_SetControlValue(dialog, item, value);
  return value;
}

} // namespace

void LM_SetGlobalsToDialog(DialogPtr dialog, LM_globals* globals) {
  LM_SetControlValue(dialog, LM_MATERIAL_ITEM, globals->material);
  LM_SetControlValue(dialog, LM_GLOSS_ITEM, globals->gloss);
  LM_SetControlValue(dialog, LM_EXPOSURE_ITEM, globals->exposure);
  LM_SetControlValue(dialog, LM_AMBIENCE_ITEM,
                     Shifted(globals->ambientBrightness, LM_SLIDER_CENTER));
  LM_SetControlValue(dialog, LM_BUMP_AMPLITUDE_ITEM, globals->BumpAmplitude());
  LM_SetControlValue(dialog, LM_WHITE_IS_HIGH_ITEM, globals->WhiteIsHigh() != 0 ? 1 : 0);
  LM_SetControlValue(dialog, LM_BUMP_CHANNEL_ITEM, Shifted(globals->BumpChannel(), 1));
  EnableBumpItems(dialog, globals->BumpChannel() != 0);
  LM_ItemForceDraw(dialog, LM_AMBIENT_COLOR_ITEM);
}

void LM_GetGlobalsFromDialog(DialogPtr dialog, LM_globals* globals) {
  LM_FetchMaterial(dialog, globals);
  LM_FetchGloss(dialog, globals);
  LM_FetchExposure(dialog, globals);
  LM_FetchAmbientBrightness(dialog, globals);
  LM_FetchBumpAmplitude(dialog, globals);
  LM_FetchWhiteIsHigh(dialog, globals);
}

void LM_SetCurLightToDialog(DialogPtr dialog, LM_globals* globals) {
  const LM_light_UI& light = globals->CurrentLight();
  EnableLightItems(dialog, light);
  LM_SetControlValue(dialog, LM_LIGHT_ON_ITEM, light.on == 1 ? 1 : 0);
  LM_SetControlValue(dialog, LM_INTENSITY_ITEM, Shifted(light.intensity, LM_SLIDER_CENTER));
  LM_SetControlValue(dialog, LM_SPREAD_ITEM, light.spread);
  LM_SetControlValue(dialog, LM_LIGHT_TYPE_ITEM, LM_LightKindOfType(light.type).code);
  LM_ItemForceDraw(dialog, LM_LIGHT_COLOR_ITEM);
}

void LM_FetchLightType(DialogPtr dialog, LM_globals* globals) {
  LM_light_UI& light = globals->CurrentLight();
  const int32_t type = LM_LightKindOfCode(LM_ControlValue(dialog, LM_LIGHT_TYPE_ITEM)).type;
  const bool spot = type == LM_LIGHT_SPOT && light.on == 1;
  (spot ? LM_EnableControl : LM_DisableControl)(dialog, LM_SPREAD_ITEM);
  if (light.type == type)
    return;
  light.type = type;
  light.InvalidateCaches();
  light.Validate();
  LM_ItemForceDraw(dialog, LM_WORK_AREA_ITEM);
}

void LM_FetchGloss(DialogPtr dialog, LM_globals* globals) {
  globals->gloss = LM_ControlValue(dialog, LM_GLOSS_ITEM);
}

void LM_FetchMaterial(DialogPtr dialog, LM_globals* globals) {
  globals->material = LM_ControlValue(dialog, LM_MATERIAL_ITEM);
}

void LM_FetchExposure(DialogPtr dialog, LM_globals* globals) {
  globals->exposure = LM_ControlValue(dialog, LM_EXPOSURE_ITEM);
}

void LM_FetchAmbientBrightness(DialogPtr dialog, LM_globals* globals) {
  globals->ambientBrightness =
      Shifted(LM_ControlValue(dialog, LM_AMBIENCE_ITEM), -LM_SLIDER_CENTER);
}

void LM_FetchBumpAmplitude(DialogPtr dialog, LM_globals* globals) {
  globals->SetBumpAmplitude(LM_ControlValue(dialog, LM_BUMP_AMPLITUDE_ITEM));
}

void LM_FetchWhiteIsHigh(DialogPtr dialog, LM_globals* globals) {
  globals->SetWhiteIsHigh(LM_ControlValue(dialog, LM_WHITE_IS_HIGH_ITEM) > 0 ? 1 : 0);
}

void LM_FetchCurrentLightIntensity(DialogPtr dialog, LM_globals* globals) {
  LM_light_UI& light = globals->CurrentLight();
  light.intensity = Shifted(LM_ControlValue(dialog, LM_INTENSITY_ITEM), -LM_SLIDER_CENTER);
  light.InvalidateCaches();
}

void LM_FetchCurrentLightSpread(DialogPtr dialog, LM_globals* globals) {
  LM_light_UI& light = globals->CurrentLight();
  light.spread = LM_ControlValue(dialog, LM_SPREAD_ITEM);
  light.InvalidateCaches();
}

int16_t LM_FetchBumpMap(DialogPtr dialog, LM_globals* globals) {
  const int16_t channel = Shifted(LM_ControlValue(dialog, LM_BUMP_CHANNEL_ITEM), -1);
  if (channel == globals->BumpChannel())
    return CV_RESULT_OK;
  globals->SetBumpChannel(channel);
  EnableBumpItems(dialog, channel != 0);
  return LM_CollectRelief(globals);
}

int16_t LM_CollectRelief(LM_globals* globals) {
  if (globals->BumpChannel() == 0)
    return CV_RESULT_OK;
  const int16_t result = LM_GetPreviewBumpPixelMap(globals);
  InitCursor();
  return result;
}

void LM_DoLightCheckBox(DialogPtr dialog, int16_t item, LM_globals* globals) {
  LM_light_UI& light = globals->CurrentLight();
  light.on = light.on == 1 ? 0 : 1;
  if (light.on == 0)
    light.FreeCaches();
  light.InvalidateCaches();
  LM_SetControlValue(dialog, item, light.on == 1 ? 1 : 0);
  EnableLightItems(dialog, light);
  LM_ItemForceDraw(dialog, LM_LIGHT_COLOR_ITEM);
}

void LM_DoBumpCheckBox(DialogPtr dialog, int16_t item, LM_globals* globals) {
  globals->SetWhiteIsHigh(ToggleBox(dialog, item));
}

void LM_DoPreviewCheckBox(DialogPtr dialog, int16_t item, LM_globals* globals) {
  globals->previewOn = ToggleBox(dialog, item);
}

int16_t LM_RebuildBumpMapPopup(DialogPtr dialog, int16_t item, FilterRecord* record) {
  int16_t channels = 0;
  int16_t result = LM_GetNumChannels(channels, record);
  if (result != CV_RESULT_OK)
    return result;
  const MenuHandle menu = LM_PopupMenu(dialog, item);
  if (menu == nullptr)
    return CV_RESULT_OK;
  LM_PopupClear(dialog, item);
  Str255 name;
  GetIndString(name, LM_NO_CHANNEL_NAME, 1);
  AppendMenu(menu, name);
  for (int16_t channel = 0; channel < channels; ++channel) {
    result = LM_GetChannelName(channel, name, record);
    if (result != CV_RESULT_OK)
      break;
    AppendMenu(menu, name);
  }
  LM_PopupUseMenuRange(dialog, item);
  LM_ItemForceDraw(dialog, item);
  return result;
}
