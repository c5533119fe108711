// Sums that are kept as tightly as a bound of the lights allows, where the lights come up to it.
#include "EngineRun.h"
#include "RenderRun.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

namespace {

// Lights above the picture, beside it and far off, of one kind or of several, whose light falls
// wherever it can.
struct FarLights {
  FarLights(const Scene& scene, uint64_t seed, SceneRandom& random)
      : params(*EngineRun(scene).Convert(0)), relief(!scene.heights.empty()),
        isGray(random.OneIn(3)) {
    const auto some = [&](double most) {
      return static_cast<float>(most * random.Between(-1000, 1000) / 1000.0);
    };
    params.numLights = static_cast<uint16_t>(seed % 3 == 0 ? 1 : random.Between(2, 6));
    for (int i = 0; i < params.numLights; ++i) {
      LM_light& light = params.lights[i];
      light.type = random.Between(LM_LIGHT_OMNI, LM_LIGHT_SPOT);
      const double away = std::array{0.3, 2.0, 15.0}[seed / 3 % 3];
      light.position = {some(away), some(away), 0.02F + std::fabs(some(away))};
      light.direction = {some(0.8), some(0.8), 1.0F};
      light.cosCutoff = -2.0F;
      for (float& entry : light.spreadTable)
        entry = 1.3F + some(0.2);
      for (int plane = 0; plane < LM_PLANES; ++plane)
        weights[i][plane] = isGray && plane > 0 ? weights[i][0] : random.Between(-1, 7);
    }
    params.exposure = static_cast<int16_t>(random.OneOf({1, 128, 256, 512, 32767}));
    params.gloss = 251;
  }
  // How the sums lie when all lights have that strength.
  LM_kept_form SetStrength(const Scene& scene, int32_t strength) {
    for (int i = 0; i < params.numLights; ++i)
      for (int plane = 0; plane < LM_PLANES; ++plane)
        params.lights[i].color.component[plane] = weights[i][plane] * strength;
    return LM_TightForm(params, {0, 0, scene.height, scene.width}, relief);
  }
  // The greatest strength with which they are packed.
  LM_kept_form SetGreatestStrength(const Scene& scene) {
    int32_t strength = 0;
    for (int32_t step = 1 << 24; step > 0; step /= 2)
      if (SetStrength(scene, strength + step).isTight)
        strength += step;
    EXPECT_GT(strength, 0);
    return SetStrength(scene, strength);
  }

  foo params;
  bool relief, isGray;
  int32_t weights[LM_MAX_LIGHTS][LM_PLANES] = {};
};

} // namespace

TEST(KeptSums, PackedOnesHoldAllThatLightsCanGive) {
  if (LM_BestKernels() == nullptr)
    GTEST_SKIP() << "no vector kernels here";
  SceneRandom random(71);
  for (uint64_t seed = 0; seed < 90 && !testing::Test::HasFailure(); ++seed) {
    Scene scene = SizedScene(seed, 139, 24, seed % 2 == 1);
    for (uint8_t& height : scene.heights)
      height = static_cast<uint8_t>(random.Next());
    FarLights lights(scene, seed, random);
    const LM_kept_form form = lights.SetGreatestStrength(scene);
    EXPECT_TRUE(form.isTight);
    EXPECT_TRUE(form.planes == 1 || !lights.isGray);
    RenderRun plain(scene, lights.params, {nullptr, 3, 1, false});
    const LM_rect all = {0, 0, scene.height, scene.width};
    plain.Light(all);
    for (const LM_kernels* kernels : AllKernels()) {
      SCOPED_TRACE(scene.name + " " + std::to_string(seed) + ", " + NameOf(kernels));
      RenderRun kept(scene, lights.params, {kernels, 3, 1, false, true});
      kept.Light(all);
      kept.Light(all);
      ExpectSamePicture(plain.Picture(), kept.Picture(), scene.width);
    }
  }
}
