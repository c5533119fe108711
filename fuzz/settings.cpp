// Lights and settings changed in any order, the preview with its caches rendered in between, and
// the whole picture at last: all of it as the plain shader draws it.
#include "FuzzInput.h"

#include "EngineRun.h"
#include "LM_preview.h"
#include "MacMemory.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr int MOST_STEPS = 20;
constexpr int16_t HEIGHT_CHANNEL = 4;

ReferencePoint Point(const LM_vectori2& vector) {
  return {vector.h, vector.v};
}

// The settings as the plain shader takes them.
ReferenceSettings SettingsOf(const LM_globals& globals) {
  ReferenceSettings settings;
  std::copy_n(globals.ambientColor.component, 3, settings.ambientColor.begin());
  settings.material = globals.material;
  settings.gloss = globals.gloss;
  settings.exposure = globals.exposure;
  settings.ambience = globals.ambientBrightness;
  settings.bumpAmplitude = globals.BumpAmplitude();
  settings.whiteIsHigh = globals.WhiteIsHigh() != 0;
  for (int i = 0; i < globals.numLights; ++i) {
    const LM_light_UI& light = globals.lights[i];
    ReferenceLight& plain = settings.lights.emplace_back();
    plain.type = light.type;
    plain.center = Point(light.center);
    plain.handle1 = Point(light.handle1);
    plain.handle2 = Point(light.handle2);
    plain.radius = light.radius;
    std::copy_n(light.color.component, 3, plain.color.begin());
    plain.intensity = light.intensity;
    plain.spread = light.spread;
    plain.on = light.on == 1;
  }
  return settings;
}

void EditLight(FuzzInput& input, LM_globals& globals) {
  globals.curLight = static_cast<uint16_t>(input.Below(globals.numLights));
  LM_light_UI& light = globals.lights[globals.curLight];
  switch (input.Below(8)) {
  case 0:
    light.type = input.Below(3);
    break;
  case 1:
    light.center = {input.Number(), input.Number()};
    break;
  case 2:
    light.handle1 = {input.Number(), input.Number()};
    break;
  case 3:
    light.handle2 = {input.Number(), input.Number()};
    break;
  case 4:
    light.Validate();
    break;
  case 5:
    light.on ^= 1;
    if (light.on == 0)
      light.FreeCaches();
    break;
  case 6:
    light.radius = input.Number();
    light.spread = input.Number();
    break;
  default:
    light.color.component[input.Below(3)] = static_cast<uint16_t>(input.Short());
    light.intensity = input.Number();
  }
  light.InvalidateCaches();
}

void EditSurface(FuzzInput& input, LM_globals& globals) {
  switch (input.Below(7)) {
  case 0:
    globals.gloss = input.Number();
    break;
  case 1:
    globals.material = input.Number();
    break;
  case 2:
    globals.exposure = input.Number();
    break;
  case 3:
    globals.ambientBrightness = input.Number();
    break;
  case 4:
    globals.ambientColor.component[input.Below(3)] = static_cast<uint16_t>(input.Short());
    break;
  case 5:
    globals.SetBumpAmplitude(input.Number());
    break;
  default:
    globals.SetWhiteIsHigh(globals.WhiteIsHigh() == 0 ? 1 : 0);
  }
}

void EditLights(FuzzInput& input, LM_globals& globals) {
  const int kind = input.Below(6);
  if (kind == 0)
    globals.CreateNewOmniLight(input.Number(), input.Number());
  else if (kind == 1)
    globals.CreateNewSpotlight(input.Number(), input.Number());
  else if (kind == 2)
    globals.CopyNewLight(input.Number(), input.Number());
  else if (kind == 3)
    globals.CreateNewLight(input.Number(), input.Number());
  else if (kind == 4)
    globals.DeleteCurrentLight();
  else
    globals.Default();
}

// Settings copied away, spoilt and brought back, as after a cancelled dialog.
void BackUpAndRestore(LM_globals& globals) {
  const GlobalsPointer backup(LM_NewGlobals());
  backup->CopySettingsFrom(globals);
  globals.Default();
  globals.SetWhiteIsHigh(0);
  globals.CopySettingsFrom(*backup);
  globals.InvalidateCaches();
}

Scene SmallScene(FuzzInput& input) {
  Scene scene;
  scene.width = 1 + input.Below(9);
  scene.height = 1 + input.Below(6);
  scene.area = {0, 0, scene.height, scene.width};
  scene.settings.lights.resize(1);
  for (int i = 0; i < scene.width * scene.height * 3; ++i)
    scene.pixels.push_back(static_cast<uint8_t>(200 + i * 37));
  for (int i = 0; i < scene.width * scene.height; ++i)
    scene.heights.push_back(static_cast<uint8_t>(i * i * 5 / 3 & 0x1F));
  return scene;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  testing::FLAGS_gtest_throw_on_failure = true;
  TB_SetMemoryBudget(1 << 30); // asking the machine each time takes longer than all the rest
  FuzzInput input(data, size);
  Scene scene = SmallScene(input);
  const std::vector<uint8_t> heights = scene.heights;
  EngineRun run(scene);
  LM_globals& globals = *run.globals;
  Check(run.CollectPreview(6 + input.Below(7)), "a preview can be set up");
  globals.Default();
  for (int step = 0; step < MOST_STEPS && !input.Empty(); ++step) {
    const int kind = input.Below(16);
    if (kind < 6)
      EditLight(input, globals);
    else if (kind < 9)
      EditSurface(input, globals);
    else if (kind < 11)
      EditLights(input, globals);
    else if (kind == 11)
      BackUpAndRestore(globals);
    else if (kind == 12)
      globals.SetBumpChannel(globals.BumpChannel() == 0 ? HEIGHT_CHANNEL : int16_t{0});
    scene.settings = SettingsOf(globals);
    scene.heights = globals.BumpChannel() == 0 ? std::vector<uint8_t>() : heights;
    if (kind == 12 && globals.BumpChannel() != 0)
      LM_GetPreviewBumpPixelMap(&globals);
    if (kind >= 14)
      Check(run.ReferencePreview() == run.RenderPreview(), "the preview is as the settings say");
  }
  globals.FreeCaches();
  scene.settings = SettingsOf(globals);
  scene.geometry = {globals.previewWidth, globals.frameCenterX, globals.frameOriginX};
  Check(RenderScene(scene) == run.RenderTiles(), "the picture is as the settings say");
  return 0;
}
