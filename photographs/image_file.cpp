#include "image_file.h"

#include "colour_conversion.h"
#include "deep_photograph.h"
#include "failure.h"
#include "image_library.h"
#include "image_source.h"
#include "metadata.h"

#include <algorithm>

namespace limn {
namespace {

using vips::VImage;

// The way up that its orientation tag asks for. Turning reads the rows in another order than the
// decoder gives them, so a picture that has to be turned is decoded here.
VImage Upright(const VImage& image) {
  return vips_image_get_orientation(image.get_image()) > 1 ? image.copy_memory().autorot() : image;
}

void NotePages(const VImage& image, std::vector<std::string>& notices) {
  const int numPages = vips_image_get_n_pages(image.get_image());
  if (numPages > 1)
    notices.push_back("only the first of its " + std::to_string(numPages) + " pages is used");
}

// Runs `work`; whatever goes wrong inside, warnings included, becomes a failure about `name`.
template <typename Work> auto Guarded(const std::string& name, Work work) {
  const std::string path = ShownName(name);
  const Complaints complaints;
  try {
    auto result = work();
    complaints.Check(ExitCode::BadInput, path);
    return result;
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, path);
  }
}

// One plane of planes that are all the same.
std::vector<uint8_t> NeutralPlane(const std::vector<uint8_t>& pixels, size_t numPlanes,
                                  const std::string& path) {
  std::vector<uint8_t> plane(pixels.size() / numPlanes);
  for (size_t i = 0; i < plane.size(); ++i) {
    const uint8_t* pixel = pixels.data() + i * numPlanes;
    if (pixel[1] != pixel[0] || pixel[2] != pixel[0])
      throw Failure(ExitCode::BadInput, path + ": is coloured where a grey image is needed");
    plane[i] = pixel[0];
  }
  return plane;
}

} // namespace

std::vector<uint8_t> DecodedPixels(const VImage& image) {
  std::vector<uint8_t> pixels(VIPS_IMAGE_SIZEOF_IMAGE(image.get_image()));
  image.write(VImage::new_from_memory(pixels.data(), pixels.size(), image.width(), image.height(),
                                      image.bands(), image.format()));
  return pixels;
}

namespace {

std::vector<uint16_t> DecodedWords(const VImage& image) {
  std::vector<uint16_t> words(static_cast<size_t>(image.width()) * image.height());
  image.write(VImage::new_from_memory(words.data(), words.size() * sizeof words[0], image.width(),
                                      image.height(), 1, VIPS_FORMAT_USHORT));
  return words;
}

} // namespace

OpenedPhotograph OpenPhotograph(const std::string& path, int shrink, VipsBandFormat depth,
                                VipsBandFormat most) {
  OpenedPhotograph opened;
  const VImage image = OpenImage(path, shrink);
  NotePages(image, opened.notices);
  if (depth == VIPS_FORMAT_NOTSET)
    depth = std::min(DepthOf(image), most);
  const VImage planes = ToRgbPlanes(image, depth, opened.notices);
  opened.metadata = CopyMetadata(planes);
  opened.planes = Upright(planes);
  return opened;
}

Photograph ReadPhotograph(const std::string& path, VipsBandFormat most) {
  return Guarded(path, [&] {
    OpenedPhotograph opened = OpenPhotograph(path, 1, VIPS_FORMAT_NOTSET, most);
    Photograph photograph;
    photograph.metadata = opened.metadata;
    photograph.notices = std::move(opened.notices);
    photograph.numPlanes = opened.planes.bands();
    photograph.width = opened.planes.width();
    photograph.height = opened.planes.height();
    photograph.depth = opened.planes.format();
    const bool isDeep = photograph.depth != VIPS_FORMAT_UCHAR;
    (isDeep ? photograph.deep : photograph.pixels) = DecodedPixels(opened.planes);
    if (isDeep)
      photograph.pixels = DecodedPixels(InBytes(PlanesOf(photograph)));
    return photograph;
  });
}

GreyImage ReadGreyImage(const std::string& path) {
  return Guarded(path, [&] {
    VImage image = OpenImage(path);
    const bool isDeep = image.format() != VIPS_FORMAT_UCHAR;
    if (isDeep)
      image = image.copy_memory(); // for it is decoded twice
    const VImage planes = Upright(ToPlainPlanes(image, VIPS_FORMAT_UCHAR));
    if (planes.bands() == 4)
      throw Failure(ExitCode::BadInput, path + ": is a CMYK image where a grey one is needed");
    GreyImage grey;
    grey.file = path;
    grey.width = planes.width();
    grey.height = planes.height();
    grey.pixels = DecodedPixels(planes);
    if (planes.bands() == 3)
      grey.pixels = NeutralPlane(grey.pixels, 3, path);
    if (isDeep)
      grey.words = DecodedWords(Upright(ToPlainPlanes(image, VIPS_FORMAT_USHORT)).extract_band(0));
    return grey;
  });
}

int CountPlanes(const std::string& path) {
  return Guarded(path, [&] {
    const VImage image = OpenImage(path);
    return 3 + image.bands() - NumColourBands(image);
  });
}

} // namespace limn
