// The engine and the plain shader draw the same bytes, and every machine draws the same.
#include "EngineRun.h"
#include "LM_shader.h"
#include "RenderRun.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

// How many scenes to draw; LIMN_TEST_SCENES in the environment asks for more or fewer.
int SceneCount() {
  const char* asked = std::getenv("LIMN_TEST_SCENES");
  return asked ? std::atoi(asked) : LIMN_TEST_SCENES;
}

} // namespace

// Tile by tile, and at once by the plain rows and every set of vector kernels.
TEST(Scenes, EngineEqualsPlainShader) {
  for (int seed = 0; seed < SceneCount() && !testing::Test::HasFailure(); ++seed) {
    const Scene scene = MakeScene(static_cast<uint64_t>(seed));
    SCOPED_TRACE(scene.name);
    const std::vector<uint8_t> expected = RenderScene(scene);
    EngineRun run(scene);
    ExpectSamePicture(expected, run.RenderTiles(), scene.width);
    for (const LM_kernels* kernels : AllKernels()) {
      SCOPED_TRACE(NameOf(kernels));
      RenderRun whole(scene, *run.Convert(0), {kernels, 3 + seed % 3, 1 + seed % 2, seed % 4 == 1});
      whole.Light({scene.area.top, scene.area.left, scene.area.bottom, scene.area.right});
      ExpectSamePicture(expected, whole.Picture(), scene.width);
    }
  }
}

// The sums themselves: most of their roundings are too fine to show in bytes.
TEST(Scenes, SumsOfLightEqualPlainShader) {
  SceneRandom random(21);
  for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("light " + std::to_string(i));
    const ReferenceLight edited =
        MakeLight(random, i % 3, i % 2 == 1 ? SceneMood::Wild : SceneMood::Usual);
    const ReferenceRealLight expected = ReferenceConvert(edited, 140, REFERENCE_TABLE);
    LM_light light{};
    ToEngine(edited).ConvertToRealLight(&light, 140, 0);
    for (int sample = 0; sample < 50; ++sample) {
      const LM_vector2f place = {static_cast<float>(random.Between(-999, 999)) / 997.0F,
                                 static_cast<float>(random.Between(-999, 999)) / 997.0F};
      const ReferenceFacet facet = ReferenceFacets([&](int, int) { return random.Between(0, 60); },
                                                   0, 0, random.Between(-200, 200))[0];
      const LM_vector3f normal = {facet.normal.x, facet.normal.y, facet.normal.z};
      const int32_t weights[] = {16, 0};
      for (const bool relief : {false, true}) {
        ReferenceSums sums;
        LM_color96 diffuse{};
        LM_color96 specular{};
        ReferenceAddLight(sums, expected, place.x, place.y, relief ? &facet.normal : nullptr);
        if (relief)
          LM_ShadeLightBumps(light, 1, &place, &normal, &diffuse, &specular, weights);
        else
          LM_ShadeLight(light, 1, &place, &diffuse, &specular);
        for (size_t k = 0; k < 3; ++k) {
          EXPECT_EQ(sums.diffuse[k], diffuse.component[k]) << (relief ? "relief" : "flat");
          EXPECT_EQ(sums.specular[k], specular.component[k]) << (relief ? "relief" : "flat");
        }
      }
    }
  }
}

// Rectangles that would reach beyond 16 bits when grown for relief.
TEST(Scenes, PicturesAsLargeAsRectanglesGo) {
  for (const bool wide : {true, false}) {
    Scene scene;
    SceneRandom random(8);
    scene.geometry.previewWidth = 256;
    scene.settings.lights = {MakeLight(random, REFERENCE_SPOT, SceneMood::Usual)};
    scene.settings.exposure = 40;
    scene.settings.ambience = 100;
    scene.width = wide ? 32767 : 3;
    scene.height = wide ? 3 : 32767;
    scene.area =
        wide ? ReferenceArea{0, 32767 - 70, 3, 32767} : ReferenceArea{32767 - 70, 0, 32767, 3};
    scene.pixels.clear();
    for (int i = 0; i < 32767 * 3; ++i) {
      scene.pixels.insert(scene.pixels.end(), {250, 128, static_cast<uint8_t>(i)});
      scene.heights.push_back(static_cast<uint8_t>(random.Next()));
    }
    SCOPED_TRACE(wide ? "wide" : "tall");
    EngineRun run(scene);
    ExpectSamePicture(RenderScene(scene), run.RenderTiles(), scene.width);
    ASSERT_TRUE(run.CollectPreview(32));
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), run.globals->previewWidth);
  }
}

// Bytes that all machines have to draw, tile by tile and at once, each number standing for three
// scenes. A change here changes what users see of saved styles.
TEST(Scenes, PicturesAreTheSameOnEveryMachine) {
  static const uint64_t hashes[] = {
      0x7383059E47B6BD6FU, 0xBE4F6A69EC9CCF3BU, 0xB14479AE78C03E88U, 0xF901A15FA90E6A9AU,
      0x314DD22AA4C6F210U, 0xC9BBCFAF2784AE92U, 0xF357BF3F3F9EE012U, 0x48BA2DCF00B700ABU,
      0xC236A76672948703U, 0xFA18E9138728959AU, 0x7E345394F767F05AU, 0xDDD0A58014783AE2U,
      0xDFE6ABE85AB444CFU, 0x33991E1500C3E0EDU, 0x0E58CD01912C74A2U, 0xDBD6FD8BF64835E1U,
      0x9635CA14CD48CA1DU, 0x63689E5AE98F6DADU, 0x9F85DFD87D06FBF5U, 0xD50DC2FBA84782ABU,
  };
  constexpr size_t EACH = 3;
  for (size_t i = 0; i < std::size(hashes); ++i) {
    std::vector<uint8_t> pictures;
    for (size_t seed = 1000 + i * EACH; seed < 1000 + (i + 1) * EACH; ++seed) {
      const Scene scene = MakeScene(seed);
      EngineRun tiles(scene);
      const std::vector<uint8_t> picture = tiles.RenderTiles();
      RenderRun whole(scene, *tiles.Convert(0), {LM_BestKernels(), 3, 1, false});
      whole.Light({scene.area.top, scene.area.left, scene.area.bottom, scene.area.right});
      EXPECT_EQ(whole.Picture(), picture) << scene.name;
      pictures.insert(pictures.end(), picture.begin(), picture.end());
    }
    EXPECT_EQ(HashBytes(pictures), hashes[i]) << "the scenes from " << 1000 + i * EACH;
  }
}
