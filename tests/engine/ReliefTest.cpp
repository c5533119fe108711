// Heights stored from whatever a host delivers, and which facets are one. What they look like, the
// scenes tell.
#include "EngineRun.h"
#include "FailingBlocks.h"
#include "LM_bumps.h"

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

TEST(Relief, StoringSurvivesOddRectanglesAndShortMemory) {
  const auto ramp = [](int x, int) { return x; };
  for (const auto& [columns, rows] : {std::pair{1, 1}, {2, 2}, {3, 2}, {2, 9}, {5, 3}, {0, 0}}) {
    Heights heights;
    EXPECT_EQ(heights.Store(columns, rows, 256, ramp), 0) << columns << " x " << rows;
  }
  Heights heights;
  ASSERT_EQ(heights.Store(20, 20, 256, ramp), 0);
  FailAllocationAfter(1);
  EXPECT_EQ(heights.Store(40, 40, 256, ramp), 1);
  EXPECT_EQ(heights.Map().heights, nullptr);
  FailAllocationAfter(1); // must not write through null, whatever it answers
  heights.Store(10, 10, 256, ramp);
  FailAllocationAfter(0);
  EXPECT_EQ(heights.Store(10, 10, 256, ramp), 0);
  EXPECT_NE(heights.Map().heights, nullptr);
}
