// The vector kernels one by one, where whole pictures would show too little.
#include "EngineRun.h"
#include "LM_heights.h"
#include "LM_light_shader.h"
#include "LM_light_sums.h"
#include "LM_vector_sums.h"
#include "RenderRun.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>

namespace {

std::vector<uint8_t> Noise(SceneRandom& random, size_t count) {
  std::vector<uint8_t> bytes(count);
  for (uint8_t& byte : bytes)
    byte = static_cast<uint8_t>(random.Next());
  return bytes;
}

// Lights so strong that a change in the last place of a factor changes the picture: the sums wrap
// many times, and what is left of them meets full exposure.
void MakeLoud(foo& params, SceneRandom& random) {
  for (int i = 0; i < LM_LightCount(&params); ++i) {
    int32_t* color = params.lights[i].color.component;
    for (int plane = 0; plane < LM_PLANES; ++plane)
      color[plane] = random.Between(-(1 << 28), 1 << 28);
    if (random.OneIn(2))
      color[1] = color[2] = color[0];
    else if (random.OneIn(3)) // nearly gray
      color[random.Between(1, 2)] = color[0];
  }
  for (int32_t& component : params.ambient.component)
    component = static_cast<int32_t>(random.Next());
  params.exposure = 32767;
}

// Lights whose products leave 32 bits, are infinite or NaN, and one that is nowhere.
void MakeStrong(foo& params, SceneRandom& random) {
  constexpr float ODD[] = {NAN, INFINITY, -INFINITY, 3e38F, -1e30F, 7e4F, -0.0F};
  for (int i = 0; i < LM_LightCount(&params); ++i) {
    LM_light& light = params.lights[i];
    for (int32_t& component : light.color.component)
      component = random.OneIn(3) ? 0 : static_cast<int32_t>(random.Next());
    for (float& entry : light.spreadTable)
      if (random.OneIn(2))
        entry = ODD[random.Between(0, 6)];
    (light.type == LM_LIGHT_DIRECTIONAL ? light.direction : light.position).z *=
        random.OneIn(2) ? 1e4F : 1.0F;
  }
  params.lights[LM_LightCount(&params) - 1].position.y = NAN;
}

// Their planes alike.
void MakeWhite(foo& params) {
  for (int j = 0; j < LM_LightCount(&params); ++j) {
    int32_t* color = params.lights[j].color.component;
    color[1] = color[2] = color[0];
  }
}

// Wider than a block or not as wide as vectors, flat or in relief, its lights usual, white, loud or
// strong.
struct KeptScene {
  KeptScene(uint64_t seed, SceneRandom& random)
      : scene(SizedScene(seed, seed % 4 < 2 ? 1039 : 77, 9, seed % 2 == 1)),
        params(*EngineRun(scene).Convert(0)) {
    if (seed % 3 == 0)
      MakeLoud(params, random);
    if (seed % 3 == 1)
      MakeStrong(params, random);
    if (seed % 6 == 2 || seed % 6 == 4)
      MakeWhite(params);
  }
  Scene scene;
  foo params;
};

// A row of samples with its sums, and caches for every second light.
struct KeptSamples {
  KeptSamples(int n, bool flat, SceneRandom& random)
      : positions(static_cast<size_t>(n)), normals(flat ? 0 : static_cast<size_t>(n)) {
    for (size_t i = 0; i < positions.size(); ++i)
      positions[i] = {-1.0F + static_cast<float>(i / 3) * 0.007F, 0.3F};
    for (LM_vector3f& normal : normals)
      normal = random.OneIn(4)
                   ? LM_FacetNormal(0, 0)
                   : LM_FacetNormal(random.Between(-9000, 9000), random.Between(-9000, 9000));
    sums.resize(positions.size() * 2 * (1 + LM_MAX_LIGHTS));
  }

  // Sums the block's lights by vectors, or plainly. False when vectors refuse.
  bool Sum(foo& params, const LM_kernels* kernels, bool plain) {
    const size_t n = positions.size();
    LM_color96* diffuse = sums.data();
    LM_color96* specular = diffuse + n;
    for (size_t j = 0; j < LM_MAX_LIGHTS; j += 2) {
      params.lights[j].diffuseCache = specular + n * (1 + j);
      params.lights[j].specularCache = specular + n * (2 + j);
    }
    const int count = static_cast<int>(n);
    if (!plain)
      return LM_vector_sums(&params, LM_SortLights(params, normals.empty()), kernels)
          .Sum(count, positions.data(), normals.empty() ? nullptr : normals.data(), diffuse,
               specular);
    std::vector<int32_t> weights;
    for (size_t i = 0; i < n; ++i)
      weights.insert(weights.end(), {4, 0});
    LM_SumLights(&params, count, diffuse, specular,
                 [&](const LM_light& light, LM_color96* toDiffuse, LM_color96* toSpecular) {
                   if (normals.empty())
                     LM_ShadeLight(light, static_cast<unsigned short>(count), positions.data(),
                                   toDiffuse, toSpecular);
                   else
                     LM_ShadeLightBumps(light, static_cast<uint32_t>(count), positions.data(),
                                        normals.data(), toDiffuse, toSpecular, weights.data());
                 });
    return true;
  }

  std::vector<LM_vector2f> positions;
  std::vector<LM_vector3f> normals;
  std::vector<LM_color96> sums; // of all, then the caches
};

} // namespace

TEST(Kernels, LastPlacesOfLightEqualThePlainRows) {
  if (LM_BestKernels() == nullptr)
    GTEST_SKIP() << "no vector kernels here";
  SceneRandom random(31);
  for (uint64_t seed = 0; seed < 60 && !testing::Test::HasFailure(); ++seed) {
    const Scene scene = SizedScene(200 + seed, 517, 24, seed % 2 == 1);
    EngineRun settings(scene);
    foo& params = *settings.Convert(0);
    seed % 3 == 0 ? MakeStrong(params, random) : MakeLoud(params, random);
    RenderRun plain(scene, params, {nullptr, 3, 1, false});
    const LM_rect all = {0, 0, 24, 517};
    plain.Light(all);
    const std::vector<uint8_t> expected = plain.Picture();
    for (const LM_kernels* kernels : AllKernels()) {
      if (kernels == nullptr)
        continue;
      SCOPED_TRACE(scene.name + " " + std::to_string(seed) + ", " + kernels->name);
      RenderRun run(scene, params, {kernels, 3, 1, false});
      EXPECT_GT(run.VectorRows(), 20) << "the plain rows have lit it themselves";
      run.Light(all);
      ExpectSamePicture(expected, run.Picture(), scene.width);
    }
  }
}

// The second picture is combined with what the first one's rows have kept, the third with another
// surface; other lights are not taken for it.
TEST(Kernels, KeptSumsGiveWhatLightGives) {
  if (LM_BestKernels() == nullptr)
    GTEST_SKIP() << "no vector kernels here";
  SceneRandom random(53);
  for (uint64_t seed = 0; seed < 24 && !testing::Test::HasFailure(); ++seed) {
    const KeptScene kind(900 + seed, random);
    const Scene& scene = kind.scene;
    const foo& params = kind.params;
    const LM_rect all = {0, 0, scene.height, scene.width};
    for (const LM_kernels* kernels : AllKernels()) {
      SCOPED_TRACE(scene.name + " " + std::to_string(seed) + ", " + NameOf(kernels));
      RenderRun kept(scene, params, {kernels, 3, 1, false, true});
      kept.Light({2, 0, 4, scene.width});
      kept.Light({6, 0, 7, scene.width});
      foo changed = params;
      for (int picture = 0; picture < 3; ++picture) {
        RenderRun plain(scene, changed, {nullptr, 3, 1, false});
        plain.Light(all);
        kept.Light(all);
        ExpectSamePicture(plain.Picture(), kept.Picture(), scene.width);
        changed.gloss = static_cast<int16_t>(random.Between(0, 255));
        changed.material = static_cast<int16_t>(random.OneOf({0, 77, 256}));
        changed.ambient.component[picture] = static_cast<int32_t>(random.Next());
        EXPECT_TRUE(kept.ChangeSurface(changed));
      }
      changed.lights[0].spreadTable[LM_SPREAD_ENTRIES - 1] = 0x1p-3F; // no entry of the scenes
      EXPECT_FALSE(kept.ChangeSurface(changed)) << "a falloff has changed";
    }
  }
}

// Lights that are not in the sums may move from picture to picture.
TEST(Kernels, LightsOverKeptSumsGiveWhatAllGive) {
  if (LM_BestKernels() == nullptr)
    GTEST_SKIP() << "no vector kernels here";
  SceneRandom random(54);
  for (uint64_t seed = 0; seed < 48 && !testing::Test::HasFailure(); ++seed) {
    const KeptScene kind(950 + seed, random);
    const Scene& scene = kind.scene;
    const foo& params = kind.params;
    const auto count = static_cast<uint32_t>(LM_LightCount(&params));
    const uint32_t moving = random.Next() & ((1U << count) - 1);
    for (const LM_kernels* kernels : AllKernels()) {
      SCOPED_TRACE(scene.name + " " + std::to_string(seed) + ", " + NameOf(kernels));
      RenderRun kept(scene, params, {kernels, 3, 1, false, true, ~moving});
      foo changed = params;
      for (int picture = 0; picture < 3; ++picture) {
        RenderRun plain(scene, changed, {nullptr, 3, 1, false});
        plain.Light({0, 0, scene.height, scene.width});
        kept.Light({0, 0, 5, scene.width});
        kept.Light({5, 0, scene.height, scene.width});
        ExpectSamePicture(plain.Picture(), kept.Picture(), scene.width);
        for (uint32_t j = 0; j < count; ++j)
          if ((moving >> j & 1U) != 0)
            changed.lights[j].color.component[picture] ^= 12345;
        EXPECT_EQ(LM_ChangedLights(params, changed), moving);
        changed.exposure = static_cast<int16_t>(random.OneOf({0, 1, 77, 128, 255, 256, 512}));
        kept.ChangeLights(changed);
      }
    }
  }
}

TEST(Kernels, HeightsWrapAndDivideAsThePlainOnes) {
  SceneRandom random(7);
  for (const LM_kernels* kernels : AllKernels()) {
    if (kernels == nullptr)
      continue;
    for (const int32_t scale : {0, 1, -2, 68, 510, -510, 913, 914, 116985, INT32_MAX, INT32_MIN}) {
      for (const int n : {1, 3, 4, 5, 7, 8, 9, 15, 16, 17, 200}) {
        const size_t length = static_cast<size_t>(n) + 2;
        const std::vector<uint8_t> bytes = Noise(random, 3 * length + LM_KERNEL_SLACK);
        const uint8_t* const taps[3] = {&bytes[0], &bytes[length], &bytes[2 * length]};
        std::vector<int32_t> heights(static_cast<size_t>(n) + LM_KERNEL_SLACK);
        kernels->heights(taps, n, scale, heights.data());
        for (int i = 0; i < n; ++i)
          ASSERT_EQ(heights[static_cast<size_t>(i)],
                    LM_WeighHeight(taps[0] + i, taps[1] + i, taps[2] + i, scale))
              << kernels->name << ", scale " << scale << ", " << i << " of " << n;
      }
    }
  }
}

// Buffers end with the last pixel's third byte, where a sanitizer sees one more touched.
TEST(Kernels, PlanesAreSplitAndJoinedWithinThePixels) {
  SceneRandom random(9);
  std::vector<uint8_t> rows[3];
  for (std::vector<uint8_t>& row : rows)
    row.resize(300 + LM_KERNEL_SLACK);
  const LM_kernel_planes planes = {{rows[0].data(), rows[1].data(), rows[2].data()}};
  for (const LM_kernels* kernels : AllKernels()) {
    if (kernels == nullptr)
      continue;
    for (const int step : {3, 4, 5}) {
      for (const int n : {1, 2, 15, 16, 17, 31, 32, 33, 64, 65, 300}) {
        SCOPED_TRACE(std::string(kernels->name) + ", step " + std::to_string(step));
        const std::vector<uint8_t> pixels =
            Noise(random, static_cast<size_t>(n - 1) * static_cast<size_t>(step) + 3);
        kernels->split(pixels.data(), step, n, planes);
        std::vector<uint8_t> expected = Noise(random, pixels.size());
        std::vector<uint8_t> joined = expected;
        kernels->join(planes, n, joined.data(), step);
        for (size_t i = 0; i < pixels.size(); ++i) {
          if (i % static_cast<size_t>(step) < 3)
            expected[i] = pixels[i];
        }
        ASSERT_EQ(joined, expected) << n << " pixels";
      }
    }
  }
}

// Cold, and with half of the caches hot while the lights have changed.
TEST(Kernels, KeptSumsEqualThePlainOnes) {
  SceneRandom random(12);
  for (uint64_t seed = 0; seed < 42; ++seed) {
    const Scene scene = SizedScene(300 + seed, 64, 64, true);
    EngineRun settings(scene);
    foo& params = *settings.Convert(seed % 2 == 0 ? 1 : 0);
    seed % 4 == 1 ? MakeStrong(params, random) : MakeLoud(params, random);
    const KeptSamples samples(std::array{1, 7, 15, 16, 17, 33, 900}[seed % 7], seed % 3 == 0,
                              random);
    KeptSamples plain = samples;
    foo changed = params;
    for (LM_light& light : changed.lights) {
      light.position.z += 0.25F;
      light.diffuseCacheHot = light.specularCacheHot = random.OneIn(2) ? 1 : 0;
    }
    plain.Sum(params, nullptr, true);
    KeptSamples plainHot = plain;
    plainHot.Sum(changed, nullptr, true);
    for (const LM_kernels* kernels : AllKernels()) {
      KeptSamples fast = samples;
      const bool done = fast.Sum(params, kernels, false);
      EXPECT_EQ(done, kernels != nullptr) << scene.name;
      for (const KeptSamples* expected : {&plain, &plainHot}) {
        if (done) {
          ASSERT_EQ(std::memcmp(fast.sums.data(), expected->sums.data(),
                                fast.sums.size() * sizeof(LM_color96)),
                    0)
              << scene.name << " " << seed << ", " << kernels->name;
        }
        fast.Sum(changed, kernels, false);
      }
    }
  }
}
