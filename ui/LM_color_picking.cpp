// Asking for a colour: through the host where it can, else through the Toolbox.
#include <algorithm>

#include "ColorPicker.h"
#include "LM_drawing_scopes.h"
#include "LM_mac_UI.h"
#include "MacResources.h"

namespace {

constexpr int TO_16_BITS = 257;

// The host's answer: 0 and the colour, or a code.
int16_t AskHost(CVColorPickerProc picker, ConstStr255Param prompt, const LM_color48& inColor,
                LM_color48& outColor) {
  CVColorRequest request = {};
  request.size = static_cast<int32_t>(sizeof request);
  for (int plane = 0; plane < LM_PLANES; ++plane)
    request.components[plane] = static_cast<uint16_t>(inColor.component[plane] >> 8);
  request.prompt = prompt;
  const int16_t result = picker(&request);
  if (result == CV_RESULT_OK) {
    for (int plane = 0; plane < LM_PLANES; ++plane)
      outColor.component[plane] =
          static_cast<uint16_t>(std::min<int>(request.components[plane], UINT8_MAX) * TO_16_BITS);
  }
  return result;
}

// Asks with the prompt of a string list; true and *color changed when one was chosen.
LM_bool PickColor(int16_t promptList, LM_color48& color, LM_globals* globals) {
  Str255 prompt;
  GetIndString(prompt, promptList, 1);
  const Point anywhere = {0, 0};
  return CVGetColor(anywhere, prompt, color, color, globals);
}

} // namespace

LM_bool CVGetColor(Point where, ConstStr255Param prompt, const LM_color48& inColor,
                   LM_color48& outColor, LM_globals* globals) {
  const CVColorPickerProc picker =
      globals->record != nullptr ? globals->record->colorPicker : nullptr;
  if (picker != nullptr) {
    const int16_t result = AskHost(picker, prompt, inColor, outColor);
    if (result != CV_RESULT_NO_SERVICE)
      return result == CV_RESULT_OK ? 1 : 0;
  }
  const RGBColor before = LM_RGBOf(inColor);
  RGBColor chosen = before;
  if (GetColor(where, prompt, &before, &chosen) == 0)
    return 0;
  outColor = {{chosen.red, chosen.green, chosen.blue}};
  return 1;
}

void LM_PickAmbientColor(DialogPtr dialog, int16_t item, LM_globals* globals) {
  if (PickColor(LM_AMBIENT_COLOR_PROMPT, globals->ambientColor, globals) != 0)
    LM_ItemForceDraw(dialog, item);
}

void LM_PickLightColor(DialogPtr dialog, int16_t item, LM_globals* globals) {
  LM_light_UI& light = globals->CurrentLight();
  if (PickColor(LM_LIGHT_COLOR_PROMPT, light.color, globals) == 0)
    return;
  light.InvalidateCaches();
  LM_ItemForceDraw(dialog, item);
}
