// The settings object: defaults, the list of lights, the parameter block, caches.
#include "EngineRun.h"
#include "MacMemory.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

// Settings with the frame's centre at (150, 120) of the dialog and `lights` default lights.
GlobalsPointer Defaults(int lights = 1) {
  GlobalsPointer globals(LM_NewGlobals());
  globals->frameCenterX = 150;
  globals->frameCenterY = 120;
  globals->frameOriginX = 10;
  globals->previewWidth = 256;
  globals->Default();
  while (globals->numLights < lights)
    globals->CreateNewLight(150, 120);
  return globals;
}

} // namespace

TEST(Settings, Default) {
  const GlobalsPointer g = Defaults();
  const LM_light_UI& light = g->lights[0];
  using Values = std::vector<int>;
  EXPECT_EQ((Values{g->gloss, g->material, g->exposure, g->ambientBrightness, g->bumpAmplitude,
                    g->whiteIsHigh, g->bumpChannel, g->numLights, g->curLight}),
            (Values{128, 0, 128, 16, 128, 1, 0, 1, 0}));
  EXPECT_EQ(
      (Values{light.type, light.radius, light.intensity, light.spread, light.on,
              g->ambientColor.component[2], light.color.component[1], light.color.component[2],
              light.center.h, light.anchor.v, light.handle1.h, light.handle2.h}),
      (Values{LM_LIGHT_SPOT, 30, 127, 128, 1, 65535, 65535, 0, 0, 120, 30, -15}));
}

TEST(Settings, AddedLights) {
  using Add = void (LM_globals::*)(int16_t, int16_t);
  const struct {
    const char* name;
    Add add;
    int type, blue, intensity, spread;
    LM_vectori2 handle1, handle2;
  } cases[] = {
      {"omni", &LM_globals::CreateNewOmniLight, 0, 0, 127, 0, {20, 0}, {0, 10}},
      {"spot like the last", &LM_globals::CreateNewSpotlight, 2, 77, -5, 9, {1, 2}, {3, 4}},
      {"copy", &LM_globals::CopyNewLight, 1, 77, -5, 9, {1, 2}, {3, 4}},
      {"fresh", &LM_globals::CreateNewLight, 2, 65535, 66, 128, {30, 30}, {-15, 15}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    const GlobalsPointer globals = Defaults(3);
    LM_light_UI& model = globals->lights[1];
    globals->curLight = 1;
    model.type = LM_LIGHT_DIRECTIONAL;
    model.color.component[2] = 77;
    model.intensity = -5;
    model.spread = 9;
    model.handle1 = {1, 2};
    model.handle2 = {3, 4};
    (globals.get()->*each.add)(170, 100);
    ASSERT_EQ(globals->numLights, 4);
    EXPECT_EQ(globals->curLight, 3);
    const LM_light_UI& light = globals->lights[3];
    EXPECT_EQ(light.center, (LM_vectori2{20, -20}));
    EXPECT_EQ(light.anchor, (LM_vectori2{150, 120}));
    EXPECT_EQ((std::vector{int{light.on}, light.type, int{light.color.component[2]},
                           int{light.intensity}, int{light.spread}}),
              (std::vector{1, each.type, each.blue, each.intensity, each.spread}));
    EXPECT_EQ(light.handle1, each.handle1);
    EXPECT_EQ(light.handle2, each.handle2);

    const GlobalsPointer full = Defaults(16);
    full->curLight = 4;
    (full.get()->*each.add)(170, 100);
    EXPECT_EQ(full->numLights, 16);
    EXPECT_EQ(full->curLight, 4);
  }
}

TEST(Settings, DeletingReleasesThatLightsCachesAlone) {
  const GlobalsPointer globals = Defaults(4);
  globals->AllocateCaches(8, 8, 0);
  const uint64_t blocks = TB_BlocksInUse();
  globals->curLight = 2;
  EXPECT_EQ(globals->DeleteCurrentLight(), 1);
  EXPECT_EQ(TB_BlocksInUse(), blocks - 2);
  EXPECT_EQ(globals->lights[3].diffuseCache, nullptr);
  EXPECT_EQ(globals->lights[3].specularCache, nullptr);
  EXPECT_NE(globals->lights[2].diffuseCache, nullptr);
}

TEST(Settings, PackSwitchedOnLights) {
  const GlobalsPointer globals = Defaults(4);
  for (int i = 0; i < 4; ++i) {
    globals->lights[i].intensity = static_cast<int16_t>(32 * i);
    globals->lights[i].color = {{1, 0, 0}};
  }
  globals->lights[0].on = 0;
  globals->lights[2].on = 2; // not exactly 1
  foo params{};
  LM_InitParameters(&params);
  globals->ConvertToParameters(&params, 0);
  EXPECT_EQ(params.magic, 0x05BF44FD);
  EXPECT_FLOAT_EQ(params.worldScale, 256.0F / 140.0F);
  ASSERT_EQ(params.numLights, 2);
  EXPECT_EQ(params.lights[0].color.component[0], 1);
  EXPECT_EQ(params.lights[1].color.component[0], 3);

  for (LM_light_UI& light : globals->lights)
    light.on = 0;
  globals->ConvertToParameters(&params, 0);
  EXPECT_EQ(params.numLights, 0);
  EXPECT_EQ(params.lights[1].color.component[0], 3); // the block's old lights stay as they were
}

TEST(Settings, SettersReachTheCachesThatDepend) {
  enum class Effect { None, Cold, Freed };
  const struct {
    const char* name;
    int before;
    void (*change)(LM_globals&);
    Effect effect;
  } cases[] = {
      {"same channel", 3, [](LM_globals& g) { g.SetBumpChannel(3); }, Effect::None},
      {"other channel", 3, [](LM_globals& g) { g.SetBumpChannel(4); }, Effect::Cold},
      {"first channel", 0, [](LM_globals& g) { g.SetBumpChannel(3); }, Effect::Freed},
      {"no channel", 3, [](LM_globals& g) { g.SetBumpChannel(0); }, Effect::Freed},
      {"same amplitude", 3, [](LM_globals& g) { g.SetBumpAmplitude(128); }, Effect::None},
      {"other amplitude", 3, [](LM_globals& g) { g.SetBumpAmplitude(5); }, Effect::Cold},
      {"same side high", 3, [](LM_globals& g) { g.SetWhiteIsHigh(1); }, Effect::None},
      {"other side high", 3, [](LM_globals& g) { g.SetWhiteIsHigh(0); }, Effect::Cold},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    const GlobalsPointer globals = Defaults();
    globals->SetBumpChannel(static_cast<int16_t>(each.before));
    globals->AllocateCaches(8, 8, 1);
    globals->PosCacheHot(1);
    globals->SampleCountCacheHot(1);
    globals->DiffuseSumCacheHot(1);
    globals->lights[0].SpecularCacheHot(1);
    each.change(*globals);
    for (const LM_bool hot : {globals->PosCacheHot(), globals->SampleCountCacheHot(),
                              globals->DiffuseSumCacheHot(), globals->lights[0].SpecularCacheHot()})
      EXPECT_EQ(hot != 0, each.effect == Effect::None);
    EXPECT_EQ(globals->UsePosCache() != 0, each.effect != Effect::Freed);
    EXPECT_EQ(globals->lights[0].UseSpecularCache() != 0, each.effect != Effect::Freed);
  }
}

TEST(Settings, CopiesShareNoCacheAndAllIsReleased) {
  const uint64_t blocks = TB_BlocksInUse();
  GlobalsPointer source = Defaults(2);
  source->gloss = 7;
  source->SetBumpChannel(2);
  source->SetStyleIndex(5);
  source->SetUseCurrentSettings(1);
  for (int round = 0; round < 2; ++round) // what is there stays
    source->AllocateCaches(8, 8, 1);
  {
    const GlobalsPointer copy(LM_NewGlobals());
    EXPECT_EQ(copy->CopySettingsFrom(*source), 0);
    EXPECT_EQ(copy->gloss, 7);
    EXPECT_EQ(copy->bumpChannel, 2);
    EXPECT_EQ(copy->styleIndex, 5);
    EXPECT_EQ(copy->useCurrentSettings, 1);
    ASSERT_EQ(copy->numLights, 2);
    EXPECT_EQ(copy->lights[1].globals, copy.get());
    EXPECT_EQ(copy->lights[1].handle1, source->lights[1].handle1);
    EXPECT_EQ(copy->lights[1].diffuseCache, nullptr);
    EXPECT_FALSE(copy->UsePosCache());
  } // and is destroyed
  ASSERT_TRUE(source->lights[1].UseDiffuseCache());
  std::memset(source->lights[1].diffuseCache, 1, 8 * 8 * 4 * sizeof(LM_color96));
  source.reset();
  EXPECT_EQ(TB_BlocksInUse(), blocks);
}

TEST(Settings, ValidateTurnsTheSecondAxis) {
  const struct {
    LM_vectori2 first, second, expected;
  } cases[] = {
      {{20, 0}, {5, 30}, {0, 20}},
      {{0, -10}, {3, 4}, {5, 0}},
      {{-20, 0}, {0, 10}, {0, -10}},
      {{2, 0}, {1, 0}, {0, 1}},
      {{5, 5}, {0, 0}, {0, 0}},
      {{0, 0}, {7, 0}, {0, 0}},
      {{7, -7}, {5, 0}, {4, 4}},
      {{-7, 7}, {5, 0}, {-4, -4}},
      {{32767, 1}, {32767, 32767}, {-1, 32767}},
  };
  for (const auto& each : cases) {
    LM_light_UI light{};
    light.type = LM_LIGHT_SPOT;
    light.handle1 = each.first;
    light.handle2 = each.second;
    light.Validate();
    EXPECT_EQ(light.handle2, each.expected) << each.first.h << ", " << each.first.v;
    light.type = LM_LIGHT_DIRECTIONAL;
    light.handle2 = each.second;
    light.Validate();
    EXPECT_EQ(light.handle2, each.second);
  }
}
