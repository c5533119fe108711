#include "format_limits.h"

#include <algorithm>
#include <iterator>

namespace limn {
namespace {

// Its decoder goes over all unknown tags of a page for each new one.
constexpr uint64_t MOST_TAGS_A_PAGE = 300;
constexpr uint64_t MOST_TAGS = 20'000;
// How many pixels tiles may hold beside the image.
constexpr uint64_t MOST_PADDING = 64'000'000;

// A TIFF's numbers, in the byte order that it begins with.
class TiffNumbers {
public:
  explicit TiffNumbers(FileBytes& bytes) : _bytes(bytes) {
    const int first = bytes.At(0);
    _order = first == 'M' ? std::endian::big : std::endian::little;
    _isTiff = (first == 'I' || first == 'M') && bytes.At(1) == first;
    _isLong = At(2, 2) == '+';
  }
  bool IsTiff() const { return _isTiff; }
  uint64_t OffsetSize() const { return _isLong ? 8 : 4; }
  uint64_t CountSize() const { return _isLong ? 8 : 2; } // of how many tags a page has
  uint64_t TagSize() const { return _isLong ? 20 : 12; }
  uint64_t At(uint64_t place, uint64_t size) {
    return _bytes.Number(static_cast<int64_t>(place), static_cast<int>(size), _order);
  }

private:
  FileBytes& _bytes;
  std::endian _order;
  bool _isTiff;
  bool _isLong;
};

// One tag of a page: `count` values of `size` bytes from `place` on.
struct TiffTag {
  uint64_t id, size, count, place;
};

// By type: those of whole numbers, with a sign too, all of which the decoder takes for a side.
constexpr uint8_t SIZES[] = {0, 1, 0, 2, 4, 0, 1, 0, 2, 4, 0, 0, 0, 4, 0, 0, 8, 8, 8};

TiffTag TagAt(TiffNumbers& numbers, uint64_t entry) {
  const uint64_t width = numbers.OffsetSize();
  const uint64_t type = numbers.At(entry + 2, 2);
  TiffTag tag{numbers.At(entry, 2), 0, numbers.At(entry + 4, width), entry + 4 + width};
  if (type < std::size(SIZES))
    tag.size = SIZES[type];
  if (tag.count > width || tag.size * tag.count > width)
    tag.place = numbers.At(tag.place, width);
  return tag;
}

uint64_t PaddedTo(uint64_t side, uint64_t piece) {
  return piece == 0 ? side : (side + piece - 1) / piece * piece;
}

// The first page's tags. No profile or text may be longer than a photograph's are; its strips or
// tiles may not be the same bytes over and over, and tiles not reach far beyond the image. Floats
// that the decoder does not know are refused by their name.
void CheckValues(FileBytes& bytes, TiffNumbers& numbers, uint64_t tags, uint64_t numTags) {
  const auto fileLength = static_cast<uint64_t>(bytes.Length());
  constexpr uint64_t MOST_VALUES = 32 << 20; // of whatever size, in one tag
  uint64_t width = 0, height = 0, tileWidth = 0, tileHeight = 0, numBytes = 0;
  uint64_t bits = 0, sampleFormat = 0; // of the first channel; the decoder wants the others alike
  bool isCounted[2] = {};
  for (uint64_t i = 0; i < numTags; ++i) {
    const TiffTag tag = TagAt(numbers, tags + numbers.TagSize() * i);
    // Of tags with the same number, the decoder takes the first.
    const auto read = [&](uint64_t& value) {
      if (value == 0)
        value = std::min<uint64_t>(numbers.At(tag.place, tag.size), 1U << 30);
    };
    switch (tag.id) {
    case 273: // where the pixels are: the decoder checks these against the image's size
    case 324:
      continue;
    case 279: // and how many bytes they take: of strips and tiles, either of which may count
    case 325:
      for (uint64_t k = 0;
           !isCounted[tag.id == 325] && k < tag.count && tag.size > 0 &&
           tag.place + k * tag.size < fileLength && numBytes / MOST_REPEATS <= fileLength;
           ++k)
        numBytes += std::min(numbers.At(tag.place + k * tag.size, tag.size), fileLength);
      isCounted[tag.id == 325] = true;
      continue;
    case 256:
      read(width);
      break;
    case 257:
      read(height);
      break;
    case 258:
      read(bits);
      break;
    case 339:
      read(sampleFormat);
      break;
    case 322:
      read(tileWidth);
      break;
    case 323:
      read(tileHeight);
      break;
    default:
      break;
    }
    if (tag.count > MOST_VALUES)
      bytes.Refuse("holds more data beside its pixels than is read");
  }
  constexpr uint64_t FLOATS = 3, FLOAT_BITS = 32;
  if (sampleFormat == FLOATS && bits != FLOAT_BITS)
    bytes.Refuse("has floats of " + std::to_string(bits) + " bits, and only those of 32 are read");
  if (numBytes / MOST_REPEATS > fileLength)
    bytes.Refuse("decodes the same bytes again and again");
  const uint64_t rows = PaddedTo(height, tileHeight);
  if (rows > 0 && PaddedTo(width, tileWidth) > (MOST_PADDING + 4 * width * height) / rows)
    bytes.Refuse("has tiles that reach far beyond its pixels");
}

} // namespace

// All pages are counted, by reading their tags.
void CheckTiff(FileBytes& bytes) {
  constexpr uint64_t MOST_DECODED = 4096; // a page with more ends the decoder's reading
  TiffNumbers numbers(bytes);
  const uint64_t width = numbers.OffsetSize();
  const uint64_t head = numbers.CountSize();
  uint64_t allTags = 0;
  for (uint64_t page = numbers.At(width, width); page != 0;) {
    const uint64_t numTags = numbers.At(page, head);
    if (numTags == 0 || numTags > MOST_DECODED)
      return;
    const bool isFirst = allTags == 0;
    allTags += numTags;
    if (numTags > MOST_TAGS_A_PAGE || allTags > MOST_TAGS)
      bytes.Refuse("holds more tags than a photograph does");
    if (isFirst)
      CheckValues(bytes, numbers, page + head, numTags);
    page = numbers.At(page + head + numbers.TagSize() * numTags, width);
  }
}

bool HoldsPlainPixels(FileBytes& bytes, uint64_t size) {
  constexpr uint64_t NO_COMPRESSION = 1;
  TiffNumbers numbers(bytes);
  if (!numbers.IsTiff())
    return false;
  const auto length = static_cast<uint64_t>(bytes.Length());
  const uint64_t page = numbers.At(numbers.OffsetSize(), numbers.OffsetSize());
  const uint64_t numTags = std::min(numbers.At(page, numbers.CountSize()), MOST_TAGS_A_PAGE);
  bool isPlain = false;
  TiffTag places = {}, sizes = {};
  for (uint64_t i = 0; i < numTags; ++i) {
    const TiffTag tag = TagAt(numbers, page + numbers.CountSize() + numbers.TagSize() * i);
    if (tag.id == 259)
      isPlain = numbers.At(tag.place, tag.size) == NO_COMPRESSION;
    else if (tag.id == 273 || tag.id == 324)
      places = tag;
    else if (tag.id == 279 || tag.id == 325)
      sizes = tag;
  }
  uint64_t held = 0;
  for (uint64_t k = 0; isPlain && k < std::min({places.count, sizes.count, length}); ++k) {
    const uint64_t place = numbers.At(places.place + k * places.size, places.size);
    const uint64_t bytesHere = numbers.At(sizes.place + k * sizes.size, sizes.size);
    if (place > length || bytesHere > length - place)
      return false;
    held += bytesHere;
  }
  return isPlain && held >= size;
}

} // namespace limn
