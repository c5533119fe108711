#include "reduced_photograph.h"

#include "height_image.h"
#include "image_library.h"
#include "image_source.h"
#include "metadata.h"

#include <algorithm>
#include <cmath>

namespace limn {
namespace {

using vips::VImage;

// From this orientation tag on, width and height change places.
constexpr int FIRST_TURNED = 5;

VImage Resized(const VImage& image, const ReducedPhotograph& to) {
  return image.resize(
      static_cast<double>(to.width) / image.width(),
      VImage::option()->set("vscale", static_cast<double>(to.height) / image.height()));
}

VImage ProfileOf(const VImage& image) {
  VImage pixel = VImage::black(1, 1);
  const std::string_view profile = BytesOf(image, VIPS_META_ICC_NAME);
  if (!profile.empty())
    vips_image_set_blob_copy(pixel.get_image(), VIPS_META_ICC_NAME, profile.data(), profile.size());
  return pixel;
}

// A grey image as a plane of the reduction.
VImage ReducedChannel(const GreyImage& grey, const ReducedPhotograph& photograph,
                      const std::string& path) {
  CheckShape(grey, photograph.fullWidth, photograph.fullHeight, path);
  const VImage full =
      VImage::new_from_memory(const_cast<uint8_t*>(grey.pixels.data()), grey.pixels.size(),
                              grey.width, grey.height, 1, VIPS_FORMAT_UCHAR);
  return Resized(full, photograph).copy_memory();
}

void MeasurePhotograph(const std::string& path, ReducedPhotograph& photograph) {
  const VImage image = OpenImage(path);
  photograph.fullWidth = image.width();
  photograph.fullHeight = image.height();
  if (vips_image_get_orientation(image.get_image()) >= FIRST_TURNED)
    std::swap(photograph.fullWidth, photograph.fullHeight);
}

} // namespace

int SamplesEachWay(int shownWidth, int shownHeight, int fullWidth, int fullHeight) {
  return std::max(shownWidth, shownHeight) <= MOST_HALVED && 2 * shownWidth <= fullWidth &&
                 2 * shownHeight <= fullHeight
             ? 2
             : 1;
}

void FitReduction(ReducedPhotograph& photograph, int longestSide) {
  const double scale = std::min(1.0, static_cast<double>(longestSide) /
                                         std::max(photograph.fullWidth, photograph.fullHeight));
  photograph.width = std::max(1, static_cast<int>(std::lround(photograph.fullWidth * scale)));
  photograph.height = std::max(1, static_cast<int>(std::lround(photograph.fullHeight * scale)));
  photograph.samples = SamplesEachWay(photograph.width, photograph.height, photograph.fullWidth,
                                      photograph.fullHeight);
  photograph.width *= photograph.samples;
  photograph.height *= photograph.samples;
}

ReadReduction ReadReducedPhotograph(const std::string& path, const std::vector<GreyImage>& channels,
                                    int longestSide) {
  return Guarded(path, [&] {
    ReadReduction read;
    ReducedPhotograph& photograph = read.photograph;
    MeasurePhotograph(path, photograph);
    FitReduction(photograph, longestSide);
    const OpenedPhotograph opened =
        OpenPhotograph(path, ShrinkFor(std::max(photograph.fullWidth, photograph.fullHeight),
                                       std::max(photograph.width, photograph.height)));
    read.notices = opened.notices;
    read.metadata = ProfileOf(opened.metadata);
    VImage planes = Resized(opened.planes, photograph).copy_memory();
    for (const GreyImage& channel : channels)
      planes = planes.bandjoin(ReducedChannel(channel, photograph, path));
    photograph.numPlanes = planes.bands();
    photograph.pixels = DecodedPixels(planes);
    return read;
  });
}

} // namespace limn
