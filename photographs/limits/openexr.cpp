#include "format_limits.h"

#include "limn.h"

#include <array>
#include <limits>
#include <string>

namespace limn {
namespace {

constexpr int LONGEST_NAME = 255;
constexpr int MOST_ATTRIBUTES = 1000;
constexpr int MOST_CHANNELS = 1000;
// Rows are packed in blocks, each of which is unpacked into memory with all of its channels.
constexpr uint64_t LARGEST_BLOCK = 256 << 20;
constexpr uint64_t UNKNOWN = std::numeric_limits<uint64_t>::max();

int32_t Integer(FileBytes& bytes, int64_t at) {
  return static_cast<int32_t>(static_cast<uint32_t>(bytes.Number(at, 4, std::endian::little)));
}

// The name that begins there, and the place after its end.
std::string NameAt(FileBytes& bytes, int64_t& at) {
  const int64_t end = bytes.Find('\0', at);
  if (end < 0 || end - at > LONGEST_NAME)
    bytes.Refuse("is cut short or damaged");
  std::string name;
  while (at < end)
    name.push_back(static_cast<char>(bytes.At(at++)));
  ++at;
  return name;
}

// Of a pixel with all of its channels.
uint64_t PixelSize(FileBytes& bytes, int64_t at) {
  constexpr int HALF = 1;
  constexpr int AFTER_TYPE = 8; // a flag with its padding, then how the channel is sampled
  uint64_t size = 0;
  for (int i = 0; i < MOST_CHANNELS; ++i) {
    if (NameAt(bytes, at).empty())
      return size;
    size += Integer(bytes, at) == HALF ? 2 : 4;
    if (Integer(bytes, at + AFTER_TYPE) < 1 || Integer(bytes, at + AFTER_TYPE + 4) < 1)
      break;
    at += AFTER_TYPE + 8;
  }
  bytes.Refuse("holds channels that are not read");
}

uint64_t RowsOfABlock(int compression) {
  constexpr std::array<uint64_t, 10> ROWS = {1, 1, 1, 16, 32, 16, 32, 32, 32, 256};
  const auto index = static_cast<size_t>(compression);
  return index < ROWS.size() ? ROWS[index] : ROWS.back();
}

// A side of the picture; the limits of its place keep sums of places in 32 bits.
uint64_t Side(FileBytes& bytes, int64_t at) {
  constexpr int64_t FARTHEST = 1 << 24;
  const int64_t first = Integer(bytes, at);
  const int64_t last = Integer(bytes, at + 8);
  if (first < -FARTHEST || last > FARTHEST || last < first || last - first >= LIMN_LONGEST_SIDE)
    bytes.Refuse("has no pixels, or more than " + std::to_string(LIMN_LONGEST_SIDE) +
                 " in a row or column, or they lie too far away");
  return static_cast<uint64_t>(last - first + 1);
}

} // namespace

// A magic number, a version with flags, and attributes: name, type, length, content.
void CheckOpenExr(FileBytes& bytes) {
  constexpr uint64_t PLAIN = 2; // the version
  constexpr uint64_t LONG_NAMES = 0x400;
  if ((bytes.Number(4, 4, std::endian::little) & ~LONG_NAMES) != PLAIN)
    bytes.Refuse("holds tiles, several parts or deep pixels, which are not read");
  uint64_t pixel = UNKNOWN;
  uint64_t width = UNKNOWN;
  uint64_t rows = UNKNOWN;
  int64_t at = 8;
  for (int i = 0; i < MOST_ATTRIBUTES; ++i) {
    const std::string name = NameAt(bytes, at);
    if (name.empty()) {
      if (pixel == UNKNOWN || width == UNKNOWN || rows == UNKNOWN)
        bytes.Refuse("does not say how large it is");
      if (pixel * width * rows > LARGEST_BLOCK)
        bytes.Refuse("packs too much into one piece");
      return;
    }
    NameAt(bytes, at); // of its type
    const int32_t length = Integer(bytes, at);
    at += 4;
    if (length < 0 || length > bytes.Length() - at)
      bytes.Refuse("is cut short or damaged");
    if (name == "channels")
      pixel = PixelSize(bytes, at);
    else if (name == "compression")
      rows = RowsOfABlock(bytes.At(at));
    else if (name == "dataWindow") {
      width = Side(bytes, at);
      Side(bytes, at + 4);
    }
    at += length;
  }
  bytes.Refuse("has too many attributes");
}

} // namespace limn
