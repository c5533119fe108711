#include "LM_style_settings.h"

#include <algorithm>

#include "LM_arithmetic.h"
#include "LM_globals.h"
#include "LM_light_kinds.h"

namespace {

// Half the width of the preview frame, in preview pixels.
int16_t WorldUnit(const LM_globals& globals) {
  return LM_Cut16(globals.frameCenterX - globals.frameOriginX);
}

void ApplyLight(const LM_style_light& stored, const LM_globals& globals, LM_light_UI& light) {
  light.color = stored.color;
  light.anchor = {globals.frameCenterX, globals.frameCenterY};
  light.intensity = stored.intensity;
  light.spread = stored.spread;
  light.on = stored.on == 1 ? 1 : 0;
  light.type = LM_LightKindOfCode(stored.type).type;
  light.center = LM_WholeLengths(stored.center);
  light.handle1 = LM_WholeLengths(stored.handle1);
  light.handle2 = LM_WholeLengths(stored.handle2);
  light.radius = LM_WholeLength(stored.radius);
}

LM_style_light StoredLight(const LM_light_UI& light) {
  LM_style_light stored = {};
  stored.color = light.color;
  stored.intensity = light.intensity;
  stored.spread = light.spread;
  stored.on = light.on == 1 ? 1 : 0;
  stored.type = LM_LightKindOfType(light.type).code;
  stored.center = light.center.Floats();
  stored.handle1 = light.handle1.Floats();
  stored.handle2 = light.handle2.Floats();
  stored.radius = light.radius;
  return stored;
}

} // namespace

bool LM_ApplyStyle(const LM_style& style, LM_globals& globals) {
  const int applied = std::min<int>(style.lightsRead, LM_MAX_LIGHTS);
  if (applied == 0)
    return false;
  for (int i = 0; i < applied; ++i)
    ApplyLight(LM_TranslateLight(style.lights[i], style.worldUnit, WorldUnit(globals)), globals,
               globals.lights[i]);
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
  style.lightsRead = globals.numLights;
  for (int i = 0; i < style.lightsRead; ++i)
    style.lights[i] = StoredLight(globals.lights[i]);
  return style;
}
