// What must hold of every picture, whatever the formulas say.
#include "EngineRun.h"
#include "LM_shader.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

std::vector<uint8_t> Render(const Scene& scene) {
  return EngineRun(scene).RenderTiles();
}

} // namespace

TEST(PictureLaws, FlatReliefIsFlat) {
  for (uint64_t seed = 0; seed < 60; ++seed) {
    Scene scene = MakeScene(seed, {70, 3000});
    SCOPED_TRACE(scene.name);
    scene.heights.clear();
    const std::vector<uint8_t> flat = Render(scene);
    scene.heights.assign(scene.pixels.size() / 3, 200); // a uniform channel
    ExpectSamePicture(flat, Render(scene), scene.width);
    for (size_t i = 0; i < scene.heights.size(); ++i) // or any without amplitude
      scene.heights[i] = static_cast<uint8_t>(i * 37);
    scene.settings.bumpAmplitude = 0;
    ExpectSamePicture(flat, Render(scene), scene.width);
  }
}

TEST(PictureLaws, NoLightIsBlack) {
  for (uint64_t seed = 0; seed < 12; ++seed) {
    Scene scene = MakeScene(seed, {70, 3000});
    scene.area = {0, 0, scene.height, scene.width};
    scene.settings.ambience = 0;
    const std::vector<uint8_t> black(scene.pixels.size(), 0);
    for (ReferenceLight& light : scene.settings.lights)
      light.on = false;
    ExpectSamePicture(black, Render(scene), scene.width);
    for (ReferenceLight& light : scene.settings.lights) { // of no known type
      light.on = true;
      light.type = static_cast<int32_t>(seed) - 4 + (seed > 3 ? 3 : 0);
    }
    ExpectSamePicture(black, Render(scene), scene.width);
    for (ReferenceLight& light : scene.settings.lights) { // lies in the picture's plane
      light.type = REFERENCE_OMNI;
      light.radius = 0;
    }
    if (scene.heights.empty())
      ExpectSamePicture(black, Render(scene), scene.width);
  }
}

TEST(PictureLaws, AreasAndTilesThatAreNotThereStayUntouched) {
  Scene scene = MakeScene(3);
  scene.width = 1025;
  scene.height = 2;
  scene.pixels.assign(1025 * 2 * 3, 9);
  scene.heights.assign(1025 * 2, 1);
  const struct {
    const char* name;
    CVRect area, tile;
  } cases[] = {
      {"empty area", {0, 5, 2, 5}, {0, 0, 2, 64}},
      {"area inside out", {0, 9, 2, 5}, {0, 0, 2, 64}},
      {"tile without rows", {0, 0, 2, 1025}, {1, 0, 1, 64}},
      {"tile without columns", {0, 0, 2, 1025}, {0, 8, 2, 8}},
      {"tile of 1025 pixels", {0, 0, 2, 1025}, {0, 0, 2, 1025}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    EngineRun run(scene);
    run.Convert(0);
    run.record.inTileRect = run.record.outTileRect = {0, 0, 2, 1025};
    run.Deliver();
    run.record.filterArea = each.area;
    run.record.inTileRect = run.record.outTileRect = each.tile;
    LM_ShadeTile(&run.record, run.globals.get());
    LM_ShadeTileWithBumps(&run.record, &run.globals->bumpMap, run.globals.get());
    ExpectSamePicture(scene.pixels, run.out, scene.width);
  }
}

TEST(PictureLaws, RunsEndAt1024Samples) {
  const Scene scene = MakeScene(1);
  EngineRun run(scene);
  foo* params = run.Convert(0);
  const std::vector<LM_vector2f> positions(1025, LM_vector2f{0, 0});
  const std::vector<LM_vector3f> normals(1025, LM_vector3f{0, 0, 1});
  std::vector<int32_t> weights(2050);
  for (size_t i = 0; i < weights.size(); i += 2)
    weights[i] = 16;
  const std::vector<uint8_t> source(3075, 200);
  std::vector<LM_color96> diffuse(1025), specular(1025);
  for (const bool relief : {false, true}) {
    for (const auto count : {uint16_t{1024}, uint16_t{1025}}) {
      std::vector<uint8_t> out(3075, 77);
      params->numLights = 0;
      params->ambient = {};
      if (relief)
        LM_ShadeBumps(params, count, positions.data(), normals.data(), source.data(),
                      diffuse.data(), specular.data(), 0, out.data(), run.globals.get(),
                      weights.data());
      else
        LM_Shade(params, count, positions.data(), source.data(), diffuse.data(), specular.data(), 0,
                 out.data(), run.globals.get());
      EXPECT_EQ(std::count(out.begin(), out.end(), 0), count == 1024 ? 3072 : 0);
      EXPECT_EQ(out.back(), 77);
    }
  }
}
