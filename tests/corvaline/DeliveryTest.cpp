// What a plug-in is handed, against the plain definition of each delivered byte.
#include "Plan.h"

#include <gtest/gtest.h>

namespace {

int pick(std::mt19937& random, int from, int to) {
  return std::uniform_int_distribution<int>(from, to)(random);
}

int16_t side(std::mt19937& random, int from, int to) {
  return static_cast<int16_t>(pick(random, from, to));
}

// A random input and mask request that the contract allows.
void ask(std::mt19937& random, const CVDocument& document, FilterRecord& record) {
  const int width = document.width(), height = document.height();
  const bool replicate = pick(random, 0, 1) == 1;
  const int margin = replicate ? pick(random, 0, 90) : 0;
  CVRect& in = record.inTileRect;
  in.top = side(random, -margin, height - 1 + margin);
  in.left = side(random, -margin, width - 1 + margin);
  in.bottom = side(random, in.top + 1, height + margin);
  in.right = side(random, in.left + 1, width + margin);
  record.inEdgeMode = replicate ? CV_EDGE_REPLICATE : CV_EDGE_NONE;
  record.absolutePlanesWanted = static_cast<uint8_t>(pick(random, 0, 1));
  const int planes = record.absolutePlanesWanted != 0 ? document.channelCount() : 3;
  record.inFirstPlane = side(random, 0, planes - 1);
  record.inLastPlane = side(random, record.inFirstPlane, planes - 1);
  record.inSampleStep = pick(random, 0, 2) == 0 ? pick(random, CV_FIXED_ONE, 9 * CV_FIXED_ONE)
                                                : CV_FIXED_ONE * pick(random, 1, 4);
  record.maskSampleStep = record.inSampleStep;
  CVRect& mask = record.maskTileRect;
  mask.top = side(random, 0, height - 1);
  mask.left = side(random, 0, width - 1);
  mask.bottom = side(random, mask.top, height);
  mask.right = side(random, mask.left, width);
}

int samples(int length, int32_t step) {
  int count = 0;
  while ((int64_t{count} * step) < (int64_t{length} << 16))
    ++count;
  return count;
}

int sampleOffset(int index, int32_t step) {
  return static_cast<int>((int64_t{index} * step) >> 16);
}

// Number of delivered bytes that are not what the request says.
int wrongBytes(const FilterRecord& record, const CVDocument& document) {
  int wrong = 0;
  const CVRect& in = record.inTileRect;
  const int planes = record.inLastPlane - record.inFirstPlane + 1;
  const int32_t step = record.inSampleStep;
  for (int row = 0; row < samples(in.bottom - in.top, step); ++row)
    for (int column = 0; column < samples(in.right - in.left, step); ++column)
      for (int plane = 0; plane < planes; ++plane)
        wrong += record.inPixels[row * record.inRowStride + column * planes + plane] !=
                 pixelAt(document, record.inFirstPlane + plane, in.top + sampleOffset(row, step),
                         in.left + sampleOffset(column, step));

  const CVRect& mask = record.maskTileRect;
  if (mask.bottom == mask.top || mask.right == mask.left || !document.hasMask())
    return wrong + (record.maskPixels != nullptr ? 1 : 0);
  const auto view = document.mask();
  for (int row = 0; row < samples(mask.bottom - mask.top, step); ++row)
    for (int column = 0; column < samples(mask.right - mask.left, step); ++column)
      wrong += record.maskPixels[row * record.maskRowStride + column] !=
               view.data[static_cast<size_t>(mask.top + sampleOffset(row, step)) * view.rowStride +
                         static_cast<size_t>(mask.left + sampleOffset(column, step))];
  return wrong;
}

// Random requests on one document, half of them delivered inside a call.
void checkDeliveries(std::mt19937& random, CVDocument& document) {
  Plan plan;
  int left = 40;
  plan.start = [&](FilterRecord& record) -> int16_t {
    EXPECT_EQ(record.inPixels, nullptr);
    ask(random, document, record);
    return 0;
  };
  plan.next = [&](FilterRecord& record) -> int16_t {
    EXPECT_EQ(wrongBytes(record, document), 0);
    EXPECT_EQ(record.maskUsable != 0 && record.maskPresent > 0, document.hasMask());
    ask(random, document, record);
    EXPECT_EQ(record.nextTile(), 0);
    EXPECT_EQ(wrongBytes(record, document), 0);
    ask(random, document, record);
    if (--left == 0)
      stopAsking(record);
    return 0;
  };
  CVFilterSession session(playing(plan));
  const auto before = bytesOf(document);
  const CVResult result = session.run(document, document.bounds(), {});
  EXPECT_TRUE(result.ok()) << result.message;
  EXPECT_EQ(left, 0);
  EXPECT_EQ(bytesOf(document), before);
}

} // namespace

TEST(Delivery, EveryByteIsTheRequestedOne) {
  std::mt19937 random(1);
  for (int i = 0; i < 30; ++i) {
    SCOPED_TRACE(i);
    TestDocument document = randomDocument(random, pick(random, 1, 40), pick(random, 1, 40),
                                           pick(random, 3, 5), pick(random, 0, 2), i % 2 == 0);
    checkDeliveries(random, document);
  }
}

TEST(Delivery, WrappedMemoryKeepsItsStrides) {
  std::mt19937 random(2);
  constexpr int width = 19, height = 7;
  std::vector<uint8_t> base = randomPlane(random, height, 100);
  std::vector<uint8_t> extra = randomPlane(random, height, 23);
  const std::vector<uint8_t> mask = randomPlane(random, height, 21);
  CVDocument document;
  ASSERT_TRUE(document.wrap(base.data(), 100, width, height, 4).ok());
  ASSERT_TRUE(document.wrapChannel("Height", extra.data(), 23).ok());
  ASSERT_TRUE(document.wrapMask(mask.data(), 21).ok());
  checkDeliveries(random, document);
}

// A margin far out repeats the one pixel there is, and whole images are lent without being copied.
TEST(Delivery, FarMarginsAndWholeImages) {
  std::mt19937 random(3);
  TestDocument document = randomDocument(random, 1, 1, 3, 0, false);
  Plan plan;
  plan.start = [](FilterRecord& record) -> int16_t {
    record.inTileRect = {-32768, 32000, -32700, 32767};
    record.inEdgeMode = CV_EDGE_REPLICATE;
    return 0;
  };
  plan.next = [&](FilterRecord& record) -> int16_t {
    EXPECT_EQ(wrongBytes(record, document), 0);
    record.inTileRect = document.bounds();
    EXPECT_EQ(record.nextTile(), 0);
    EXPECT_EQ(record.inPixels, document.channel(0).data);
    stopAsking(record);
    return 0;
  };
  CVFilterSession session(playing(plan));
  const CVResult result = session.run(document, document.bounds(), {});
  EXPECT_TRUE(result.ok()) << result.message;
}
