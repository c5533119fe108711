// Editable lights made ready for shading.
#include "EngineRun.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

LM_light Converted(const ReferenceLight& light, uint16_t pixelsPerUnit, LM_bool preview) {
  LM_light out{};
  ToEngine(light).ConvertToRealLight(&out, pixelsPerUnit, preview);
  return out;
}

void ExpectSame(float expected, float actual, const char* what) {
  EXPECT_TRUE(expected == actual || (std::isnan(expected) && std::isnan(actual)))
      << what << ": expected " << expected << ", got " << actual;
}

void ExpectSame(const ReferenceVector& expected, const LM_vector3f& actual, const char* what) {
  ExpectSame(expected.x, actual.x, what);
  ExpectSame(expected.y, actual.y, what);
  ExpectSame(expected.z, actual.z, what);
}

void ExpectSameSpot(const ReferenceRealLight& expected, const LM_light& actual) {
  ExpectSame(expected.cosCutoff, actual.cosCutoff, "cutoff");
  ExpectSame(expected.spreadScale, actual.spreadScale, "spread scale");
  ExpectSame(expected.spreadMinCos, actual.spreadMinCos, "spread minimum");
  for (size_t i = 0; i < expected.spreadTable.size(); ++i)
    ExpectSame(expected.spreadTable[i], actual.spreadTable[i], "falloff");
}

} // namespace

TEST(Conversion, EqualsTheFormulas) {
  SceneRandom random(11);
  for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("light " + std::to_string(i));
    const ReferenceLight light =
        MakeLight(random, i % 3, i % 2 ? SceneMood::Wild : SceneMood::Usual);
    const auto scale = static_cast<uint16_t>(random.OneOf({140, 128, 1, 0, 65535}));
    const bool preview = random.OneIn(2);
    const ReferenceRealLight expected =
        ReferenceConvert(light, scale, preview ? REFERENCE_PREVIEW_TABLE : REFERENCE_TABLE);
    const LM_light actual = Converted(light, scale, preview);
    for (int k = 0; k < 3; ++k)
      EXPECT_EQ(expected.color[k], actual.color.component[k]);
    if (light.type != REFERENCE_DIRECTIONAL)
      ExpectSame(expected.position, actual.position, "position");
    if (light.type != REFERENCE_OMNI)
      ExpectSame(expected.direction, actual.direction, "direction");
    if (light.type == REFERENCE_SPOT)
      ExpectSameSpot(expected, actual);
  }
}

TEST(Conversion, ValidateTurnsTheSecondAxis) {
  const struct {
    LM_vectori2 first, second, expected;
  } cases[] = {
      {{20, 0}, {5, 30}, {0, 20}},
      {{0, -10}, {3, 4}, {5, 0}},
      {{30, 30}, {-15, 15}, {-15, 15}},
      {{-20, 0}, {0, 10}, {0, -10}},
      {{0, 10}, {10, 0}, {-10, 0}},
      {{3, 0}, {0, 1}, {0, 1}},
      {{2, 0}, {1, 0}, {0, 1}},
      {{5, 5}, {0, 0}, {0, 0}},
      {{0, 0}, {0, 0}, {0, 0}},
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
    EXPECT_EQ(light.handle2, each.expected)
        << "(" << each.first.h << ", " << each.first.v << ") with (" << each.second.h << ", "
        << each.second.v << ") gave (" << light.handle2.h << ", " << light.handle2.v << ")";
    light.type = LM_LIGHT_DIRECTIONAL;
    light.handle2 = each.second;
    light.Validate();
    EXPECT_EQ(light.handle2, each.second);
  }
}
