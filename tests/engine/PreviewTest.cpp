// The preview: its place, its picture, and the caches that keep it quick.
#include "EngineRun.h"
#include "FailingBlocks.h"
#include "LM_preview.h"
#include "LM_preview_geometry.h"
#include "MacMemory.h"

#include <gtest/gtest.h>

namespace {

Scene PreviewScene(uint64_t seed) {
  return MakeScene(seed, {140, 4000});
}

} // namespace

TEST(Preview, FitsTheFrame) {
  const struct {
    int width, height, areaWidth, areaHeight, scale, previewWidth, previewHeight;
  } cases[] = {
      {100, 50, 256, 256, 1, 100, 50},      {1000, 300, 256, 200, 4, 250, 75},
      {513, 10, 256, 256, 3, 171, 4},       {1, 1, 256, 256, 1, 1, 1},
      {256, 256, 256, 256, 1, 256, 256},    {257, 1, 256, 256, 2, 129, 1},
      {32767, 1, 256, 256, 128, 256, 1},    {1, 32767, 256, 256, 128, 1, 256},
      {6000, 4000, 256, 256, 24, 250, 167},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(std::to_string(each.width) + " x " + std::to_string(each.height));
    const Rect frame = {30, 20, 310, 300};
    const Rect available = {42, 32, static_cast<int16_t>(42 + each.areaHeight),
                            static_cast<int16_t>(32 + each.areaWidth)};
    const LM_preview_geometry fit = LM_FitPreview(each.width, each.height, frame, available);
    EXPECT_EQ(fit.scale, each.scale);
    EXPECT_EQ(fit.width, each.previewWidth);
    EXPECT_EQ(fit.height, each.previewHeight);
    EXPECT_EQ(fit.frameCenterX, 160);
    EXPECT_EQ(fit.frameCenterY, 170);
    EXPECT_EQ(fit.previewBox.left, 160 - each.previewWidth / 2);
    EXPECT_EQ(fit.previewBox.top, 170 - each.previewHeight / 2);
    EXPECT_EQ(fit.previewBox.right, fit.previewBox.left + each.previewWidth);
  }
}

TEST(Preview, EqualsPlainShaderColdAndHot) {
  for (uint64_t seed = 0; seed < 60 && !testing::Test::HasFailure(); ++seed) {
    Scene scene = PreviewScene(seed);
    const int frame = seed % 4 == 0 ? 256 : seed % 4 == 1 ? 48 : seed % 4 == 2 ? 13 : 2;
    SCOPED_TRACE(scene.name + " in a frame of " + std::to_string(frame));
    EngineRun run(scene);
    ASSERT_TRUE(run.CollectPreview(frame));
    const int width = run.globals->previewWidth;
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), width);
    SCOPED_TRACE("hot");
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), width);

    // Only the combination depends on these.
    scene.settings.gloss = run.globals->gloss = 60;
    scene.settings.exposure = run.globals->exposure = 20;
    scene.settings.material = run.globals->material = static_cast<int16_t>(seed * 9);
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), width);

    // One light is edited, one added.
    if (scene.settings.lights.empty() || scene.settings.lights.size() > 15)
      continue;
    scene.settings.lights[0].intensity = 90;
    run.globals->lights[0].intensity = 90;
    run.globals->lights[0].InvalidateCaches();
    run.globals->curLight = 0;
    ReferenceLight added = scene.settings.lights[0];
    added.on = true;
    added.center = {10, -20};
    scene.settings.lights.push_back(added);
    run.globals->CopyNewLight(static_cast<int16_t>(run.globals->frameCenterX + 10),
                              static_cast<int16_t>(run.globals->frameCenterY - 20));
    SCOPED_TRACE("edited");
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), width);

    // The relief is changed.
    if (scene.heights.empty())
      continue;
    scene.settings.bumpAmplitude = 31;
    run.globals->SetBumpAmplitude(31);
    scene.settings.whiteIsHigh = !scene.settings.whiteIsHigh;
    run.globals->SetWhiteIsHigh(scene.settings.whiteIsHigh);
    SCOPED_TRACE("relief changed");
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), width);
  }
}

// Rows that relief has to shade in several runs, and pictures taller than wide.
TEST(Preview, LongRowsEqualPlainShader) {
  for (const auto& [width, height] : {std::pair{256, 3}, {257, 3}, {300, 5}, {530, 2}, {3, 300}}) {
    Scene scene = MakeScene(7);
    SCOPED_TRACE(std::to_string(width) + " x " + std::to_string(height));
    scene.width = width;
    scene.height = height;
    scene.area = {0, 0, height, width};
    SceneRandom random(static_cast<uint64_t>(width));
    scene.pixels.clear();
    scene.heights.clear();
    for (int i = 0; i < width * height; ++i) {
      scene.pixels.insert(scene.pixels.end(), {200, 100, static_cast<uint8_t>(random.Next())});
      scene.heights.push_back(static_cast<uint8_t>(random.OneIn(2) ? 40 : random.Between(0, 255)));
    }
    EngineRun run(scene);
    ASSERT_TRUE(run.CollectPreview(600));
    for (int round = 0; round < 2; ++round)
      ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), width);
    run.globals->gloss = scene.settings.gloss = 3;
    run.globals->lights[1].InvalidateCaches();
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), width);
  }
}

// With everything hot no light is evaluated: what the lights have become does not show.
TEST(Preview, HotCachesStandForTheLights) {
  for (const uint64_t seed : {1, 3, 10, 12}) {
    const Scene scene = PreviewScene(seed);
    SCOPED_TRACE(scene.name);
    EngineRun run(scene);
    ASSERT_TRUE(run.CollectPreview(64));
    const std::vector<uint8_t> before = run.RenderPreview();
    for (LM_light_UI& light : run.globals->lights) {
      light.intensity = static_cast<int16_t>(light.intensity / 2 - 30);
      light.center.h = static_cast<int16_t>(light.center.h + 40);
    }
    ExpectSamePicture(before, run.RenderPreview(), run.globals->previewWidth);
    run.globals->InvalidateCaches();
    EXPECT_NE(before, run.RenderPreview());
  }
}

// Each cache in turn cannot be had: the picture must not change, now or when it is there later.
TEST(Preview, MissingCachesDoNotShow) {
  for (const uint64_t seed : {1, 3}) { // flat with two lights, relief with four
    const Scene scene = PreviewScene(seed);
    for (uint64_t missing = 1; missing <= 20; ++missing) {
      SCOPED_TRACE(scene.name + ", without block " + std::to_string(missing));
      EngineRun run(scene);
      ASSERT_TRUE(run.CollectPreview(64));
      const std::vector<uint8_t> expected = run.ReferencePreview();
      FailAllocationAfter(missing);
      ExpectSamePicture(expected, run.RenderPreview(), run.globals->previewWidth);
      FailAllocationAfter(0);
      // The caches that come now hold nothing yet while the sums make the lights needless.
      ExpectSamePicture(expected, run.RenderPreview(), run.globals->previewWidth);
      // Half of a light's caches may have been there: only both together hold its results.
      run.globals->DiffuseSumCacheHot(0);
      ExpectSamePicture(expected, run.RenderPreview(), run.globals->previewWidth);
      ExpectSamePicture(expected, run.RenderPreview(), run.globals->previewWidth);
    }
  }
}

TEST(Preview, SelectionIsReducedBesideThePicture) {
  for (const uint64_t seed : {2, 3, 12, 28}) {
    const Scene scene = PreviewScene(seed);
    SCOPED_TRACE(scene.name);
    EngineRun run(scene);
    run.record.maskUsable = 1;
    run.record.maskPresent = 1;
    ASSERT_TRUE(run.CollectPreview(32));
    const LM_globals& globals = *run.globals;
    const CVPixelMap& frame = globals.previewMaps[LM_FRAME_MAP];
    ASSERT_EQ(frame.version, 1);
    ASSERT_NE(frame.mask, nullptr);
    EXPECT_EQ(frame.mask->rowBytes, 56);
    EXPECT_EQ(frame.mask->maskData[0], 255); // around the picture
    for (int y = 0; y < globals.previewHeight; ++y) {
      for (int x = 0; x < globals.previewWidth; ++x) {
        const uint8_t* row =
            frame.mask->maskData + (globals.previewOffsetY + y) * frame.mask->rowBytes;
        ASSERT_EQ(row[globals.previewOffsetX + x],
                  MaskAt(scene.area.left + x * globals.previewScale,
                         scene.area.top + y * globals.previewScale));
      }
    }
    ExpectSamePicture(run.ReferencePreview(), run.RenderPreview(), globals.previewWidth);
  }
}
