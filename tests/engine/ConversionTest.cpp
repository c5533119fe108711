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

TEST(Conversion, PlacesAndAimsLights) {
  const float tan30 = 0.57735026F;
  const auto root = std::sqrt(0.5F);
  const struct {
    const char* name;
    int type;
    ReferencePoint handle1, handle2;
    bool aims; // direction, else position
    LM_vector3f expected;
  } cases[] = {
      {"directional straight overhead", 1, {0, 0}, {}, true, {0, 0, 1}},
      {"directional of 45 degrees", 1, {50, 0}, {}, true, {root, 0, root}},
      {"grazing directional", 1, {0, 150}, {}, true, {0, 150 / std::sqrt(22501.F), 0.0066665F}},
      {"omni over its radius", 0, {}, {}, false, {0.5F, -0.25F, tan30}},
      {"flat spot, aim", 2, {100, 0}, {0, 0}, true, {-root, 0, -root}},
      {"flat spot, place", 2, {100, 0}, {0, 0}, false, {1.5F, -0.25F, 0}},
      {"flat spot aimed up the picture", 2, {0, 100}, {0, 0}, true, {0, -root, -root}},
      {"round spot, aim", 2, {0, 100}, {100, 0}, true, {0, 0, -1}},
      {"round spot, place", 2, {100, 0}, {0, 100}, false, {0.5F, -0.25F, 1}},
      {"second axis too long", 2, {100, 0}, {0, 300}, false, {0.5F, -0.25F, 1}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    ReferenceLight light;
    light.type = each.type;
    light.center = {50, -25};
    light.handle1 = each.handle1;
    light.handle2 = each.handle2;
    light.radius = 100;
    const LM_light out = Converted(light, 100, 0);
    const LM_vector3f& got = each.aims ? out.direction : out.position;
    EXPECT_NEAR(got.x, each.expected.x, 1e-6);
    EXPECT_NEAR(got.y, each.expected.y, 1e-6);
    EXPECT_NEAR(got.z, each.expected.z, 1e-6);
  }
}

TEST(Conversion, MultipliesColorByIntensity) {
  const struct {
    int color, intensity, expected;
  } cases[] = {
      {65535, 127, 260092}, {65535, -127, -260092},    {65535, 0, 0}, {31, 1, 0}, {31, -1, 0},
      {33, -1, -1},         {65535, -32768, -67107840}};
  for (const auto& each : cases) {
    ReferenceLight light;
    light.color = {static_cast<uint16_t>(each.color), 0, 0};
    light.intensity = static_cast<int16_t>(each.intensity);
    EXPECT_EQ(Converted(light, 100, 0).color.component[0], each.expected)
        << each.color << " x " << each.intensity;
  }
}

TEST(Conversion, BuildsFalloffTables) {
  const struct {
    LM_bool preview;
    int entries;
    double scale;
  } cases[] = {{0, 1024, 3492.74}, {1, 256, 870.62}};
  for (const auto& each : cases) {
    for (const int spread : {0, 64, 128, 200, 255}) {
      SCOPED_TRACE(std::to_string(each.entries) + " entries, spread " + std::to_string(spread));
      ReferenceLight light;
      light.type = REFERENCE_SPOT;
      light.spread = static_cast<int16_t>(spread);
      const LM_light out = Converted(light, 100, each.preview);
      EXPECT_NEAR(out.spreadScale, each.scale, 0.01);
      EXPECT_NEAR(out.spreadTable[0], 0.0, 1e-7);
      EXPECT_NE(out.spreadTable[0], 0.0F);
      EXPECT_EQ(out.spreadTable[each.entries - 1], 1.0F);
      const double steps = each.entries - 1;
      for (int i = 1; i < each.entries; ++i) {
        EXPECT_GE(out.spreadTable[i], out.spreadTable[i - 1]) << i;
        // The middle spread is the cosine of twice the angle.
        const double c = std::sqrt(0.5) + (1 - std::sqrt(0.5)) * i / steps;
        if (spread == 128) {
          EXPECT_NEAR(out.spreadTable[i], 2 * c * c - 1, 1e-6) << i;
        }
      }
    }
  }
}

// Exponents from the definition: 0.25, 0.390625 and 16 for spreads 0, 64 and 255.
TEST(Conversion, BendsFalloffBySpread) {
  const struct {
    int spread;
    double exponent, tolerance;
  } cases[] = {{0, 0.25, 1e-6}, {64, 0.390625, 1e-6}, {128, 1, 1e-6}, {255, 16, 0.2}};
  const int middle = 100;
  const double c = std::sqrt(0.5) + (1 - std::sqrt(0.5)) * middle / 1023;
  const double u = 2 * std::acos(c) / (M_PI / 2);
  for (const auto& each : cases) {
    ReferenceLight light;
    light.type = REFERENCE_SPOT;
    light.spread = static_cast<int16_t>(each.spread);
    const double value = Converted(light, 100, 0).spreadTable[middle];
    const double exponent = std::log(std::acos(value) / (M_PI / 2)) / std::log(u);
    if (each.spread < 255) {
      EXPECT_NEAR(exponent, each.exponent, each.tolerance * 10) << each.spread;
    } else {
      EXPECT_NEAR(exponent, each.exponent, each.tolerance) << each.spread;
    }
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

TEST(Conversion, AngleOfAVector) {
  const double pi = 3.1415927410125732;
  const double half = 1.5707963705062866;
  const struct {
    double y, x, expected;
  } cases[] = {{0, 0, half},
               {1, 0, half},
               {-1, 0, -half},
               {0, 2, 0},
               {0, -2, pi},
               {1, 1, std::atan(1.0)},
               {1, -1, pi - std::atan(1.0)},
               {-1, -1, std::atan(1.0) - pi},
               {-1, 1, -std::atan(1.0)}};
  for (const auto& each : cases)
    EXPECT_EQ(LM_ATan2(each.y, each.x), each.expected) << each.y << ", " << each.x;
}
