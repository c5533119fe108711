// Heights, and the facets made of them.
#include "EngineRun.h"
#include "LM_memory.h"
#include "LM_shader.h"
#include "MacMemory.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

struct Heights {
  FilterRecord record{};
  GlobalsPointer globals{LM_NewGlobals()};
  std::vector<uint8_t> bytes;
  // Stores a channel of columns x rows bytes made by value(x, y).
  template <typename Value> int16_t Store(int columns, int rows, int32_t scale, Value value) {
    bytes.clear();
    for (int y = 0; y < rows; ++y)
      for (int x = 0; x < columns; ++x)
        bytes.push_back(static_cast<uint8_t>(value(x, y)));
    record.inTileRect = {-3, -3, static_cast<int16_t>(rows - 3), static_cast<int16_t>(columns - 3)};
    record.inPixels = bytes.data();
    record.inRowStride = columns;
    Map().scale = scale;
    return LM_StoreBumpMap(&record, globals.get());
  }
  LM_bump_map& Map() { return globals->bumpMap; }
  Heights() { LM_SetUpHeightFilter(&Map()); }
  ~Heights() { LM_FreeRunBuffers(globals.get()); }
};

struct Facets {
  int32_t gradX[4] = {}, gradY[4] = {}, weight[4] = {};
  uint32_t count = 0;
  // Of one pixel's nine heights, as the drivers make them.
  explicit Facets(const int32_t (&h)[9]) {
    int32_t *x = gradX, *y = gradY, *w = weight;
    static const int quads[4][4] = {{0, 1, 4, 3}, {1, 2, 5, 4}, {4, 5, 8, 7}, {3, 4, 7, 6}};
    for (const auto& quad : quads)
      LM_GeneratePreviewBumpSample(h[quad[0]], h[quad[1]], h[quad[2]], h[quad[3]], gradX, gradY,
                                   weight, &x, &y, &w, count);
  }
};

} // namespace

TEST(Relief, FilterWeighsNineBytes) {
  const struct {
    const char* name;
    int center, edge, corner;
    int32_t scale, expected;
  } cases[] = {
      {"a full step at amplitude 128", 255, 255, 255, 256, 69120},
      {"centre alone", 1, 0, 0, 68, 32},
      {"edges alone", 0, 1, 0, 68, 32},
      {"corners alone", 0, 0, 1, 68, 8},
      {"negative products divide towards zero", 0, 0, 4, -2, 0},
      {"negative", 1, 1, 1, -2, -2},
      {"largest amplitude", 255, 255, 255, 65536, 17694720},
  };
  for (const auto& each : cases) {
    uint8_t block[25];
    std::fill(std::begin(block), std::end(block), uint8_t{0xEE}); // the outer ring is not read
    for (int y = 0; y < 3; ++y)
      for (int x = 0; x < 3; ++x)
        block[(y + 1) * 5 + x + 1] = static_cast<uint8_t>(
            x == 1 && y == 1 ? each.center : (x == 1 || y == 1 ? each.edge : each.corner));
    LM_bump_map map{};
    LM_SetUpHeightFilter(&map);
    EXPECT_EQ(LM_FilterHeight(block, 5, each.scale, map.kernel), each.expected) << each.name;
  }
}

TEST(Relief, FlatFacetsMergeAndSlopedOnesDoNot) {
  const struct {
    const char* name;
    int32_t heights[9];
    std::vector<int32_t> weights;
    std::vector<int32_t> gradX, gradY;
  } cases[] = {
      {"all flat", {7, 7, 7, 7, 7, 7, 7, 7, 7}, {16}, {0}, {0}},
      {"right half slopes", {0, 0, 8, 0, 0, 8, 0, 0, 8}, {8, 4, 4}, {0, 8, 8}, {0, 0, 0}},
      {"left half slopes", {8, 0, 0, 8, 0, 0, 8, 0, 0}, {4, 8, 4}, {-8, 0, -8}, {0, 0, 0}},
      {"a plane", {0, 2, 4, 0, 2, 4, 0, 2, 4}, {4, 4, 4, 4}, {2, 2, 2, 2}, {0, 0, 0, 0}},
      {"top is higher", {6, 6, 6, 0, 0, 0, 0, 0, 0}, {4, 4, 8}, {0, 0, 0}, {6, 6, 0}},
      // Halves go down: a corner of 1 gives 1 / 2 = 0 one way and -1 / 2 = -1 the other.
      {"one corner", {1, 0, 0, 0, 0, 0, 0, 0, 0}, {4, 12}, {-1, 0}, {0, 0}},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    const Facets facets(each.heights);
    ASSERT_EQ(facets.count, each.weights.size());
    for (size_t i = 0; i < each.weights.size(); ++i) {
      EXPECT_EQ(facets.weight[i], each.weights[i]);
      EXPECT_EQ(facets.gradX[i], each.gradX[i]);
      EXPECT_EQ(facets.gradY[i], each.gradY[i]);
    }
  }
}

TEST(Relief, NormalsLeanAwayFromTheSlope) {
  const LM_vector3f flat = LM_FacetNormal(0, 0);
  EXPECT_EQ(flat.x, 0.0F);
  EXPECT_EQ(flat.y, 0.0F);
  EXPECT_EQ(flat.z, 1.0F);
  const LM_vector3f right = LM_FacetNormal(4096, 0); // 45 degrees, up to the right
  EXPECT_NEAR(right.x, -std::sqrt(0.5), 1e-6);
  EXPECT_NEAR(right.z, std::sqrt(0.5), 1e-6);
  const LM_vector3f top = LM_FacetNormal(0, 4096); // up to the top: leans down the picture
  EXPECT_NEAR(top.y, std::sqrt(0.5), 1e-6);
  const LM_vector3f steep = LM_FacetNormal(-35389440, 35389440); // squares beyond 32 bits
  EXPECT_NEAR(steep.x, std::sqrt(0.5), 1e-4);
  EXPECT_GT(steep.z, 0.0F);
}

TEST(Relief, StoresHeightsFromTheSecondPixelOn) {
  Heights heights;
  // One bright byte at (4, 3): its height's centre is (4 - 2, 3 - 2).
  ASSERT_EQ(heights.Store(9, 8, 68, [](int x, int y) { return x == 4 && y == 3 ? 1 : 0; }), 0);
  const LM_bump_map& map = heights.Map();
  EXPECT_EQ(map.width, 7U);
  EXPECT_EQ(map.rowBytes, 28U);
  const auto at = [&](int x, int y) { return map.heights[y * 7 + x]; };
  EXPECT_EQ(at(2, 1), 32);
  EXPECT_EQ(at(1, 1), 8);
  EXPECT_EQ(at(3, 2), 2);
  EXPECT_EQ(at(4, 1), 0);
  EXPECT_EQ(at(6, 5), 0); // its taps were not delivered
}

TEST(Relief, StoringSurvivesOddRectanglesAndShortMemory) {
  const auto ramp = [](int x, int) { return x; };
  for (const auto& [columns, rows] : {std::pair{1, 1}, {2, 2}, {3, 2}, {2, 9}, {5, 3}, {0, 0}}) {
    Heights heights;
    EXPECT_EQ(heights.Store(columns, rows, 256, ramp), 0) << columns << " x " << rows;
  }
  Heights heights;
  ASSERT_EQ(heights.Store(20, 20, 256, ramp), 0);
  TB_FailAllocationAfter(1);
  EXPECT_EQ(heights.Store(40, 40, 256, ramp), 1);
  EXPECT_EQ(heights.Map().heights, nullptr);
  TB_FailAllocationAfter(1); // must not write through null, whatever it answers
  heights.Store(10, 10, 256, ramp);
  TB_FailAllocationAfter(0);
  EXPECT_EQ(heights.Store(10, 10, 256, ramp), 0);
  EXPECT_NE(heights.Map().heights, nullptr);
}

TEST(Relief, SpotConeThatMissesThePixelLightsNoFacet) {
  ReferenceLight spot;
  spot.type = REFERENCE_SPOT;
  spot.handle1 = {50, 0};
  spot.handle2 = {0, 50};
  spot.color = {65535, 65535, 65535};
  spot.intensity = 127;
  spot.spread = 128;
  LM_light light{};
  ToEngine(spot).ConvertToRealLight(&light, 100, 0);
  const float tilt = std::sqrt(0.5F);
  const LM_vector2f positions[4] = {{2, 0}, {2, 0}, {0, 0}, {0, 0}};
  // The first pixel lies outside the cone, however much a facet leans to the light; the second
  // pixel lies inside, one facet facing up and one turned away.
  const LM_vector3f normals[4] = {{-tilt, 0, tilt}, {0, 0, 1}, {0, 0, 1}, {0, -1, -0.1F}};
  const int32_t weights[6] = {8, 8, 0, 8, 8, 0};
  LM_color96 diffuse[4] = {};
  LM_color96 specular[4] = {};
  LM_ShadeLightBumps(light, 4, positions, normals, diffuse, specular, weights);
  EXPECT_EQ(diffuse[0].component[0], 0);
  EXPECT_EQ(diffuse[1].component[0], 0);
  EXPECT_GT(diffuse[2].component[0], 0);
  EXPECT_GT(specular[2].component[0], 0);
  EXPECT_EQ(diffuse[3].component[0], 0);
  EXPECT_EQ(specular[3].component[0], 0);
}
