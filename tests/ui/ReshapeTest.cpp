// What one place of the mouse makes of a light's shape.
#include "LightDialog.h"

#include "LM_light_UI_mac.h"

#include <gtest/gtest.h>

namespace {

enum Keys { NONE, SHIFT, COMMAND, BOTH };

// Mouse places are relative to the light's centre.
class Reshape : public testing::Test {
protected:
  Reshape() {
    globals.GenerateEllipseCoords();
    light().center = {10, 20};
    light().anchor = {100, 100};
  }
  LM_light_UI& light() { return globals.lights[0]; }
  void Move(short code, int h, int v, Keys keys) {
    LM_color96 sums[1];
    light().diffuseCache = light().specularCache = sums;
    light().diffuseCacheHot = light().specularCacheHot = 1;
    LM_vectori2 start1 = light().handle1;
    LM_vectori2 start2 = light().handle2;
    Rect preview = {0, 0, 300, 300};
    light()._SetNewHandlePosition(static_cast<short>(110 + h), static_cast<short>(120 + v),
                                  &globals, preview, code, start1, start2,
                                  keys == SHIFT || keys == BOTH, keys == COMMAND || keys == BOTH);
    EXPECT_FALSE(light().diffuseCacheHot || light().specularCacheHot) << "the caches are stale";
    light().DetachCaches();
  }
  LM_globals globals;
};

TEST_F(Reshape, ADirectionalLightFollowsTheMouseAsTheKeysAllow) {
  struct Case {
    const char* name;
    LM_vectori2 start;
    int h, v;
    Keys keys;
    LM_vectori2 end;
  };
  const Case cases[] = {
      {"free", {30, 40}, -60, 7, NONE, {-60, 7}},
      {"Shift keeps the direction", {30, 40}, -60, 0, SHIFT, {36, 48}},
      {"Shift wins over Command", {30, 40}, -60, 0, BOTH, {36, 48}},
      {"Command keeps the length", {30, 40}, -7, 24, COMMAND, {-14, 48}},
      {"products are cut towards zero", {-3, 4}, 7, 0, SHIFT, {-4, 5}},
      {"quotients are cut towards zero", {30, 40}, -20, 10, COMMAND, {-44, 22}},
      {"a handle without length has no direction to keep", {0, 0}, 30, 40, SHIFT, {0, 0}},
      {"a mouse on the centre has no direction", {30, 40}, 0, 0, COMMAND, {0, 0}},
      {"a mouse on the centre has no length", {30, 40}, 0, 0, SHIFT, {0, 0}},
      {"a long handle keeps its length too", {200, 0}, 0, 250, COMMAND, {0, 200}},
  };
  for (const Case& test : cases) {
    light().type = LM_LIGHT_DIRECTIONAL;
    light().handle1 = test.start;
    Move(2, test.h, test.v, test.keys);
    EXPECT_EQ(light().handle1, test.end) << test.name;
  }
}

TEST_F(Reshape, AnOmnisRadiusFollowsTheDraggedSide) {
  struct Case {
    const char* name;
    short code;
    int h, v;
    int16_t radius;
  };
  const Case cases[] = {
      {"left", 2, -35, 90, 35},
      {"top", 3, 90, -36, 36},
      {"right", 4, 37, 90, 37},
      {"bottom", 5, 90, 38, 38},
      {"right dragged to the left", 4, -5, 0, 1},
      {"top dragged to the centre", 3, 0, 0, 1},
      {"no handle", 1, 90, 90, 30},
  };
  for (Keys keys : {NONE, SHIFT, COMMAND}) {
    for (const Case& test : cases) {
      light().type = LM_LIGHT_OMNI;
      light().radius = 30;
      Move(test.code, test.h, test.v, keys);
      EXPECT_EQ(light().radius, test.radius) << test.name << ", keys " << keys;
    }
  }
}

TEST_F(Reshape, ASpotsAxesStayPerpendicularAndTheFirstStaysLonger) {
  struct Case {
    const char* name;
    short code;
    int h, v;
    Keys keys;
    LM_vectori2 first, second;
  };
  // Starts with axes of (40, 0) and (0, 20).
  const Case cases[] = {
      {"aim", 4, 0, 30, NONE, {0, 30}, {-20, 0}},
      {"opposite of the aim", 2, -30, 0, NONE, {30, 0}, {0, 20}},
      {"aim shorter than the second axis", 4, 10, 0, NONE, {10, 0}, {0, 10}},
      {"aim, rounded", 4, 30, 40, NONE, {30, 40}, {-16, 12}},
      {"aim with Shift", 4, 0, 50, SHIFT, {50, 0}, {0, 20}},
      {"opposite with Command", 2, 0, -20, COMMAND, {0, 40}, {-20, 0}},
      {"aim to nothing", 4, 0, 0, NONE, {0, 0}, {0, 0}},
      {"second axis", 5, 0, 10, NONE, {40, 0}, {0, 10}},
      {"opposite of the second axis", 3, 10, 0, NONE, {0, 40}, {-10, 0}},
      {"second axis longer than the first", 5, 0, 60, NONE, {60, 0}, {0, 60}},
      {"second axis with Shift", 5, -50, 0, SHIFT, {50, 0}, {0, 50}},
      {"second axis with Command", 3, 9, 12, COMMAND, {-32, 24}, {-12, -16}},
      {"second axis to nothing keeps the first", 5, 0, 0, NONE, {40, 0}, {0, 0}},
      {"no handle", 1, 90, 90, NONE, {40, 0}, {0, 20}},
  };
  for (const Case& test : cases) {
    light().type = LM_LIGHT_SPOT;
    light().handle1 = {40, 0};
    light().handle2 = {0, 20};
    Move(test.code, test.h, test.v, test.keys);
    EXPECT_EQ(light().handle1, test.first) << test.name;
    EXPECT_EQ(light().handle2, test.second) << test.name;
  }
}

} // namespace
