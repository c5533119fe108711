#include "input_limits.h"

#include "image_library.h"

#include "limn.h"

namespace limn {
namespace {

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

bool IsDecodedWhole(const vips::VImage& image, Decoding decoding) {
  return decoding != Decoding::ByRows || image.get_typeof("interlaced") != 0 ||
         vips_image_get_orientation(image.get_image()) > 1;
}

} // namespace

void CheckPixels(const vips::VImage& image, int shrink, Decoding decoding, const FileBytes& file) {
  std::string size = std::to_string(image.width()) + " × " + std::to_string(image.height());
  if (image.width() > LIMN_LONGEST_SIDE || image.height() > LIMN_LONGEST_SIDE)
    file.Refuse("is " + size + " pixels, and no side may have more than " +
                std::to_string(LIMN_LONGEST_SIDE));
  const bool isWhole = IsDecodedWhole(image, decoding);
  const SizeLimit& limit = ImageSizeLimit();
  const uint64_t most = limit.pixels > 0 ? limit.pixels : isWhole ? MOST_PIXELS_WHOLE : MOST_PIXELS;
  const uint64_t component = vips_format_sizeof(image.format());
  const auto bands = static_cast<uint64_t>(image.bands());
  const uint64_t counted = isWhole ? bands * component : bands;
  const uint64_t pixels = uint64_t{static_cast<uint32_t>(image.width())} *
                          static_cast<uint32_t>(image.height()) *
                          static_cast<uint32_t>(shrink * shrink) * ((counted + 3) / 4);
  if (bands > 4)
    size += " of " + std::to_string(bands) + " channels";
  if (isWhole && component > 1)
    size += " of " + std::to_string(8 * component) + " bits a channel";
  if (pixels > most)
    file.Refuse("has " + std::to_string(pixels) + " pixels (" + size + "), more than the " +
                std::to_string(most) + " that are read" + limit.advice);
  const uint64_t row = VIPS_IMAGE_SIZEOF_LINE(image.get_image());
  const auto length = static_cast<uint64_t>(file.Length());
  if (limit.pixels == 0 && ((isWhole && pixels > LARGE && pixels / MOST_PIXELS_A_BYTE > length) ||
                            (row > LONG_ROW && row / MOST_GROWTH * image.height() > length)))
    file.Refuse("is " + size + " pixels in " + std::to_string(length) +
                " bytes, as no photograph is" + limit.advice);
}

} // namespace limn
