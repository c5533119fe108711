// A TIFF that was written is taken for whole without being decoded only when all of its pixels are
// in the file as they are.
#include "format_limits.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace {

constexpr uint32_t PIXELS = 8; // where the first strip begins

struct Strip {
  uint32_t place, size;
};

// One page with these strips of pixels, in one of the two byte orders.
struct Tiff {
  std::vector<Strip> strips = {{PIXELS, 60}, {PIXELS + 60, 40}};
  uint32_t compression = 1;
  uint32_t pixels = 100; // bytes that are there
  bool isBig = false;

  std::vector<uint8_t> Bytes() const {
    std::vector<uint8_t> bytes;
    const auto put = [&](uint64_t value, int size) {
      for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> 8 * (isBig ? size - 1 - i : i)));
    };
    const auto count = static_cast<uint32_t>(strips.size());
    const uint32_t lists = PIXELS + pixels;
    const uint32_t page = lists + 8 * count;
    put(isBig ? 0x4D4D : 0x4949, 2), put(42, 2), put(page, 4);
    bytes.resize(bytes.size() + pixels, 7);
    for (const Strip& strip : strips)
      put(strip.place, 4);
    for (const Strip& strip : strips)
      put(strip.size, 4);
    put(3, 2);
    put(259, 2), put(3, 2), put(1, 4), put(compression, 2), put(0, 2);
    put(273, 2), put(4, 2), put(count, 4), put(lists, 4);
    put(279, 2), put(4, 2), put(count, 4), put(lists + 4 * count, 4);
    put(0, 4);
    return bytes;
  }
};

bool HoldsAll(const std::vector<uint8_t>& bytes, uint64_t size = 100) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);
  EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file.get()), bytes.size());
  std::fflush(file.get());
  limn::FileBytes reader(fileno(file.get()), "a TIFF");
  return limn::HoldsPlainPixels(reader, size);
}

} // namespace

TEST(PlainTiff, HoldsAllThatItsStripsSay) {
  for (const bool isBig : {false, true}) {
    Tiff tiff;
    tiff.isBig = isBig;
    EXPECT_TRUE(HoldsAll(tiff.Bytes()));
    EXPECT_FALSE(HoldsAll(tiff.Bytes(), 101)) << "a strip is missing";
    tiff.compression = 5;
    EXPECT_FALSE(HoldsAll(tiff.Bytes())) << "what is compressed has to be decoded";
  }
}

TEST(PlainTiff, StripsLieInTheFile) {
  for (const Strip& last : {Strip{PIXELS + 60, 0}, Strip{PIXELS + 60, 4000}, Strip{4000, 40},
                            Strip{0xFFFFFFF0, 40}, Strip{0, 0xFFFFFFFF}}) {
    Tiff tiff;
    tiff.strips[1] = last;
    EXPECT_FALSE(HoldsAll(tiff.Bytes())) << last.place << ", " << last.size;
  }
}

// A directory that was never written, or not to its end.
TEST(PlainTiff, CutFilesHoldNothing) {
  const std::vector<uint8_t> whole = Tiff().Bytes();
  const size_t last = whole.size() - 4; // of the offset of a page after this one
  for (size_t length = 0; length < last; ++length)
    EXPECT_FALSE(HoldsAll({whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)}))
        << length;
  EXPECT_FALSE(HoldsAll(std::vector<uint8_t>(300, 0)));
}
