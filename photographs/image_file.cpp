#include "image_file.h"

#include "colour_conversion.h"
#include "failure.h"
#include "image_library.h"
#include "image_source.h"
#include "metadata.h"

#include <algorithm>
#include <exception>
#include <utility>

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

template <class Component> std::vector<Component> Decoded(const VImage& image) {
  std::vector<Component> pixels(VIPS_IMAGE_SIZEOF_IMAGE(image.get_image()) / sizeof(Component));
  image.write(VImage::new_from_memory(pixels.data(), pixels.size() * sizeof(Component),
                                      image.width(), image.height(), image.bands(),
                                      image.format()));
  return pixels;
}

// As DecodedPixels, from the top down: the decoder goes on while rows are stored, in room that
// nobody has cleared before, and while `grown` is at work.
void GrowPixels(const VImage& image, std::vector<uint8_t>& pixels,
                const std::function<void()>& grown) {
  pixels.reserve(VIPS_IMAGE_SIZEOF_IMAGE(image.get_image()));
  ForEachRow(image, [&](int, const VipsPel* row) {
    pixels.insert(pixels.end(), row, row + VIPS_IMAGE_SIZEOF_LINE(image.get_image()));
    grown();
  });
}

// One plane of planes that are all the same.
template <class Component>
std::vector<Component> NeutralPlane(std::vector<Component> pixels, size_t numPlanes,
                                    const std::string& path) {
  if (numPlanes == 1)
    return pixels;
  std::vector<Component> plane(pixels.size() / numPlanes);
  for (size_t i = 0; i < plane.size(); ++i) {
    const Component* pixel = pixels.data() + i * numPlanes;
    if (pixel[1] != pixel[0] || pixel[2] != pixel[0])
      throw Failure(ExitCode::BadInput, path + ": is coloured where a grey image is needed");
    plane[i] = pixel[0];
  }
  return plane;
}

} // namespace

void ForEachRow(const VImage& image, const std::function<void(int y, const VipsPel* row)>& take) {
  struct Taking {
    const std::function<void(int, const VipsPel*)>& take;
    std::exception_ptr failure;
  } taking{take, nullptr};
  const auto takeRows = [](VipsRegion* region, VipsRect* rows, void* user) {
    auto& self = *static_cast<Taking*>(user);
    try {
      for (int y = rows->top; y < rows->top + rows->height; ++y)
        self.take(y, VIPS_REGION_ADDR(region, 0, y));
      return 0;
    } catch (...) { // not through libvips, which is C
      self.failure = std::current_exception();
      return -1;
    }
  };
  const int result = vips_sink_disc(image.get_image(), takeRows, &taking);
  if (taking.failure != nullptr)
    std::rethrow_exception(taking.failure);
  if (result != 0)
    throw vips::VError();
}

std::vector<uint8_t> DecodedPixels(const VImage& image) {
  return Decoded<uint8_t>(image);
}

VImage PlanesOf(Photograph& photograph) {
  std::vector<uint8_t>& samples =
      photograph.depth == VIPS_FORMAT_UCHAR ? photograph.pixels : photograph.deep;
  return VImage::new_from_memory(samples.data(), samples.size(), photograph.width,
                                 photograph.height, photograph.numPlanes, photograph.depth)
      .copy(VImage::option()->set("interpretation", SpaceOf(photograph.depth)));
}

VImage InBytes(const VImage& planes) {
  std::vector<std::string> notices; // nothing is lost that the samples do not keep
  return ToRgbPlanes(planes, VIPS_FORMAT_UCHAR, notices);
}

GreyImage GreyOfWords(std::string file, int width, int height, std::vector<uint16_t> words) {
  GreyImage grey{std::move(file), width, height, {}, std::move(words)};
  grey.pixels.reserve(grey.words.size());
  for (const uint16_t word : grey.words)
    grey.pixels.push_back(static_cast<uint8_t>(word >> 8));
  return grey;
}

std::string DepthNotice(int before, int after) {
  return std::to_string(before) + " bits a channel become " + std::to_string(after);
}

OpenedPhotograph OpenPhotograph(const std::string& path, int shrink, VipsBandFormat depth,
                                VipsBandFormat most) {
  OpenedPhotograph opened;
  const VImage image = OpenImage(path, shrink);
  opened.numBits = NumBits(image);
  NotePages(image, opened.notices);
  if (depth == VIPS_FORMAT_NOTSET)
    depth = std::min(DepthOf(image), most);
  // Turned as it is, since so much memory it was allowed.
  opened.planes = ToRgbPlanes(Upright(image), depth, opened.notices);
  opened.metadata = CopyMetadata(opened.planes, opened.notices);
  return opened;
}

Photograph ReadPhotograph(const std::string& path, VipsBandFormat most,
                          const RowsArrived& arrived) {
  return Guarded(ShownName(path), [&] {
    OpenedPhotograph opened = OpenPhotograph(path, 1, VIPS_FORMAT_NOTSET, most);
    Photograph photograph;
    photograph.metadata = opened.metadata;
    photograph.notices = std::move(opened.notices);
    const int numBits = NumBits(opened.planes.format());
    if (opened.numBits > numBits)
      photograph.notices.push_back(DepthNotice(opened.numBits, numBits));
    photograph.numPlanes = opened.planes.bands();
    photograph.width = opened.planes.width();
    photograph.height = opened.planes.height();
    photograph.depth = opened.planes.format();
    const bool isDeep = photograph.depth != VIPS_FORMAT_UCHAR;
    if (isDeep)
      GrowPixels(opened.planes, photograph.deep, [] {});
    GrowPixels(isDeep ? InBytes(PlanesOf(photograph)) : opened.planes, photograph.pixels, [&] {
      if (arrived)
        arrived(photograph);
    });
    return photograph;
  });
}

GreyImage ReadGreyImage(const std::string& path) {
  return Guarded(ShownName(path), [&] {
    const VImage image = OpenImage(path);
    const bool isDeep = image.format() != VIPS_FORMAT_UCHAR;
    const VImage planes =
        ToPlainPlanes(Upright(image), isDeep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
    if (planes.bands() == 4)
      throw Failure(ExitCode::BadInput, path + ": is a CMYK image where a grey one is needed");
    const auto numPlanes = static_cast<size_t>(planes.bands());
    if (isDeep)
      return GreyOfWords(path, planes.width(), planes.height(),
                         NeutralPlane(Decoded<uint16_t>(planes), numPlanes, path));
    return GreyImage{path,
                     planes.width(),
                     planes.height(),
                     NeutralPlane(DecodedPixels(planes), numPlanes, path),
                     {}};
  });
}

GreyImage ReadMask(const std::string& path) {
  GreyImage mask = ReadGreyImage(path);
  for (size_t i = 0; i < mask.words.size(); ++i)
    mask.pixels[i] = static_cast<uint8_t>((mask.words[i] + 128) / 257);
  mask.words = {};
  return mask;
}

int CountPlanes(const std::string& path) {
  return Guarded(ShownName(path), [&] {
    const VImage image = OpenImage(path);
    return 3 + image.bands() - NumColourBands(image);
  });
}

} // namespace limn
