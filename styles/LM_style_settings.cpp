#include "LM_style_settings.h"

#include <algorithm>

#include "LM_arithmetic.h"
#include "LM_globals.h"
#include "LM_preview_geometry.h"
#include "LM_sliders.h"
#include "LM_style.h"

namespace {

int32_t LightTypeOf(uint16_t code) {
  switch (code) {
  case LM_STYLE_OMNI:
    return LM_LIGHT_OMNI;
  case LM_STYLE_DIRECTIONAL:
    return LM_LIGHT_DIRECTIONAL;
  default:
    return LM_LIGHT_SPOT;
  }
}

uint16_t CodeOf(int32_t type) {
  switch (type) {
  case LM_LIGHT_OMNI:
    return LM_STYLE_OMNI;
  case LM_LIGHT_DIRECTIONAL:
    return LM_STYLE_DIRECTIONAL;
  default:
    return LM_STYLE_SPOT;
  }
}

// Half the width of the preview frame, in preview pixels.
int16_t WorldUnit(const LM_globals& globals) {
  return LM_Cut16(globals.frameCenterX - globals.frameOriginX);
}

LM_vectori2 Translate(const LM_vectori2& vector, int16_t from, int16_t to) {
  return {LM_TranslateWorldUnits(vector.h, from, to), LM_TranslateWorldUnits(vector.v, from, to)};
}

void ApplyLight(const LM_style_light& stored, int16_t savedUnit, const LM_globals& globals,
                LM_light_UI& light) {
  const int16_t unit = WorldUnit(globals);
  light.color = stored.color;
  light.anchor = {globals.frameCenterX, globals.frameCenterY};
  light.intensity = stored.intensity;
  light.spread = stored.spread;
  light.on = stored.on == 1 ? 1 : 0;
  if (light.on == 0)
    light.FreeCaches();
  light.type = LightTypeOf(stored.type);
  light.center = Translate(stored.center, savedUnit, unit);
  light.handle1 = Translate(stored.handle1, savedUnit, unit);
  light.handle2 = Translate(stored.handle2, savedUnit, unit);
  light.radius = LM_TranslateWorldUnits(stored.radius, savedUnit, unit);
  light.InvalidateCaches();
}

LM_style_light StoredLight(const LM_light_UI& light) {
  LM_style_light stored = {};
  stored.color = light.color;
  stored.intensity = light.intensity;
  stored.spread = light.spread;
  stored.on = light.on == 1 ? 1 : 0;
  stored.type = CodeOf(light.type);
  stored.center = light.center;
  stored.handle1 = light.handle1;
  stored.handle2 = light.handle2;
  stored.radius = light.radius;
  return stored;
}

// Pressing OK takes the surface settings from the sliders, which show no value beyond their ends.
void LimitToSliders(LM_globals& globals) {
  const auto limit = [](int16_t& value, int low, int high) {
    value = static_cast<int16_t>(std::clamp<int>(value, low, high));
  };
  limit(globals.gloss, 0, LM_SLIDER_MAX);
  limit(globals.material, 0, LM_MATERIAL_SLIDER_MAX);
  limit(globals.exposure, 0, LM_SLIDER_MAX);
  limit(globals.ambientBrightness, -LM_SLIDER_CENTER, LM_CENTERED_SLIDER_MAX - LM_SLIDER_CENTER);
  limit(globals.bumpAmplitude, 0, LM_SLIDER_MAX);
}

} // namespace

int16_t LM_TranslateWorldUnits(int16_t value, int16_t fromUnit, int16_t toUnit) {
  if (fromUnit == 0)
    return 0;
  const int32_t half = fromUnit / 2;
  const int32_t product = value * toUnit;
  return LM_Cut16((product + (value < 0 ? -half : half)) / fromUnit);
}

bool LM_ApplyStyle(const LM_style& style, LM_globals& globals) {
  const int applied = std::min<int>(style.lightsRead, LM_MAX_LIGHTS);
  if (applied == 0)
    return false;
  for (int i = 0; i < applied; ++i)
    ApplyLight(style.lights[i], style.worldUnit, globals, globals.lights[i]);
  for (int i = applied; i < std::min<int>(globals.numLights, LM_MAX_LIGHTS); ++i)
    globals.lights[i].FreeCaches();
  globals.numLights = static_cast<uint16_t>(applied);
  globals.curLight = style.curLight < applied ? style.curLight : uint16_t{0};
  globals.ambientColor = style.ambientColor;
  globals.material = style.material;
  globals.gloss = style.gloss;
  globals.exposure = style.exposure;
  globals.ambientBrightness = style.ambientBrightness;
  globals.bumpChannel = style.bumpChannel;
  globals.whiteIsHigh = style.whiteIsHigh != 0 ? 1 : 0;
  globals.bumpAmplitude = style.bumpAmplitude;
  globals.InvalidateCaches();
  globals.FreeCaches();
  return true;
}

LM_style LM_StyleOfSettings(const LM_globals& globals) {
  LM_style style = {};
  style.version = LM_STYLE_VERSION;
  style.bumpChannel = globals.BumpChannel();
  style.whiteIsHigh = globals.WhiteIsHigh() == 1 ? 1 : 0;
  style.bumpAmplitude = globals.BumpAmplitude();
  style.ambientColor = globals.ambientColor;
  style.material = globals.material;
  style.gloss = globals.gloss;
  style.exposure = globals.exposure;
  style.ambientBrightness = globals.ambientBrightness;
  style.numLights = globals.numLights;
  style.curLight = globals.curLight;
  style.worldUnit = WorldUnit(globals);
  style.lightsRead = std::min<uint16_t>(globals.numLights, LM_MAX_LIGHTS);
  for (int i = 0; i < style.lightsRead; ++i)
    style.lights[i] = StoredLight(globals.lights[i]);
  return style;
}

int16_t LM_ChannelOrNone(int16_t channel, int numChannels) {
  return channel < 0 || channel > numChannels ? int16_t{0} : channel;
}

bool LM_ParametersFromStyle(const LM_style& style, int areaWidth, int areaHeight, int numChannels,
                            foo* params) {
  LM_globals* globals = LM_NewGlobals();
  if (globals == nullptr)
    return false;
  LM_UsePreviewGeometry(LM_FitPreviewInFrame(areaWidth, areaHeight), globals);
  globals->Default();
  const bool applied = LM_ApplyStyle(style, *globals);
  if (applied) {
    globals->SetBumpChannel(LM_ChannelOrNone(globals->BumpChannel(), numChannels));
    LimitToSliders(*globals);
    LM_InitParameters(params);
    globals->ConvertToParameters(params, 0);
  }
  LM_DestroyGlobals(globals);
  return applied;
}
