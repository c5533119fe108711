#include "LM_globals.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include "LM_arithmetic.h"
#include "LM_memory.h"

namespace {

constexpr uint16_t FULL = 65535;
constexpr float ELLIPSE_ANGLE = 0.15707964F;

} // namespace

LM_globals::LM_globals() {
  // Every field is plain data, so that one sweep gives each a defined value.
  std::memset(static_cast<void*>(this), 0, sizeof *this);
  _DefaultSurface();
  previewOn = 1;
  for (LM_light_UI& light : lights)
    light.globals = this;
}

void LM_globals::_DefaultSurface() {
  ambientColor = {{FULL, FULL, FULL}};
  material = 0;
  gloss = 128;
  exposure = 128;
  ambientBrightness = 16;
  bumpAmplitude = 128;
  whiteIsHigh = 1;
}

void LM_globals::operator delete(void* object, [[maybe_unused]] size_t size) {
  LM_DisposePtr(object);
}

void LM_globals::Default() {
  _DefaultSurface();
  // The relief's normals too, which depend on its height and direction.
  InvalidateCaches();
  curLight = 0;
  numLights = 1;
  LM_light_UI& light = lights[0];
  light.anchor = {frameCenterX, frameCenterY};
  light.color = {{FULL, FULL, 0}};
  light.intensity = 127;
  light.on = 1;
  light.type = LM_LIGHT_SPOT;
  light.center = {0, 0};
  _ShapeDefaultSpot(light);
}

void LM_globals::_ShapeDefaultSpot(LM_light_UI& light) {
  light.spread = 128;
  light.handle1 = {30, 30};
  light.handle2 = {-15, 15};
  light.radius = 30;
  GenerateEllipseCoords();
}

int16_t LM_globals::CopySettingsFrom(const LM_globals& other) {
  ambientColor = other.ambientColor;
  material = other.material;
  gloss = other.gloss;
  exposure = other.exposure;
  ambientBrightness = other.ambientBrightness;
  bumpAmplitude = other.BumpAmplitude();
  whiteIsHigh = other.WhiteIsHigh();
  dialogPending = other.dialogPending;
  previewComplete = other.previewComplete;
  previewOn = other.previewOn;
  previewScale = other.previewScale;
  previewOffsetX = other.previewOffsetX;
  previewOffsetY = other.previewOffsetY;
  previewWidth = other.previewWidth;
  previewHeight = other.previewHeight;
  tileSize = other.tileSize;
  numLights = other.numLights;
  curLight = other.curLight;
  frameCenterX = other.frameCenterX;
  frameCenterY = other.frameCenterY;
  frameOriginX = other.frameOriginX;
  frameOriginY = other.frameOriginY;
  for (int i = 0; i < numLights; ++i) {
    // This object's own buffers would be lost under the copy, and the other's must not be shared.
    lights[i].FreeCaches();
    lights[i] = other.lights[i];
    lights[i].globals = this;
    lights[i].DetachCaches();
  }
  bumpChannel = other.BumpChannel();
  useCurrentSettings = other.UseCurrentSettings();
  styleIndex = other.StyleIndex();
  GenerateEllipseCoords();
  dialogResource = nullptr;
  dialog = nullptr;
  return 0;
}

void LM_globals::ConvertToParameters(foo* params, LM_bool preview) const {
  const uint16_t pixelsPerUnit = static_cast<uint16_t>(frameCenterX - frameOriginX);
  LM_ConvertSurface({ambientColor, ambientBrightness, gloss, material, exposure, bumpChannel,
                     bumpAmplitude, whiteIsHigh != 0, previewWidth, pixelsPerUnit},
                    params);
  uint16_t count = 0;
  for (int i = 0; i < numLights; ++i)
    if (lights[i].on == 1)
      lights[i].ConvertToRealLight(&params->lights[count++], pixelsPerUnit, preview);
  params->numLights = count;
}

void LM_globals::GenerateEllipseCoords() {
  float angle = 0.0F;
  for (int k = 0; k < LM_ELLIPSE_STEPS; ++k) {
    ellipseCos[k] = static_cast<float>(std::cos(static_cast<double>(angle)));
    ellipseSin[k] = static_cast<float>(std::sin(static_cast<double>(angle)));
    angle = angle + ELLIPSE_ANGLE;
  }
}

LM_light_UI* LM_globals::_AddLight(int16_t h, int16_t v) {
  if (numLights >= LM_MAX_LIGHTS)
    return nullptr;
  curLight = numLights++;
  LM_light_UI& light = CurrentLight();
  light.anchor = {frameCenterX, frameCenterY};
  light.center = {LM_Cut16(h - frameCenterX), LM_Cut16(v - frameCenterY)};
  light.on = 1;
  light.InvalidateCaches();
  return &light;
}

void LM_globals::CreateNewOmniLight(int16_t h, int16_t v) {
  LM_light_UI* light = _AddLight(h, v);
  if (light == nullptr)
    return;
  light->type = LM_LIGHT_OMNI;
  light->color = {{FULL, FULL, 0}};
  light->intensity = 127;
  light->spread = 0;
  light->handle1 = {20, 0};
  light->handle2 = {0, 10};
}

void LM_globals::CopyNewLight(int16_t h, int16_t v) {
  const LM_light_UI& model = CurrentLight();
  LM_light_UI* light = _AddLight(h, v);
  if (light == nullptr)
    return;
  light->type = model.type;
  light->color = model.color;
  light->intensity = model.intensity;
  light->spread = model.spread;
  light->handle1 = model.handle1;
  light->handle2 = model.handle2;
  light->radius = model.radius;
}

void LM_globals::CreateNewSpotlight(int16_t h, int16_t v) {
  const uint16_t before = numLights;
  CopyNewLight(h, v);
  if (numLights != before)
    CurrentLight().type = LM_LIGHT_SPOT;
}

void LM_globals::CreateNewLight(int16_t h, int16_t v) {
  LM_light_UI* light = _AddLight(h, v);
  if (light == nullptr)
    return;
  light->type = LM_LIGHT_SPOT;
  light->color = {{FULL, FULL, FULL}};
  light->intensity = 66;
  _ShapeDefaultSpot(*light);
}

LM_bool LM_globals::DeleteCurrentLight() {
  if (numLights <= 1)
    return 0;
  --numLights;
  lights[curLight].FreeCaches();
  std::copy(lights + curLight + 1, lights + numLights + 1, lights + curLight);
  // The last record now stands twice: its buffers belong to the first of the two.
  lights[numLights].DetachCaches();
  curLight = 0;
  DiffuseSumCacheHot(0);
  SpecularSumCacheHot(0);
  return 1;
}

void LM_globals::SetBumpAmplitude(int16_t amplitude) {
  if (amplitude != bumpAmplitude)
    InvalidateCaches();
  bumpAmplitude = amplitude;
}

void LM_globals::SetWhiteIsHigh(LM_bool high) {
  if (high != whiteIsHigh)
    InvalidateCaches();
  whiteIsHigh = high;
}

void LM_globals::SetBumpChannel(int16_t channel) {
  if (channel == bumpChannel)
    return;
  if (channel != 0 && bumpChannel != 0)
    InvalidateCaches();
  else
    FreeCaches();
  bumpChannel = channel;
}

LM_globals* LM_NewGlobals() {
  void* block = LM_NewPtr(sizeof(LM_globals));
  return block != nullptr ? new (block) LM_globals : nullptr;
}

void LM_DestroyGlobals(LM_globals* globals) {
  globals->FreeCaches();
  delete globals;
}
