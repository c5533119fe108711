#include "ImageLevels.h"

#include "halving.h"

#include <algorithm>
#include <cmath>

namespace editor {

using vips::VImage;

namespace {

constexpr int SMALLEST_LEVEL = 64;

// In memory, its pixels still to be made.
VImage NewLevel(int width, int height, int bands) {
  VImage level(vips_image_new_memory());
  vips_image_init_fields(level.get_image(), width, height, bands, VIPS_FORMAT_UCHAR,
                         VIPS_CODING_NONE, VIPS_INTERPRETATION_sRGB, 1, 1);
  if (vips_image_write_prepare(level.get_image()) != 0)
    throw vips::VError();
  return level;
}

} // namespace

static QSize SizeOf(const VImage& image) {
  return {image.width(), image.height()};
}

QRect Reduced(const QRect& area, QSize from, QSize to) {
  const auto place = [](int at, int full, int reduced) {
    return static_cast<int>(std::lround(static_cast<double>(at) * reduced / full));
  };
  const int left = std::min(place(area.x(), from.width(), to.width()), to.width() - 1);
  const int top = std::min(place(area.y(), from.height(), to.height()), to.height() - 1);
  const int right = place(area.x() + area.width(), from.width(), to.width());
  const int bottom = place(area.y() + area.height(), from.height(), to.height());
  return {left, top, std::max(1, right - left), std::max(1, bottom - top)};
}

VImage Resized(const VImage& image, QSize size) {
  if (image.width() == size.width() && image.height() == size.height())
    return image;
  return image.resize(
      static_cast<double>(size.width()) / image.width(),
      VImage::option()->set("vscale", static_cast<double>(size.height()) / image.height()));
}

void ImageHalves::grow(const limn::Photograph& photograph) {
  if (photograph.pixels.empty())
    return;
  const auto bands = static_cast<size_t>(photograph.numPlanes);
  int width = photograph.width;
  int height = photograph.height;
  if (_halves.empty())
    for (int w = width, h = height; std::max(w, h) > SMALLEST_LEVEL;) {
      w = (w + 1) / 2;
      h = (h + 1) / 2;
      _halves.push_back({NewLevel(w, h, photograph.numPlanes), 0});
    }
  const uint8_t* from = photograph.pixels.data();
  size_t rowBytes = static_cast<size_t>(width) * bands;
  auto rows = static_cast<int>(photograph.pixels.size() / rowBytes);
  for (Half& half : _halves) {
    VipsImage* const into = half.image.get_image();
    const int ready = rows == height ? into->Ysize : rows / 2;
    for (int& y = half.rows; y < ready; ++y) {
      const uint8_t* const above = from + 2 * static_cast<size_t>(y) * rowBytes;
      limn::HalveRow(above, 2 * y + 1 < height ? above + rowBytes : above,
                     static_cast<size_t>(width), bands, VIPS_IMAGE_ADDR(into, 0, y));
    }
    from = VIPS_IMAGE_ADDR(into, 0, 0);
    rows = ready;
    width = into->Xsize;
    height = into->Ysize;
    rowBytes = VIPS_IMAGE_SIZEOF_LINE(into);
  }
}

ImageLevels::ImageLevels(const limn::Photograph& photograph, ImageHalves halves) {
  halves.grow(photograph);
  // libvips only reads them.
  _levels.push_back(VImage::new_from_memory(const_cast<uint8_t*>(photograph.pixels.data()),
                                            photograph.pixels.size(), photograph.width,
                                            photograph.height, photograph.numPlanes,
                                            VIPS_FORMAT_UCHAR)
                        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB)));
  for (ImageHalves::Half& half : halves._halves)
    _levels.push_back(half.image);
}

VImage ImageLevels::at(QSize size) const {
  return part(QRect(QPoint(0, 0), SizeOf(_levels.front())), size);
}

VImage ImageLevels::part(const QRect& area, QSize size) const {
  const QSize whole = SizeOf(_levels.front());
  const double shareX = static_cast<double>(size.width()) / area.width();
  const double shareY = static_cast<double>(size.height()) / area.height();
  // The smallest level that is not smaller than that share of the picture.
  auto level = _levels.begin();
  constexpr double SLACK = 1e-6; // shares are rounded
  while (level + 1 != _levels.end() && level[1].width() + SLACK >= shareX * whole.width() &&
         level[1].height() + SLACK >= shareY * whole.height())
    ++level;
  const QRect place = Reduced(area, whole, SizeOf(*level));
  return Resized(level->extract_area(place.x(), place.y(), place.width(), place.height()), size);
}

} // namespace editor
