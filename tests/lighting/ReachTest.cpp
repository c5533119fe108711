// Lights are left out where they give nothing, and nowhere else.
#include "EngineRun.h"
#include "LM_kernel_lights.h"
#include "LM_light_shader.h"
#include "LM_reach.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <iostream>

namespace {

constexpr int SAMPLES = LM_RENDER_BLOCK;
constexpr int PIECES = LM_ReachPieces(SAMPLES);

// Spots as people draw them, as style files may hold them, and as a hostile block may.
LM_light MakeSpot(SceneRandom& random, int kind) {
  LM_light light{};
  ToEngine(MakeLight(random, REFERENCE_SPOT, kind == 1 ? SceneMood::Wild : SceneMood::Usual))
      .ConvertToRealLight(&light, 140, 0);
  if (kind != 2)
    return light;
  const auto any = [&](float most) {
    return static_cast<float>(random.Between(-1000, 1000)) / 1000.0F * most;
  };
  light.direction = {any(2.0F), any(2.0F), any(2.0F)};
  light.position = {any(3.0F), any(3.0F), any(3.0F)};
  light.cosCutoff = any(1.2F);
  return light;
}

// A row of samples across the picture, or a small part of it.
struct Row {
  float y;
  std::array<float, SAMPLES> x;
};
Row MakeRow(SceneRandom& random) {
  Row row = {static_cast<float>(random.Between(-1000, 1000)) / 1000.0F, {}};
  const double step = random.OneIn(4) ? 1e-6 : 2.0 / SAMPLES;
  const double left = random.Between(-1000, 1000) / 1000.0 - random.Between(0, 1);
  for (int i = 0; i < SAMPLES; ++i)
    row.x[static_cast<size_t>(i)] = static_cast<float>(left + i * step);
  return row;
}

// The pieces in which the plain shader gives a sample something: flat, or on facets that may face
// anywhere.
uint32_t LitPieces(const LM_light& light, const Row& row, SceneRandom& random) {
  std::vector<LM_vector2f> places(SAMPLES);
  std::vector<LM_vector3f> normals(SAMPLES);
  std::vector<int32_t> weights;
  std::vector<LM_color96> sums(4 * SAMPLES);
  for (size_t i = 0; i < SAMPLES; ++i) {
    places[i] = {row.x[i], row.y};
    normals[i] = LM_FacetNormal(random.Between(-9000, 9000), random.Between(-9000, 9000));
    weights.insert(weights.end(), {16, 0});
  }
  LM_ShadeLight(light, SAMPLES, places.data(), sums.data(), sums.data() + SAMPLES);
  LM_ShadeLightBumps(light, SAMPLES, places.data(), normals.data(), sums.data() + 2 * SAMPLES,
                     sums.data() + 3 * SAMPLES, weights.data());
  uint32_t lit = 0;
  for (size_t i = 0; i < sums.size(); ++i) {
    const int32_t* part = sums[i].component;
    if (part[0] != 0 || part[1] != 0 || part[2] != 0)
      lit |= 1U << i % SAMPLES / LM_REACH_PIECE;
  }
  return lit;
}

} // namespace

TEST(Reach, LeavesOutOnlyWhatGivesNothing) {
  SceneRandom random(77);
  int64_t pieces = 0, marked = 0, lit = 0; // of lights that people draw
  for (int i = 0; i < LIMN_TEST_SCENES * 30 && !testing::Test::HasFailure(); ++i) {
    SCOPED_TRACE("light " + std::to_string(i));
    foo params{};
    LM_InitParameters(&params);
    params.numLights = 1;
    params.lights[0] = MakeSpot(random, i % 3);
    const Row row = MakeRow(random);
    LM_sorted_lights sorted = LM_SortLights(params, false);
    if (sorted.kernel.spots == 0 ||
        !LM_FitVectors(sorted.kernel, {row.x.front(), row.x.back(), row.y, row.y}))
      continue;
    LM_MoveToRow(sorted.kernel.light[0], row.y, sorted.kernel.light[0]);
    const LM_row_reach reach = LM_FindReach(sorted.kernel, row.x.data(), SAMPLES);
    const uint32_t gives = LitPieces(params.lights[0], row, random);
    for (int piece = 0; piece < PIECES; ++piece) {
      const bool isLit = (gives >> piece & 1) != 0;
      EXPECT_TRUE(reach.lights[piece] == 1 || !isLit) << "piece " << piece;
      pieces += i % 3 == 0 ? 1 : 0;
      marked += i % 3 == 0 && reach.lights[piece] == 1 ? 1 : 0;
      lit += i % 3 == 0 && isLit ? 1 : 0;
    }
  }
  EXPECT_LT(static_cast<double>(marked), 1.3 * static_cast<double>(lit));
  EXPECT_LT(lit, pieces / 2) << "the lights are too large to show anything";
  std::cout << "counted: pieces " << pieces << ", marked " << marked << ", lit " << lit << "\n";
}
