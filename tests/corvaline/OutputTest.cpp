// What becomes of a plug-in's output tiles.
#include "Plan.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>

namespace {

constexpr int TILE = 16;

// Walks the filter area in tiles, input and output alike.
bool toNextTile(FilterRecord& record) {
  const CVRect& area = record.filterArea;
  CVRect& tile = record.outTileRect;
  const auto end = [](int start, int limit) {
    return static_cast<int16_t>(std::min(start + TILE, limit));
  };
  if (tile.right == 0 && tile.bottom == 0) { // the first one
    tile.top = area.top;
    tile.left = area.left;
  } else if (tile.right < area.right) {
    tile.left = tile.right;
  } else if (tile.bottom < area.bottom) {
    tile.top = tile.bottom;
    tile.left = area.left;
  } else {
    return false;
  }
  tile.bottom = end(tile.top, area.bottom);
  tile.right = end(tile.left, area.right);
  record.inTileRect = tile;
  return true;
}

// A filter that needs its neighbours: the pixel above left, inverted.
void growMargin(FilterRecord& record) {
  record.inTileRect.top -= 1;
  record.inTileRect.left -= 1;
  record.inEdgeMode = CV_EDGE_REPLICATE;
}

void shiftAndInvert(const FilterRecord& record) {
  const CVRect& tile = record.outTileRect;
  for (int row = 0; row < tile.bottom - tile.top; ++row)
    for (int i = 0; i < (tile.right - tile.left) * 3; ++i)
      record.outPixels[row * record.outRowStride + i] =
          static_cast<uint8_t>(~record.inPixels[row * record.inRowStride + i]);
}

Plan shiftingPlan() {
  Plan plan;
  plan.start = [](FilterRecord& record) -> int16_t {
    toNextTile(record);
    growMargin(record);
    return 0;
  };
  plan.next = [](FilterRecord& record) -> int16_t {
    shiftAndInvert(record);
    if (toNextTile(record))
      growMargin(record);
    else
      stopAsking(record);
    return 0;
  };
  return plan;
}

// The same over the whole image at once, through the selection, with the rounding of real numbers.
std::vector<uint8_t> expectedShift(const CVDocument& document, const CVRect& area) {
  std::vector<uint8_t> bytes;
  for (int channel = 0; channel < document.channelCount(); ++channel)
    for (int row = 0; row < document.height(); ++row)
      for (int column = 0; column < document.width(); ++column) {
        const int in = pixelAt(document, channel, row, column);
        const int out = 255 - pixelAt(document, channel, row - 1, column - 1);
        const auto mask = document.mask();
        const int share = mask.data == nullptr
                              ? 255
                              : mask.data[static_cast<size_t>(row) * mask.rowStride +
                                          static_cast<size_t>(column)];
        const bool filtered = channel < 3 && row >= area.top && row < area.bottom &&
                              column >= area.left && column < area.right;
        bytes.push_back(
            static_cast<uint8_t>(filtered ? std::lround(in + (out - in) * share / 255.0) : in));
      }
  return bytes;
}

} // namespace

// Tiles overlap in what they read, so this holds only if input stays the original image.
TEST(Output, TiledEqualsWhole) {
  std::mt19937 random(4);
  const struct {
    const char* name;
    int width, height, planes, extras;
    bool masked;
    CVRect area;
  } cases[] = {
      {"one pixel", 1, 1, 3, 0, false, {0, 0, 1, 1}},
      {"a tile", TILE, TILE, 3, 0, false, {0, 0, TILE, TILE}},
      {"odd sizes", 45, 33, 3, 1, false, {0, 0, 33, 45}},
      {"part of the image", 45, 33, 3, 0, false, {5, 7, 30, 44}},
      {"alpha stays", 45, 33, 4, 0, false, {0, 0, 33, 45}},
      {"selection", 45, 33, 3, 0, true, {0, 0, 33, 45}},
      {"all together", 70, 41, 5, 2, true, {1, 2, 40, 60}},
  };
  for (const auto& test : cases)
    for (const bool wrapped : {false, true}) {
      SCOPED_TRACE(std::string(test.name) + (wrapped ? ", wrapped" : ", owned"));
      TestDocument owned =
          randomDocument(random, test.width, test.height, test.planes, test.extras, test.masked);
      CVDocument wrapper;
      CVDocument& document = wrapped ? wrapper : owned;
      if (wrapped) {
        ASSERT_TRUE(wrapper
                        .wrap(owned.channel(0).data, owned.channel(0).rowStride, test.width,
                              test.height, test.planes)
                        .ok());
        if (test.masked) {
          ASSERT_TRUE(wrapper.wrapMask(owned.mask().data, owned.mask().rowStride).ok());
        }
      }
      const auto expected = expectedShift(document, test.area);
      Plan plan = shiftingPlan();
      CVFilterSession session(playing(plan));
      std::vector<double> progress;
      CVRunOptions options;
      options.progress = [&](double share) { progress.push_back(share); };
      const CVResult result = session.run(document, test.area, options);
      EXPECT_TRUE(result.ok()) << result.message;
      EXPECT_EQ(bytesOf(document), expected);
      ASSERT_FALSE(progress.empty());
      EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
      EXPECT_EQ(progress.back(), 1.0);
    }
}

// Rows are asked for before they are read and given away once the walk has left them, as they stay;
// the document is left alone.
TEST(Output, RowsPassThrough) {
  std::mt19937 random(6);
  for (const CVRect area : {CVRect{0, 0, 41, 70}, CVRect{5, 7, 30, 44}}) {
    TestDocument document = randomDocument(random, 70, 41, 3, 0, area.top > 0);
    const auto original = bytesOf(document);
    const auto expected = expectedShift(document, area);
    int needed = 0;
    int finished = area.top;
    std::shared_ptr<const CVBuffer> lit;
    std::vector<uint8_t> passed;
    CVRunOptions options;
    options.passing.needRows = [&](int bottom) {
      EXPECT_GT(bottom, needed);
      EXPECT_LE(bottom, finished + TILE);
      needed = bottom;
      return true;
    };
    options.passing.finishRows = [&](int bottom, const std::shared_ptr<const CVBuffer>& rows) {
      EXPECT_EQ(bottom, std::min(finished + TILE, int{area.bottom}));
      const auto rowBytes = static_cast<size_t>(area.right - area.left) * 3;
      const auto row = [&](int y) {
        return rows->data() + static_cast<size_t>(y - area.top) * rowBytes;
      };
      passed.insert(passed.end(), row(finished), row(bottom));
      finished = bottom;
      lit = rows;
    };
    Plan plan = shiftingPlan();
    CVFilterSession session(playing(plan));
    const CVResult result = session.run(document, area, options);
    ASSERT_TRUE(result.ok()) << result.message;
    EXPECT_EQ(bytesOf(document), original);
    ASSERT_EQ(finished, area.bottom);
    EXPECT_TRUE(std::equal(passed.begin(), passed.end(), lit->data()));
    for (int y = area.top; y < area.bottom; ++y)
      for (int x = area.left; x < area.right; ++x)
        for (int channel = 0; channel < 3; ++channel)
          ASSERT_EQ(passed[static_cast<size_t>(
                        ((y - area.top) * (area.right - area.left) + x - area.left) * 3 + channel)],
                    expected[static_cast<size_t>((channel * 41 + y) * 70 + x)]);

    // Nothing is written to rows that are gone; rows that cannot be had end the run.
    finished = area.top;
    plan.next = [&](FilterRecord& record) -> int16_t {
      if (record.outTileRect.top > area.top)
        record.outTileRect.top = area.top;
      else
        toNextTile(record);
      return 0;
    };
    options.passing.needRows = {};
    options.passing.finishRows = [](int, const std::shared_ptr<const CVBuffer>&) {};
    EXPECT_EQ(session.run(document, area, options).outcome, CVOutcome::BadRequest);
    options.passing.needRows = [](int) { return false; };
    EXPECT_EQ(session.run(document, area, options).outcome, CVOutcome::Failed);
    EXPECT_EQ(bytesOf(document), original);
  }
}

// Tiles may overlap and be handed over inside a call; outside the filter area nothing is taken;
// with absolute planes an extra channel can be written.
TEST(Output, PresentContentIsDelivered) {
  std::mt19937 random(5);
  TestDocument document = randomDocument(random, 20, 10, 4, 1, false);
  const auto original = bytesOf(document);
  Plan plan;
  plan.start = [](FilterRecord& record) -> int16_t {
    record.absolutePlanesWanted = 1;
    record.outFirstPlane = 3;
    record.outLastPlane = 4;
    record.outTileRect = {0, 0, 10, 20};
    return 0;
  };
  plan.next = [&](FilterRecord& record) -> int16_t {
    for (int row = 0; row < 10; ++row)
      for (int column = 0; column < 20; ++column) {
        EXPECT_EQ(record.outPixels[row * record.outRowStride + column * 2],
                  pixelAt(document, 3, row, column));
        EXPECT_EQ(record.outPixels[row * record.outRowStride + column * 2 + 1],
                  pixelAt(document, 4, row, column));
      }
    for (int row = 0; row < 10; ++row)
      std::fill_n(record.outPixels + row * record.outRowStride, 40, uint8_t{7});
    record.outTileRect = {1, 1, 3, 3};
    record.outFirstPlane = 4;
    EXPECT_EQ(record.nextTile(), 0);
    const int first = record.outPixels[0], inside = record.outPixels[record.outRowStride + 1];
    EXPECT_EQ(first, pixelAt(document, 4, 1, 1)); // outside the area: as it was
    EXPECT_EQ(inside, 7);
    record.outPixels[record.outRowStride + 1] = 8;
    stopAsking(record);
    return 0;
  };
  CVFilterSession session(playing(plan));
  const CVResult result = session.run(document, {2, 2, 10, 20}, {});
  ASSERT_TRUE(result.ok()) << result.message;
  auto expected = original;
  for (size_t channel = 3; channel < 5; ++channel)
    for (size_t row = 2; row < 10; ++row)
      std::fill_n(expected.begin() + static_cast<ptrdiff_t>(channel * 200 + row * 20 + 2), 18,
                  uint8_t{7});
  expected[4 * 200 + 2 * 20 + 2] = 8;
  EXPECT_EQ(bytesOf(document), expected);
}
