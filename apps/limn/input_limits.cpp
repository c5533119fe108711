#include "input_limits.h"

#include "failure.h"
#include "image_file.h"
#include "image_library.h"

#include <algorithm>
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

// The decoder gives up a text at 8 MB; deflated text grows at most 1032-fold.
constexpr int64_t LONGEST_TEXT = 8'000'000;
constexpr int64_t DEFLATE_GROWTH = 1032;
constexpr int64_t MOST_TEXT = 100'000'000;
constexpr int MOST_CHUNKS = 10'000;

// What a PNG's chunk can fill with text.
int64_t TextOf(const char (&type)[4], int64_t length) {
  const auto is = [&](const char* name) { return std::memcmp(type, name, sizeof type) == 0; };
  const bool isDeflated = is("zTXt") || is("iTXt");
  if (!isDeflated && !is("tEXt") && !is("sPLT"))
    return 0;
  return std::min(LONGEST_TEXT, isDeflated ? length * DEFLATE_GROWTH : length);
}

// Adds up the texts in front of the pixels.
void CheckPngTexts(int descriptor, const std::string& path) {
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
    text += TextOf(chunk.type, length);
    if (text > MOST_TEXT || i == MOST_CHUNKS)
      throw Failure(ExitCode::BadInput, path + ": holds more text beside its pixels than is read");
    at += 12 + length;
  }
}

bool IsDecodedWhole(const vips::VImage& image, Decoding decoding) {
  return decoding == Decoding::Whole || image.get_typeof("interlaced") != 0 ||
         vips_image_get_orientation(image.get_image()) > 1;
}

} // namespace

void CheckContent(int descriptor, Decoding decoding, const std::string& path) {
  struct stat status {};
  if (decoding == Decoding::Whole && fstat(descriptor, &status) == 0 &&
      status.st_size > LONGEST_WHOLE_FILE)
    throw Failure(ExitCode::BadInput, path + ": is longer than " +
                                          std::to_string(LONGEST_WHOLE_FILE) +
                                          " bytes, the most of its format that is read");
  char start[4] = {};
  if (pread(descriptor, start, sizeof start, 0) == sizeof start &&
      std::memcmp(start, "\x89PNG", sizeof start) == 0)
    CheckPngTexts(descriptor, path);
}

void CheckPixels(const vips::VImage& image, int shrink, Decoding decoding, int64_t fileLength,
                 const std::string& path) {
  const std::string size = std::to_string(image.width()) + " × " + std::to_string(image.height());
  if (image.width() > LONGEST_SIDE || image.height() > LONGEST_SIDE)
    throw Failure(ExitCode::BadInput,
                  path + ": is " + size + " pixels, and no side may have more than 32767");
  const bool isWhole = IsDecodedWhole(image, decoding);
  const SizeLimit& limit = ImageSizeLimit();
  const uint64_t most = limit.pixels > 0 ? limit.pixels : isWhole ? MOST_PIXELS_WHOLE : MOST_PIXELS;
  const uint64_t pixels = uint64_t{static_cast<uint32_t>(image.width())} *
                          static_cast<uint32_t>(image.height()) *
                          static_cast<uint32_t>(shrink * shrink);
  if (pixels > most)
    throw Failure(ExitCode::BadInput, path + ": has " + std::to_string(pixels) + " pixels (" +
                                          size + "), more than the " + std::to_string(most) +
                                          " that are read" + limit.advice);
  if (limit.pixels == 0 && isWhole && pixels > LARGE &&
      pixels / MOST_PIXELS_A_BYTE > static_cast<uint64_t>(fileLength))
    throw Failure(ExitCode::BadInput, path + ": is " + size + " pixels in " +
                                          std::to_string(fileLength) +
                                          " bytes, as no photograph is" + limit.advice);
}

} // namespace limn
