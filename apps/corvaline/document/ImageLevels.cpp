#include "ImageLevels.h"

#include "halving.h"

#include <algorithm>
#include <cmath>

namespace editor {

using vips::VImage;

namespace {

constexpr int SMALLEST_LEVEL = 64;

int Halve(VipsRegion* into, void* sequence, void*, void*, gboolean*) {
  auto* from = static_cast<VipsRegion*>(sequence);
  const VipsRect& made = into->valid;
  VipsRect needed = {2 * made.left, 2 * made.top, 2 * made.width, 2 * made.height};
  const VipsRect all = {0, 0, from->im->Xsize, from->im->Ysize};
  vips_rect_intersectrect(&needed, &all, &needed);
  if (vips_region_prepare(from, &needed) != 0)
    return -1;
  const auto bands = static_cast<size_t>(into->im->Bands);
  for (int y = 0; y < made.height; ++y) {
    const int above = needed.top + 2 * y;
    const int below = std::min(above + 1, needed.top + needed.height - 1);
    limn::HalveRow(VIPS_REGION_ADDR(from, needed.left, above),
                   VIPS_REGION_ADDR(from, needed.left, below), static_cast<size_t>(needed.width),
                   bands, VIPS_REGION_ADDR(into, made.left, made.top + y));
  }
  return 0;
}

// Half as wide and high, rounded up, in memory: made on all cores.
VImage Halved(const VImage& image) {
  const VImage half(vips_image_new());
  if (vips_image_pipelinev(half.get_image(), VIPS_DEMAND_STYLE_FATSTRIP, image.get_image(),
                           nullptr) != 0)
    throw vips::VError();
  half.get_image()->Xsize = (image.width() + 1) / 2;
  half.get_image()->Ysize = (image.height() + 1) / 2;
  if (vips_image_generate(half.get_image(), vips_start_one, Halve, vips_stop_one, image.get_image(),
                          nullptr) != 0)
    throw vips::VError();
  return half.copy_memory();
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

ImageLevels::ImageLevels(const VImage& image) {
  _levels.push_back(image);
  while (std::max(_levels.back().width(), _levels.back().height()) > SMALLEST_LEVEL)
    _levels.push_back(Halved(_levels.back()));
}

// The smallest level that is not smaller than that share of the picture.
const VImage& ImageLevels::_levelFor(double shareX, double shareY) const {
  const VImage& whole = _levels.front();
  size_t level = 0;
  constexpr double SLACK = 1e-6; // shares are rounded
  while (level + 1 < _levels.size() &&
         _levels[level + 1].width() + SLACK >= shareX * whole.width() &&
         _levels[level + 1].height() + SLACK >= shareY * whole.height())
    ++level;
  return _levels[level];
}

VImage ImageLevels::at(QSize size) const {
  const VImage& whole = _levels.front();
  return Resized(_levelFor(static_cast<double>(size.width()) / whole.width(),
                           static_cast<double>(size.height()) / whole.height()),
                 size);
}

VImage ImageLevels::part(const QRect& area, QSize size) const {
  const VImage& whole = _levels.front();
  const VImage& level = _levelFor(static_cast<double>(size.width()) / area.width(),
                                  static_cast<double>(size.height()) / area.height());
  const QRect place = Reduced(area, SizeOf(whole), SizeOf(level));
  return Resized(level.extract_area(place.x(), place.y(), place.width(), place.height()), size);
}

} // namespace editor
