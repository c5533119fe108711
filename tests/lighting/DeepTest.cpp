// Pixels of more than 8 bits: one arithmetic on every machine, and never far from that of bytes.
#include "EngineRun.h"
#include "LM_deep_pixels.h"
#include "LM_render.h"
#include "RenderRun.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

namespace {

template <class Component> constexpr LM_pixel_kind KindOf() {
  return sizeof(Component) == 1   ? LM_pixel_kind::Bytes
         : sizeof(Component) == 2 ? LM_pixel_kind::Words
                                  : LM_pixel_kind::Floats;
}

template <class Component>
LM_source_view ViewOf(const std::vector<Component>& pixels, int width, int height, int components) {
  const ptrdiff_t step = ptrdiff_t{components} * static_cast<ptrdiff_t>(sizeof(Component));
  return {
      reinterpret_cast<const uint8_t*>(pixels.data()), width * step, step, {0, 0, height, width}};
}

// The scene's area lit, pixels and heights of any kind; the source around it.
template <class Component, class Height>
std::vector<Component> Light(const Scene& scene, const foo& params, std::vector<Component> pixels,
                             const std::vector<Height>& heights, const LM_kernels* kernels) {
  LM_render_job job;
  const ReferenceArea& a = scene.area;
  const LM_rect area = {a.top, a.left, a.bottom, a.right};
  EXPECT_EQ(LM_PrepareRender(params, area, scene.width, scene.height, kernels, job),
            LM_render_result::Done);
  LM_render_views views = {};
  views.source = ViewOf(pixels, scene.width, scene.height, LM_PLANES);
  views.output = {const_cast<uint8_t*>(views.source.pixels), views.source.rowStride,
                  views.source.pixelStep, views.source.bounds};
  if (!heights.empty())
    views.relief = ViewOf(heights, scene.width, scene.height, 1);
  views.kind = KindOf<Component>();
  views.reliefKind = KindOf<Height>();
  EXPECT_EQ(LM_RenderRect(job, views, area, *LM_NewRenderScratch()), LM_render_result::Done);
  return pixels;
}

template <class Component>
std::vector<Component> Scaled(const std::vector<uint8_t>& bytes, double unit) {
  std::vector<Component> scaled;
  for (const uint8_t byte : bytes)
    scaled.push_back(static_cast<Component>(byte * unit));
  return scaled;
}
std::vector<uint16_t> Words(const std::vector<uint8_t>& bytes) {
  return Scaled<uint16_t>(bytes, 257);
}

template <class Component>
bool SameBits(const std::vector<Component>& a, const std::vector<Component>& b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(Component)) == 0;
}

// What a float picture may hold.
void MakeOdd(std::vector<float>& pixels, SceneRandom& random) {
  constexpr float ODD[] = {NAN, INFINITY, -INFINITY, 3e38F, -2.5F, 1e-40F, 40.0F, -0.0F};
  for (float& component : pixels)
    if (random.OneIn(9))
      component = ODD[random.Between(0, 7)];
}

// Rows of pixels in and out, by the plain code and by a kernel.
class Rows {
public:
  static constexpr int PIXELS = 1021;

  // Pixels that hold these components in turn, beginning `offset` bytes off the alignment.
  template <class Component>
  void Fill(const std::vector<Component>& components, int step, int offset) {
    _step = step * static_cast<ptrdiff_t>(sizeof(Component)), _offset = offset;
    _kind = KindOf<Component>();
    _pixels.assign(static_cast<size_t>(_offset + PIXELS * _step), 0);
    for (size_t i = 0; i < PIXELS * static_cast<size_t>(step); ++i)
      std::memcpy(&_pixels[static_cast<size_t>(_offset) + i * sizeof(Component)],
                  &components[i % components.size()], sizeof(Component));
  }
  std::vector<float> Load(const LM_kernels* kernels) const {
    std::vector<float> values(LM_PLANES * ROOM);
    (kernels != nullptr ? kernels->load : LM_LoadDeep)(_pixels.data() + _offset, _step, _kind,
                                                       PIXELS, PlanesOf(values));
    return values;
  }
  // From planes that hold the values in turn, over the pixels.
  std::vector<uint8_t> Store(const LM_kernels* kernels, const std::vector<float>& values) const {
    std::vector<float> planes(LM_PLANES * ROOM);
    for (size_t i = 0; i < planes.size(); ++i)
      planes[i] = values[i % values.size()];
    std::vector<uint8_t> stored = _pixels;
    (kernels != nullptr ? kernels->store : LM_StoreDeep)(PlanesOf(planes), PIXELS, _kind,
                                                         stored.data() + _offset, _step);
    return stored;
  }

private:
  static constexpr int ROOM = PIXELS + LM_KERNEL_SLACK;
  static LM_deep_planes PlanesOf(std::vector<float>& values) {
    return {{values.data(), values.data() + ROOM, values.data() + ptrdiff_t{2} * ROOM}};
  }
  std::vector<uint8_t> _pixels;
  ptrdiff_t _step = 0, _offset = 0;
  LM_pixel_kind _kind = LM_pixel_kind::Words;
};

// Lights that add light, so that what the bytes cut makes them darker.
Scene BrightScene(uint64_t seed) {
  Scene scene = MakeScene(seed, {70, 3000});
  scene.settings.ambience = static_cast<int16_t>(std::abs(scene.settings.ambience) % 128);
  scene.settings.gloss = static_cast<int16_t>(std::abs(scene.settings.gloss) % 256);
  scene.settings.exposure = static_cast<int16_t>(std::abs(scene.settings.exposure) % 256);
  std::vector<ReferenceLight>& lights = scene.settings.lights;
  for (ReferenceLight& light : lights)
    light.intensity = static_cast<int16_t>(std::abs(light.intensity) % 128);
  std::erase_if(lights, [](const ReferenceLight& light) { return light.type == REFERENCE_SPOT; });
  return scene;
}

} // namespace

TEST(Deep, EveryKernelEqualsThePlainRows) {
  SceneRandom random(4);
  for (int seed = 0; seed < LIMN_TEST_SCENES / 4 && !testing::Test::HasFailure(); ++seed) {
    const Scene scene = MakeScene(static_cast<uint64_t>(seed));
    SCOPED_TRACE(scene.name);
    EngineRun run(scene);
    const foo& params = *run.Convert(0);
    std::vector<float> floats = Scaled<float>(scene.pixels, 1.0 / 255);
    MakeOdd(floats, random);
    std::vector<uint16_t> words = Words(scene.pixels), heights = Words(scene.heights);
    std::vector<float> floatHeights = Scaled<float>(scene.heights, 1.0 / 200);
    for (uint16_t& word : words)
      word = static_cast<uint16_t>(word ^ random.Between(0, 255));
    for (uint16_t& height : heights)
      height = static_cast<uint16_t>(height ^ random.Between(0, 255));
    for (const LM_kernels* kernels : AllKernels()) {
      SCOPED_TRACE(NameOf(kernels));
      EXPECT_TRUE(SameBits(Light(scene, params, floats, floatHeights, kernels),
                           Light(scene, params, floats, floatHeights, nullptr)));
      EXPECT_TRUE(SameBits(Light(scene, params, words, heights, kernels),
                           Light(scene, params, words, heights, nullptr)));
    }
  }
}

// Quotients that kernels find without dividing, at the edges of where they may, and pixels wherever
// they lie.
TEST(Deep, EveryKernelLoadsAndStoresAsThePlainCode) {
  if (LM_BestKernels() == nullptr)
    GTEST_SKIP() << "no vector kernels here";
  std::vector<uint16_t> words(65536);
  std::iota(words.begin(), words.end(), uint16_t{0});
  const std::vector<float> odd = {NAN,          INFINITY,    -INFINITY, FLT_MAX, -FLT_MAX,
                                  1e-40F,       -1e-44F,     -0.0F,     0.0F,    0x1p-90F,
                                  0x1p-91F,     0x1.8p-126F, 255.0F,    -7.5F,   65535.5F,
                                  127.5F / 257, 254.99F,     1e30F,     3e-30F};
  Rows rows;
  const auto expectSame = [&](const std::vector<float>& values) {
    for (const LM_kernels* kernels : AllKernels()) {
      EXPECT_TRUE(SameBits(rows.Load(kernels), rows.Load(nullptr))) << NameOf(kernels);
      EXPECT_EQ(rows.Store(kernels, values), rows.Store(nullptr, values)) << NameOf(kernels);
    }
  };
  for (const int step : {3, 4, 5})
    for (const int offset : {0, 1, 2, 4}) {
      rows.Fill(odd, step, offset);
      expectSame(odd);
      expectSame({10.0F, -0.0F, 0x1p-90F, 300.0F}); // nowhere the odd way
      rows.Fill<uint16_t>({0, 1, 65535, 32768, 257}, step, offset);
      expectSame(odd);
    }
  for (size_t first = 0; first < words.size(); first += 3 * size_t{Rows::PIXELS}) {
    rows.Fill(std::vector<uint16_t>(words.begin() + static_cast<ptrdiff_t>(first), words.end()), 3,
              0);
    expectSame({1.0F});
  }
  rows.Fill<float>({0.0F}, 3, 0);
  std::vector<float> mantissas(LM_PLANES * (Rows::PIXELS + LM_KERNEL_SLACK));
  for (uint32_t first = 0; first < 1U << 23 && !testing::Test::HasFailure();) {
    for (float& value : mantissas)
      value = std::ldexp(static_cast<float>(1U << 23 | (first++ & 0x7FFFFF)), -16);
    expectSame(mantissas);
  }
}

// Of 257 times a byte: brighter by what bytes cut at the output, in the mean of facets, before the
// exposure, in each light's sums, and in the highlight and its colour; never darker.
TEST(Deep, LiesAboveTheBytesByWhatTheyCut) {
  for (int seed = 0; seed < LIMN_TEST_SCENES / 4 && !testing::Test::HasFailure(); ++seed) {
    const Scene scene = BrightScene(static_cast<uint64_t>(seed));
    SCOPED_TRACE(scene.name);
    EngineRun run(scene);
    foo params = *run.Convert(0);
    const LM_kernels* const kernels = LM_BestKernels();
    const std::vector<float> floats = Scaled<float>(scene.pixels, 1.0 / 255);
    std::vector<float> levels = Light(scene, params, floats, scene.heights, kernels);
    // So dark that no facet is white: bytes end there one by one.
    const float top = *std::max_element(levels.begin(), levels.end());
    params.exposure = static_cast<int16_t>(params.exposure / std::max(4 * top, 1.0F));
    levels = Light(scene, params, floats, scene.heights, kernels);
    const std::vector<uint8_t> bytes = Light(scene, params, scene.pixels, scene.heights, kernels);
    const std::vector<uint16_t> words =
        Light(scene, params, Words(scene.pixels), Words(scene.heights), kernels);
    const double unit = params.exposure * 255.0 / 0x1p23;
    const double cut = (scene.heights.empty() ? 1.0 : 1.75) + params.exposure / 0x1p15 +
                       unit * params.numLights +
                       unit * params.gloss * (1.0 + params.numLights / 256.0);
    for (size_t i = 0; i < bytes.size() && !testing::Test::HasFailure(); ++i) {
      const double level = static_cast<double>(levels[i]) * 255;
      if (level / std::max(unit, 1e-9) * 255 > 2e9) // the sum of bytes may have wrapped
        continue;
      EXPECT_LE(words[i] / 257.0 - bytes[i], cut + std::max(level, 0.0) / 255 + 0.01) << i;
      EXPECT_GE(words[i] / 257.0 - bytes[i], -0.01) << i;
      EXPECT_LE(std::fabs(std::clamp(level * 257, 0.0, 65535.0) - words[i]), 1.0) << i;
    }
  }
}

TEST(Deep, ReliefOfWordsIsThatOfBytes) {
  for (uint64_t seed = 1; seed < 60 && !testing::Test::HasFailure(); seed += 2) {
    const Scene scene = MakeScene(seed, {70, 3000});
    SCOPED_TRACE(scene.name);
    EngineRun run(scene);
    const foo& params = *run.Convert(0);
    const std::vector<uint16_t> words = Words(scene.pixels);
    for (const LM_kernels* kernels : AllKernels()) {
      EXPECT_EQ(Light(scene, params, scene.pixels, Words(scene.heights), kernels),
                Light(scene, params, scene.pixels, scene.heights, kernels));
      EXPECT_EQ(Light(scene, params, words, Words(scene.heights), kernels),
                Light(scene, params, words, scene.heights, kernels));
    }
  }
}

TEST(Deep, LawsOfLight) {
  for (uint64_t seed = 0; seed < 60 && !testing::Test::HasFailure(); ++seed) {
    Scene scene = MakeScene(seed, {70, 3000});
    SCOPED_TRACE(scene.name);
    scene.area = {0, 0, scene.height, scene.width};
    EngineRun run(scene);
    foo params = *run.Convert(0);
    const std::vector<float> floats = Scaled<float>(scene.pixels, 1.0 / 255);
    const std::vector<uint16_t> none;
    // An even height is a flat surface, but for lights below it, which flat surfaces do not look
    // at.
    for (int i = 0; i < LM_LightCount(&params); ++i)
      params.lights[i].position.z = std::fabs(params.lights[i].position.z);
    const std::vector<uint16_t> level(scene.pixels.size() / 3, 12345);
    const std::vector<float> flat = Light(scene, params, floats, none, LM_BestKernels());
    EXPECT_TRUE(SameBits(Light(scene, params, floats, level, LM_BestKernels()), flat));
    params.exposure = static_cast<int16_t>(params.exposure / 2);
    const std::vector<float> once = Light(scene, params, floats, none, LM_BestKernels());
    params.exposure = static_cast<int16_t>(params.exposure * 2);
    const std::vector<float> twice = Light(scene, params, floats, none, LM_BestKernels());
    for (size_t i = 0; i < once.size(); ++i)
      ASSERT_EQ(twice[i], 2 * once[i]) << i;
  }
}

// All words in a row, lit alike everywhere: no step is lost, and none is larger than its
// neighbours.
TEST(Deep, ARampStaysOne) {
  Scene scene = MakeScene(1);
  scene.width = scene.height = 256;
  scene.area = {0, 0, 256, 256};
  scene.settings.lights.resize(1);
  scene.settings.lights[0] = {};
  scene.settings.lights[0].type = REFERENCE_DIRECTIONAL;
  scene.settings.lights[0].color = {65535, 65535, 65535};
  scene.settings.lights[0].intensity = 60;
  scene.settings.ambience = 10;
  scene.settings.exposure = 20;
  scene.pixels.assign(size_t{3} * 65536, 0);
  scene.heights.clear();
  for (const int16_t material : {0, 100, 256}) {
    scene.settings.material = material;
    EngineRun run(scene);
    std::vector<uint16_t> ramp;
    for (int i = 0; i < 65536; ++i)
      ramp.insert(ramp.end(), 3, static_cast<uint16_t>(i));
    const std::vector<uint16_t> lit =
        Light(scene, *run.Convert(0), ramp, std::vector<uint8_t>(), LM_BestKernels());
    ASSERT_GT(lit.back(), lit.front() + 1000);
    for (size_t i = 6; i < lit.size(); i += 3) {
      const int before = lit[i - 3] - lit[i - 6];
      const int step = lit[i] - lit[i - 3];
      ASSERT_GE(step, 0) << i;
      ASSERT_TRUE(lit[i] == 65535 || std::abs(step - before) <= 1) << i;
    }
  }
}

// The same words on every machine.
TEST(Deep, WordsAreTheStoredOnes) {
  std::vector<uint64_t> digests;
  for (uint64_t seed = 0; seed < 8; ++seed) {
    const Scene scene = MakeScene(seed, {70, 3000});
    EngineRun run(scene);
    std::vector<uint8_t> bytes;
    for (const uint16_t word :
         Light(scene, *run.Convert(0), Words(scene.pixels), Words(scene.heights), LM_BestKernels()))
      bytes.insert(bytes.end(), {static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word)});
    digests.push_back(HashBytes(bytes));
  }
  const std::vector<uint64_t> stored = {
      13666967060703594798U, 7485063260641179394U,  17123541000472291897U, 3053415790377042044U,
      4338799858107091673U,  14756032727954594589U, 1552324936036352235U,  5667487067566840362U};
  EXPECT_EQ(digests, stored);
}
