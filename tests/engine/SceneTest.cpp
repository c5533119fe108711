// The engine and the plain shader draw the same bytes, and every machine draws the same.
#include "EngineRun.h"
#include "LM_shader.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace {

// How many scenes to draw; LIMN_TEST_SCENES in the environment asks for more or fewer.
int SceneCount() {
  const char* asked = std::getenv("LIMN_TEST_SCENES");
  return asked ? std::atoi(asked) : LIMN_TEST_SCENES;
}

// A picture of 40 x 36 with one light of full colour, for sweeps of one light's fields.
Scene SmallScene(const ReferenceLight& light, bool relief) {
  Scene scene;
  scene.width = 40;
  scene.height = 36;
  scene.area = {0, 0, scene.height, scene.width};
  scene.geometry.previewWidth = 256;
  scene.settings.lights = {light};
  scene.settings.exposure = 40;
  SceneRandom random(5);
  for (int i = 0; i < scene.width * scene.height; ++i) {
    scene.pixels.insert(scene.pixels.end(), {250, 128, static_cast<uint8_t>(i)});
    if (relief)
      scene.heights.push_back(static_cast<uint8_t>(i % 40 < 20 ? 9 : random.Between(0, 30)));
  }
  return scene;
}

} // namespace

TEST(Scenes, EngineEqualsPlainShader) {
  for (int seed = 0; seed < SceneCount() && !testing::Test::HasFailure(); ++seed) {
    const Scene scene = MakeScene(static_cast<uint64_t>(seed));
    SCOPED_TRACE(scene.name);
    EngineRun run(scene);
    ExpectSamePicture(RenderScene(scene), run.RenderTiles(), scene.width);
  }
}

// Degenerate lights one by one, where other lights cannot drown what they do.
TEST(Scenes, DegenerateLightsEqualPlainShader) {
  SceneRandom random(3);
  for (int i = 0; i < SceneCount() / 2 && !testing::Test::HasFailure(); ++i) {
    const ReferenceLight light = MakeLight(random, i % 3, SceneMood::Wild);
    const Scene scene = SmallScene(light, i % 2 == 1);
    SCOPED_TRACE("light " + std::to_string(i));
    EngineRun run(scene);
    ExpectSamePicture(RenderScene(scene), run.RenderTiles(), scene.width);
  }
}

// The sums themselves: most of their roundings are too fine to show in bytes.
TEST(Scenes, SumsOfLightEqualPlainShader) {
  SceneRandom random(21);
  for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("light " + std::to_string(i));
    const ReferenceLight edited =
        MakeLight(random, i % 3, i % 5 == 4 ? SceneMood::Wild : SceneMood::Usual);
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
    Scene scene = SmallScene(ReferenceLight{}, false);
    SceneRandom random(8);
    scene.settings.lights[0] = MakeLight(random, REFERENCE_SPOT, SceneMood::Usual);
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

// Bytes that all machines have to draw. A change here changes what users see of saved styles.
TEST(Scenes, PicturesAreTheSameOnEveryMachine) {
  static const uint64_t hashes[] = {
      0xE91C1D894ACD6EA3U, 0x6AACDBCC17624A6CU, 0xA70EA1B95B9F9B72U, 0x0112E0D184720C87U,
      0x9703194E741377B5U, 0x0EC77425406BE449U, 0xFE9E3EB8147DFDE2U, 0x143886B6C3F9279DU,
      0x37BA1D073A9F25EDU, 0x85B5194BDD8ACB4DU, 0xBE8A1B3EBEB631FEU, 0x88BD634D785C7133U,
      0x2EEC8CC52858C283U, 0x2AA9F3BBB19D02D6U, 0x9AB14310A4F0ACC7U, 0x44F63E8803BA3CEFU,
      0x827A01A38D4A6AB6U, 0xDF518D17A2F26D33U, 0x126B41D194D868C3U, 0x3A6112746B914454U,
  };
  for (size_t i = 0; i < std::size(hashes); ++i) {
    const Scene scene = MakeScene(1000 + i);
    SCOPED_TRACE(scene.name);
    EngineRun run(scene);
    EXPECT_EQ(HashBytes(run.RenderTiles()), hashes[i]);
  }
}
