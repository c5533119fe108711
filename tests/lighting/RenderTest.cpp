// Any rectangle of an image, lit at once, has the bytes that the tile walk gives: by the plain rows
// and by every set of vector kernels that this processor runs.
#include "EngineRun.h"
#include "RenderRun.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// Lights the scene's area by rectangles of at most width x height.
std::vector<uint8_t> InPieces(const Scene& scene, const foo& params, const RenderLayout& layout,
                              int width, int height) {
  RenderRun run(scene, params, layout);
  for (int y = scene.area.top; y < scene.area.bottom; y += height) {
    for (int x = scene.area.left; x < scene.area.right; x += width)
      run.Light(
          {y, x, std::min(y + height, scene.area.bottom), std::min(x + width, scene.area.right)});
  }
  return run.Picture();
}

} // namespace

// Widths beside vectors and blocks, pieces beside both, and strips that hold nothing but what a
// piece needs.
TEST(Render, PiecesOfAnySizeGiveTheWhole) {
  static const struct {
    int width, height, pieceWidth, pieceHeight;
  } cases[] = {{1, 1, 1, 1},      {1, 9, 1, 4},       {7, 3, 3, 2},      {8, 4, 5, 1},
               {9, 5, 9, 5},      {15, 4, 15, 1},     {16, 3, 17, 2},    {17, 3, 16, 3},
               {31, 6, 31, 6},    {33, 6, 32, 5},     {65, 70, 64, 64},  {130, 20, 33, 7},
               {257, 5, 255, 5},  {1023, 3, 1023, 3}, {1024, 4, 500, 2}, {1025, 4, 1025, 3},
               {2050, 3, 1500, 1}};
  uint64_t seed = 0;
  for (const auto& each : cases) {
    for (const bool relief : {false, true}) {
      const Scene scene = SizedScene(++seed, each.width, each.height, relief);
      EngineRun walk(scene);
      const std::vector<uint8_t> expected = walk.RenderTiles();
      const foo* params = walk.Convert(0);
      for (const LM_kernels* kernels : AllKernels()) {
        SCOPED_TRACE(scene.name + ", " + NameOf(kernels));
        const RenderLayout layout = {kernels, 3, 1, true};
        ExpectSamePicture(expected,
                          InPieces(scene, *params, layout, each.pieceWidth, each.pieceHeight),
                          scene.width);
      }
    }
  }
}

TEST(Render, RefusesWhatTheViewsDoNotHold) {
  const Scene scene = SizedScene(50, 20, 10, true);
  EngineRun walk(scene);
  const foo& params = *walk.Convert(0);
  LM_render_job job;
  EXPECT_EQ(LM_PrepareRender(params, {0, 0, 0, 5}, 20, 10, nullptr, job),
            LM_render_result::EmptyArea);
  EXPECT_EQ(LM_PrepareRender(params, {0, 0, 11, 20}, 20, 10, nullptr, job),
            LM_render_result::EmptyArea);
  ASSERT_EQ(LM_PrepareRender(params, {2, 2, 8, 18}, 20, 10, nullptr, job), LM_render_result::Done);
  std::vector<uint8_t> output(600, 7);
  const LM_rect all = {0, 0, 10, 20};
  const LM_rect part = {2, 2, 4, 18};
  const LM_source_view source = {scene.pixels.data(), 60, 3, all};
  const LM_output_view target = {output.data(), 60, 3, all};
  const LM_source_view relief = {scene.heights.data(), 20, 1, all};
  const LM_source_view none = {};
  const struct {
    const char* name;
    LM_render_views views;
    LM_rect rect;
    LM_render_result expected;
  } cases[] = {
      {"left of the area", {source, target, none}, {2, 1, 4, 9}, LM_render_result::OutsideArea},
      {"below the area", {source, target, none}, {2, 2, 9, 9}, LM_render_result::OutsideArea},
      {"no source", {none, target, none}, part, LM_render_result::BadSource},
      {"short source",
       {{scene.pixels.data(), 60, 3, {0, 0, 3, 20}}, target, none},
       part,
       LM_render_result::BadSource},
      {"no output", {source, {}, none}, part, LM_render_result::BadOutput},
      {"short output",
       {source, {output.data(), 60, 3, {0, 0, 10, 17}}, none},
       part,
       LM_render_result::BadOutput},
      {"relief without the row above the neighbour",
       {source, target, {scene.heights.data() + 20, 20, 1, {1, 0, 10, 20}}},
       part,
       LM_render_result::BadRelief},
      {"relief without the last neighbour",
       {source, target, {scene.heights.data(), 20, 1, {0, 0, 9, 20}}},
       {6, 2, 8, 18},
       LM_render_result::BadRelief},
      {"empty", {none, {}, none}, {4, 4, 4, 9}, LM_render_result::Done},
      {"turned inside out", {source, target, relief}, {4, 9, 6, 4}, LM_render_result::Done},
  };
  const LM_render_scratch_pointer scratch = LM_NewRenderScratch();
  for (const auto& each : cases) {
    EXPECT_EQ(LM_RenderRect(job, each.views, each.rect, *scratch), each.expected) << each.name;
    EXPECT_EQ(output, std::vector<uint8_t>(600, 7)) << each.name;
  }
}
