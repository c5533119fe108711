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
constexpr int MOST_CHUNKS = 10'000;
// Of a progressive JPEG. Its writers make ten or twenty.
constexpr int MOST_SCANS = 100;

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
  // The first place from `place` on that holds `value`; -1 when none does.
  int64_t Find(uint8_t value, int64_t place) {
    for (; At(place) >= 0; place = _start + _length) {
      const uint8_t* const from = _bytes + (place - _start);
      const void* const found =
          std::memchr(from, value, static_cast<size_t>(_start + _length - place));
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
    if (++numSegments > MOST_CHUNKS)
      throw Failure(ExitCode::BadInput, path + ": holds more than " + std::to_string(MOST_CHUNKS) +
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
  explicit TiffNumbers(int descriptor) : _descriptor(descriptor) {
    char start[4] = {};
    _isTiff = pread(descriptor, start, sizeof start, 0) == sizeof start &&
              (std::memcmp(start, "II", 2) == 0 || std::memcmp(start, "MM", 2) == 0);
    _isBigEndian = start[0] == 'M';
    _isLong = start[_isBigEndian ? 3 : 2] == '+';
  }
  bool IsTiff() const { return _isTiff; }
  bool IsLong() const { return _isLong; } // with 64-bit offsets
  // 0 beyond the file's end.
  uint64_t At(uint64_t place, int size) const {
    unsigned char bytes[8] = {};
    if (place > INT64_MAX - sizeof bytes ||
        pread(_descriptor, bytes, static_cast<size_t>(size), static_cast<off_t>(place)) != size)
      return 0;
    uint64_t number = 0;
    for (int i = 0; i < size; ++i)
      number = number << 8 | bytes[_isBigEndian ? i : size - 1 - i];
    return number;
  }

private:
  int _descriptor;
  bool _isTiff;
  bool _isBigEndian;
  bool _isLong;
};

// Where the pixels are, which the decoder checks against the image's size.
bool IsPlaceOfPixels(uint64_t tag) {
  return tag == 273 || tag == 279 || tag == 324 || tag == 325;
}

// No value of the first page, a profile or a text, may be longer than a photograph's are.
void CheckTiffValues(int descriptor, const std::string& path) {
  constexpr uint64_t MOST_VALUES = 32 << 20; // of whatever size, in one tag
  const TiffNumbers numbers(descriptor);
  if (!numbers.IsTiff())
    return;
  const bool isLong = numbers.IsLong();
  const uint64_t page = numbers.At(isLong ? 8 : 4, isLong ? 8 : 4);
  const uint64_t numTags = std::min<uint64_t>(numbers.At(page, isLong ? 8 : 2), UINT16_MAX);
  for (uint64_t i = 0; i < numTags; ++i) {
    const uint64_t entry = page + (isLong ? 8 + 20 * i : 2 + 12 * i);
    if (!IsPlaceOfPixels(numbers.At(entry, 2)) &&
        numbers.At(entry + 4, isLong ? 8 : 4) > MOST_VALUES)
      throw Failure(ExitCode::BadInput, path + ": holds more data beside its pixels than is read");
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
  CheckTiffValues(descriptor, path);
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
