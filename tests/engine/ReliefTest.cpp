// Heights stored from whatever a host delivers. What they look like, the scenes tell.
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

} // namespace

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
