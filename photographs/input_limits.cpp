#include "input_limits.h"

#include "failure.h"
#include "image_file.h"
#include "image_library.h"
#include "posix_file.h"

#include "limn.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace limn {
namespace {

constexpr int64_t LONGEST_WHOLE_FILE = 128 << 20;
// In the default limits: what passes row by row takes little memory, what is decoded whole four
// bytes a pixel.
constexpr uint64_t MOST_PIXELS = 1'000'000'000;
constexpr uint64_t MOST_PIXELS_WHOLE = 250'000'000;
// A file that is decoded whole and is larger than this has to be long enough for a photograph.
constexpr uint64_t LARGE = 40'000'000;
constexpr uint64_t MOST_PIXELS_A_BYTE = 500;
// So has what passes row by row, hundreds of rows at a time, when a row is longer than this.
constexpr uint64_t LONG_ROW = 250'000;
constexpr uint64_t MOST_GROWTH = 500;

// The decoder gives up a text at 8 MB; deflated text grows at most 1032-fold.
constexpr int64_t LONGEST_TEXT = 8'000'000;
constexpr int64_t DEFLATE_GROWTH = 1032;
constexpr int64_t MOST_TEXT = 100'000'000;
// Of a PNG, and what an animated WebP is made of.
constexpr int MOST_CHUNKS = 10'000;
// Of a JPEG. The largest profile takes 255, scans of a progressive one ten or twenty.
constexpr int MOST_SEGMENTS = 2'000;
constexpr int MOST_SCANS = 100;
// Of a TIFF. Its decoder goes over all unknown tags of a page for each new one.
constexpr uint64_t MOST_TAGS_A_PAGE = 300;
constexpr uint64_t MOST_TAGS = 20'000;
// How often the same bytes may be decoded again, and how many pixels beside the image.
constexpr uint64_t MOST_REPEATS = 10;
constexpr uint64_t MOST_PADDING = 64'000'000;

// What a PNG's chunk can fill with text.
int64_t TextOf(const char (&type)[4], int64_t length) {
  const auto is = [&](const char* name) { return std::memcmp(type, name, sizeof type) == 0; };
  const bool isDeflated = is("zTXt") || is("iTXt");
  if (!isDeflated && !is("tEXt") && !is("sPLT"))
    return 0;
  return std::min(LONGEST_TEXT, isDeflated ? length * DEFLATE_GROWTH : length);
}

// Adds up the texts in front of the pixels. A chunk that claims more than there is would be given
// the memory that it claims.
void CheckPngTexts(int descriptor, int64_t fileLength, const std::string& path) {
  struct {
    unsigned char length[4];
    char type[4];
  } chunk;
  int64_t text = 0;
  off_t at = 8;
  for (int i = 0; pread(descriptor, &chunk, sizeof chunk, at) == sizeof chunk; ++i) {
    const int64_t length = int64_t{chunk.length[0]} << 24 | chunk.length[1] << 16 |
                           chunk.length[2] << 8 | chunk.length[3];
    if (std::memcmp(chunk.type, "IDAT", sizeof chunk.type) == 0)
      return;
    if (length > fileLength - at)
      throw Failure(ExitCode::BadInput, path + ": ends before its pixels");
    text += TextOf(chunk.type, length);
    if (text > MOST_TEXT || i == MOST_CHUNKS)
      throw Failure(ExitCode::BadInput, path + ": holds more text beside its pixels than is read");
    at += 12 + length;
  }
}

// A file's bytes, read in large pieces.
class FileBytes {
public:
  explicit FileBytes(int descriptor) : _descriptor(descriptor) {}
  // -1 after the file's end.
  int At(int64_t place) {
    if (place < _start || place >= _start + _length)
      _Read(place);
    return place < _start + _length ? _bytes[place - _start] : -1;
  }
  // The first place from `place` on, and before `end`, that holds `value`; -1 when none does.
  int64_t Find(uint8_t value, int64_t place, int64_t end = INT64_MAX) {
    for (; place < end && At(place) >= 0; place = _start + _length) {
      const uint8_t* const from = _bytes + (place - _start);
      const void* const found =
          std::memchr(from, value, static_cast<size_t>(std::min(end, _start + _length) - place));
      if (found != nullptr)
        return place + (static_cast<const uint8_t*>(found) - from);
    }
    return -1;
  }

private:
  void _Read(int64_t place) {
    const ssize_t got = Uninterrupted(
        [&] { return pread(_descriptor, _bytes, sizeof _bytes, static_cast<off_t>(place)); });
    _start = place;
    _length = std::max<ssize_t>(got, 0);
  }

  int _descriptor;
  int64_t _start = 0;
  int64_t _length = 0;
  uint8_t _bytes[64 << 10];
};

// Counts the segments, beside the pixels and between their scans. The decoder looks through all
// earlier segments for each new one, and goes over the whole picture for each scan.
void CheckJpegSegments(int descriptor, const std::string& path) {
  constexpr int END_OF_IMAGE = 0xd9;
  constexpr int START_OF_SCAN = 0xda;
  FileBytes bytes(descriptor);
  int numSegments = 0;
  int numScans = 0;
  for (int64_t at = bytes.Find(0xff, 2); at >= 0; at = bytes.Find(0xff, at)) {
    const int marker = bytes.At(++at);
    if (marker < 0 || marker == END_OF_IMAGE)
      return;
    if (marker == 0xff) // one that fills, before the marker
      continue;
    ++at;
    if (marker <= 1 || (marker >= 0xd0 && marker < END_OF_IMAGE)) // pixels, or a mark among them
      continue;
    if (++numSegments > MOST_SEGMENTS)
      throw Failure(ExitCode::BadInput, path + ": holds more than " +
                                            std::to_string(MOST_SEGMENTS) +
                                            " segments, as no photograph does");
    if (marker == START_OF_SCAN && ++numScans > MOST_SCANS)
      throw Failure(ExitCode::BadInput, path + ": holds its pixels in more than " +
                                            std::to_string(MOST_SCANS) +
                                            " scans, as no photograph does");
    at += std::max(2, bytes.At(at) << 8 | bytes.At(at + 1));
  }
}

// A TIFF's numbers, in the byte order that it begins with.
class TiffNumbers {
public:
  explicit TiffNumbers(int descriptor) : _bytes(descriptor) {
    const int first = _bytes.At(0);
    _isBigEndian = first == 'M';
    _isLong = _bytes.At(_isBigEndian ? 3 : 2) == '+';
    _isTiff = (first == 'I' || first == 'M') && _bytes.At(1) == first;
  }
  bool IsTiff() const { return _isTiff; }
  bool IsLong() const { return _isLong; } // with 64-bit offsets
  // 0 beyond the file's end.
  uint64_t At(uint64_t place, uint64_t size) {
    uint64_t number = 0;
    for (uint64_t i = 0; i < size; ++i) {
      const uint64_t at = place + (_isBigEndian ? i : size - 1 - i);
      const int byte = at < uint64_t{1} << 62 ? _bytes.At(static_cast<int64_t>(at)) : -1;
      if (byte < 0)
        return 0;
      number = number << 8 | static_cast<uint64_t>(byte);
    }
    return number;
  }

private:
  FileBytes _bytes;
  bool _isTiff;
  bool _isBigEndian;
  bool _isLong;
};

// One tag of a page: `count` values of `size` bytes from `place` on.
struct TiffTag {
  uint64_t id, size, count, place;
};

TiffTag TagAt(TiffNumbers& numbers, uint64_t entry) {
  const uint64_t width = numbers.IsLong() ? 8 : 4;
  const uint64_t type = numbers.At(entry + 2, 2);
  TiffTag tag{numbers.At(entry, 2), 0, numbers.At(entry + 4, width), entry + 4 + width};
  tag.size = type == 1 ? 1 : type == 3 ? 2 : type == 4 ? 4 : type == 16 ? 8 : 0;
  if (tag.count > width || tag.size * tag.count > width)
    tag.place = numbers.At(tag.place, width);
  return tag;
}

uint64_t PaddedTo(uint64_t side, uint64_t piece) {
  return piece == 0 ? side : (side + piece - 1) / piece * piece;
}

// The first page's tags. No profile or text may be longer than a photograph's are; its strips or
// tiles may not be the same bytes over and over, and tiles not reach far beyond the image.
void CheckTiffValues(TiffNumbers& numbers, uint64_t tags, uint64_t numTags, uint64_t fileLength,
                     const std::string& path) {
  constexpr uint64_t MOST_VALUES = 32 << 20; // of whatever size, in one tag
  uint64_t width = 0, height = 0, tileWidth = 0, tileHeight = 0, numBytes = 0;
  bool isCounted = false; // the decoder takes the first of such tags alone
  for (uint64_t i = 0; i < numTags; ++i) {
    const TiffTag tag = TagAt(numbers, tags + (numbers.IsLong() ? 20 : 12) * i);
    const auto value = [&] {
      return std::min<uint64_t>(numbers.At(tag.place, tag.size), 1U << 30);
    };
    switch (tag.id) {
    case 273: // where the pixels are: the decoder checks these against the image's size
    case 324:
      continue;
    case 279: // and how many bytes they take
    case 325:
      for (uint64_t k = 0;
           !isCounted && k < tag.count && tag.size > 0 && tag.place + k * tag.size < fileLength &&
           numBytes / MOST_REPEATS <= fileLength;
           ++k)
        numBytes += std::min(numbers.At(tag.place + k * tag.size, tag.size), fileLength);
      isCounted = true;
      continue;
    case 256:
      width = value();
      break;
    case 257:
      height = value();
      break;
    case 322:
      tileWidth = value();
      break;
    case 323:
      tileHeight = value();
      break;
    default:
      break;
    }
    if (tag.count > MOST_VALUES)
      throw Failure(ExitCode::BadInput, path + ": holds more data beside its pixels than is read");
  }
  if (numBytes / MOST_REPEATS > fileLength)
    throw Failure(ExitCode::BadInput, path + ": decodes the same bytes again and again");
  const uint64_t rows = PaddedTo(height, tileHeight);
  if (rows > 0 && PaddedTo(width, tileWidth) > (MOST_PADDING + 4 * width * height) / rows)
    throw Failure(ExitCode::BadInput, path + ": has tiles that reach far beyond its pixels");
}

// All pages are counted, by reading their tags.
void CheckTiff(int descriptor, uint64_t fileLength, const std::string& path) {
  constexpr uint64_t MOST_DECODED = 4096; // a page with more ends the decoder's reading
  TiffNumbers numbers(descriptor);
  if (!numbers.IsTiff())
    return;
  const uint64_t width = numbers.IsLong() ? 8 : 4;
  const uint64_t head = numbers.IsLong() ? 8 : 2;
  uint64_t allTags = 0;
  for (uint64_t page = numbers.At(width, width); page != 0;) {
    const uint64_t numTags = numbers.At(page, head);
    if (numTags == 0 || numTags > MOST_DECODED)
      return;
    const bool isFirst = allTags == 0;
    allTags += numTags;
    if (numTags > MOST_TAGS_A_PAGE || allTags > MOST_TAGS)
      throw Failure(ExitCode::BadInput, path + ": holds more tags than a photograph does");
    if (isFirst)
      CheckTiffValues(numbers, page + head, numTags, fileLength, path);
    page = numbers.At(page + head + (numbers.IsLong() ? 20 : 12) * numTags, width);
  }
}

// A RIFF's chunks are counted. The decoder looks through all earlier frames for each one.
void CheckWebpChunks(int descriptor, const std::string& path) {
  FileBytes bytes(descriptor);
  int numChunks = 0;
  for (int64_t at = 12; bytes.At(at + 7) >= 0; ++numChunks) {
    if (numChunks == MOST_CHUNKS)
      throw Failure(ExitCode::BadInput, path + ": holds more than " + std::to_string(MOST_CHUNKS) +
                                            " chunks, as no photograph does");
    const int64_t length = bytes.At(at + 4) | bytes.At(at + 5) << 8 | bytes.At(at + 6) << 16 |
                           int64_t{bytes.At(at + 7)} << 24;
    at += 8 + length + (length & 1);
  }
}

// Overlays may be made of overlays, so that a few of them decode one image a million times.
void CheckHeifItems(int descriptor, const std::string& path) {
  FileBytes bytes(descriptor);
  const auto isType = [&](const char* type, int64_t at) {
    for (int i = 0; i < 4; ++i)
      if (bytes.At(at + i) != type[i])
        return false;
    return true;
  };
  for (int64_t at = 0; bytes.At(at + 7) >= 0;) {
    const int64_t length = int64_t{bytes.At(at)} << 24 | bytes.At(at + 1) << 16 |
                           bytes.At(at + 2) << 8 | bytes.At(at + 3);
    const int64_t end = at + length;
    if (isType("meta", at + 4))
      for (int64_t item = bytes.Find('i', at, end); item >= 0;
           item = bytes.Find('i', item + 1, end))
        if (isType("infe", item) && (isType("iovl", item + 12) || isType("iovl", item + 14)))
          throw Failure(ExitCode::BadInput,
                        path + ": lays images over each other, which is not read");
    if (length < 8) // pixels to the end of the file, or more of them than 4 GB
      return;
    at = end;
  }
}

bool IsDecodedWhole(const vips::VImage& image, Decoding decoding) {
  return decoding == Decoding::Whole || image.get_typeof("interlaced") != 0 ||
         vips_image_get_orientation(image.get_image()) > 1;
}

} // namespace

void CheckContent(int descriptor, Decoding decoding, const std::string& path) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0)
    throw Failure(ExitCode::BadInput, path + ": " + SystemReason(errno));
  if (decoding == Decoding::Whole && status.st_size > LONGEST_WHOLE_FILE)
    throw Failure(ExitCode::BadInput, path + ": is longer than " +
                                          std::to_string(LONGEST_WHOLE_FILE) +
                                          " bytes, the most of its format that is read");
  char start[4] = {};
  if (pread(descriptor, start, sizeof start, 0) == sizeof start &&
      std::memcmp(start, "\x89PNG", sizeof start) == 0)
    CheckPngTexts(descriptor, status.st_size, path);
  if (std::memcmp(start, "\xff\xd8", 2) == 0)
    CheckJpegSegments(descriptor, path);
  if (std::memcmp(start, "RIFF", sizeof start) == 0)
    CheckWebpChunks(descriptor, path);
  else if (decoding == Decoding::Whole)
    CheckHeifItems(descriptor, path);
  CheckTiff(descriptor, static_cast<uint64_t>(status.st_size), path);
}

void CheckPixels(const vips::VImage& image, int shrink, Decoding decoding, int64_t fileLength,
                 const std::string& path) {
  std::string size = std::to_string(image.width()) + " × " + std::to_string(image.height());
  if (image.width() > LIMN_LONGEST_SIDE || image.height() > LIMN_LONGEST_SIDE)
    throw Failure(ExitCode::BadInput, path + ": is " + size +
                                          " pixels, and no side may have more than " +
                                          std::to_string(LIMN_LONGEST_SIDE));
  const bool isWhole = IsDecodedWhole(image, decoding);
  const SizeLimit& limit = ImageSizeLimit();
  const uint64_t most = limit.pixels > 0 ? limit.pixels : isWhole ? MOST_PIXELS_WHOLE : MOST_PIXELS;
  // Every four channels count as a pixel.
  const auto bands = static_cast<uint64_t>(image.bands());
  const uint64_t pixels = uint64_t{static_cast<uint32_t>(image.width())} *
                          static_cast<uint32_t>(image.height()) *
                          static_cast<uint32_t>(shrink * shrink) * ((bands + 3) / 4);
  if (bands > 4)
    size += " of " + std::to_string(bands) + " channels";
  if (pixels > most)
    throw Failure(ExitCode::BadInput, path + ": has " + std::to_string(pixels) + " pixels (" +
                                          size + "), more than the " + std::to_string(most) +
                                          " that are read" + limit.advice);
  const uint64_t row = VIPS_IMAGE_SIZEOF_LINE(image.get_image());
  const auto length = static_cast<uint64_t>(fileLength);
  if (limit.pixels == 0 && ((isWhole && pixels > LARGE && pixels / MOST_PIXELS_A_BYTE > length) ||
                            (row > LONG_ROW && row / MOST_GROWTH * image.height() > length)))
    throw Failure(ExitCode::BadInput, path + ": is " + size + " pixels in " +
                                          std::to_string(fileLength) +
                                          " bytes, as no photograph is" + limit.advice);
}

} // namespace limn
