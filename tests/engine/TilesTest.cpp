// Which rectangles are asked for.
#include "EngineRun.h"
#include "LM_tiles.h"

#include <gtest/gtest.h>
#include <ostream>

static bool operator==(const CVRect& a, const CVRect& b) {
  return a.top == b.top && a.left == b.left && a.bottom == b.bottom && a.right == b.right;
}
static std::ostream& operator<<(std::ostream& out, const CVRect& r) {
  return out << "(" << r.top << ", " << r.left << ", " << r.bottom << ", " << r.right << ")";
}

namespace {

struct Walk {
  FilterRecord record{};
  GlobalsPointer globals{LM_NewGlobals()};
  explicit Walk(const CVRect& area) { record.filterArea = area; }
  bool Empty() const {
    return record.inTileRect.bottom <= record.inTileRect.top ||
           record.inTileRect.right <= record.inTileRect.left;
  }
};

// Follows the reading order: each tile starts where the band or the last band ended.
void ExpectCover(const CVRect& area, int edge, const std::vector<CVRect>& tiles) {
  size_t next = 0;
  for (int top = area.top; top < area.bottom; top += edge) {
    for (int left = area.left; left < area.right; left += edge, ++next) {
      ASSERT_LT(next, tiles.size());
      const CVRect expected = {static_cast<int16_t>(top), static_cast<int16_t>(left),
                               static_cast<int16_t>(std::min(top + edge, int{area.bottom})),
                               static_cast<int16_t>(std::min(left + edge, int{area.right}))};
      EXPECT_EQ(tiles[next], expected);
    }
  }
  EXPECT_EQ(next, tiles.size());
}

const CVRect areas[] = {{0, 0, 1, 1},
                        {0, 0, 64, 64},
                        {0, 0, 1, 65},
                        {7, 11, 140, 75},
                        {0, 0, 128, 63},
                        {3, 5, 4, 400},
                        {32700, 32640, 32767, 32767}};

} // namespace

TEST(Tiles, RealWalkCoversTheAreaOnce) {
  for (const CVRect& area : areas) {
    SCOPED_TRACE(testing::PrintToString(area.right));
    Walk walk(area);
    std::vector<CVRect> tiles;
    LM_SetFirstRealTileRects(&walk.record, walk.globals.get());
    EXPECT_EQ(walk.globals->tilesDone, 0);
    for (; !walk.Empty() && tiles.size() < 100;
         LM_SetNextRealTileRects(&walk.record, walk.globals.get())) {
      tiles.push_back(walk.record.inTileRect);
      EXPECT_EQ(walk.record.outTileRect, walk.record.inTileRect);
      EXPECT_EQ(walk.record.maskTileRect, (CVRect{0, 0, 0, 0}));
    }
    ExpectCover(area, 64, tiles);
    const CVRect end = {area.bottom, area.right, area.bottom, area.right};
    EXPECT_EQ(walk.record.inTileRect, end);
    EXPECT_EQ(walk.record.outTileRect, end);
  }
}

TEST(Tiles, PreviewWalkCoversTheAreaInMultiplesOfTheScale) {
  const struct {
    int scale, edge;
  } cases[] = {{1, 64}, {2, 64}, {3, 63}, {10, 60}, {33, 33}, {64, 64}, {65, 65}, {128, 128}};
  for (const auto& each : cases) {
    for (const CVRect& area : areas) {
      SCOPED_TRACE("scale " + std::to_string(each.scale));
      Walk walk(area);
      walk.globals->previewScale = static_cast<int16_t>(each.scale);
      walk.globals->previewComplete = 0;
      walk.record.inSampleStep = CV_FIXED_ONE;
      std::vector<CVRect> tiles;
      CVRect last{};
      LM_SetFirstPreviewTileRects(&walk.record, walk.globals.get());
      for (; walk.globals->previewComplete == 0 && tiles.size() < 1000;
           LM_SetNextPreviewTileRects(&walk.record, walk.globals.get())) {
        last = walk.record.inTileRect;
        tiles.push_back(last);
        EXPECT_EQ(walk.record.maskTileRect, last);
        EXPECT_EQ(walk.record.outTileRect.bottom, last.top + 1);
        EXPECT_EQ(walk.record.maskSampleStep, CV_FIXED_ONE);
      }
      ExpectCover(area, each.edge, tiles);
      EXPECT_TRUE(walk.Empty());
      EXPECT_EQ(walk.record.maskTileRect, last); // only the input rectangle is emptied
    }
  }
}

TEST(Tiles, ProgressCountsOneMoreColumnAndBand) {
  const struct {
    int height, width, expected;
  } cases[] = {{64, 64, 4},   {1, 65, 2}, {1, 1, 1},
               {128, 100, 6}, {0, 0, 1},  {32767, 32767, 262144}};
  for (const auto& each : cases) {
    FilterRecord record{};
    record.filterArea = {0, 0, static_cast<int16_t>(each.height), static_cast<int16_t>(each.width)};
    EXPECT_EQ(LM_NumTilesNeeded(&record), each.expected) << each.width << " x " << each.height;
  }
}
