// Editable lights made ready for shading.
#include "EngineRun.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

// What shading takes of a light of that type. NaN, which equals nothing, is written as a number.
template <typename Light>
std::vector<float> ValuesOf(const Light& light, int32_t type, size_t tableSize) {
  std::vector<float> values;
  if (type != REFERENCE_DIRECTIONAL)
    values.insert(values.end(), {light.position.x, light.position.y, light.position.z});
  if (type != REFERENCE_OMNI)
    values.insert(values.end(), {light.direction.x, light.direction.y, light.direction.z});
  if (type == REFERENCE_SPOT) {
    values.insert(values.end(), {light.cosCutoff, light.spreadScale, light.spreadMinCos});
    values.insert(values.end(), &light.spreadTable[0], &light.spreadTable[0] + tableSize);
  }
  std::replace_if(
      values.begin(), values.end(), [](float value) { return std::isnan(value); }, 0x1.5p77F);
  return values;
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
    LM_light actual{};
    ToEngine(light).ConvertToRealLight(&actual, scale, preview);
    for (int k = 0; k < 3; ++k)
      EXPECT_EQ(expected.color[k], actual.color.component[k]);
    const size_t tableSize = expected.spreadTable.size();
    EXPECT_EQ(ValuesOf(expected, light.type, tableSize), ValuesOf(actual, light.type, tableSize));
  }
}
