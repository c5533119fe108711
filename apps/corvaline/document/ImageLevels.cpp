#include "ImageLevels.h"

#include <algorithm>
#include <cmath>

namespace editor {

using vips::VImage;

static constexpr int SMALLEST_LEVEL = 64;

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
    _levels.push_back(
        _levels.back().shrink(2, 2, VImage::option()->set("ceil", true)).copy_memory());
}

// The smallest level that is not smaller than that share of the picture.
const VImage& ImageLevels::_levelFor(double shareX, double shareY) const {
  const VImage& whole = _levels.front();
  size_t level = 0;
  while (level + 1 < _levels.size() && _levels[level + 1].width() >= shareX * whole.width() &&
         _levels[level + 1].height() >= shareY * whole.height())
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
  const auto place = [](int at, int full, int reduced) {
    return static_cast<int>(std::lround(static_cast<double>(at) * reduced / full));
  };
  const int left = std::min(place(area.x(), whole.width(), level.width()), level.width() - 1);
  const int top = std::min(place(area.y(), whole.height(), level.height()), level.height() - 1);
  const int right = place(area.x() + area.width(), whole.width(), level.width());
  const int bottom = place(area.y() + area.height(), whole.height(), level.height());
  return Resized(
      level.extract_area(left, top, std::max(1, right - left), std::max(1, bottom - top)), size);
}

} // namespace editor
