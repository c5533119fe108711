#include "ImageLevels.h"

#include <algorithm>

namespace editor {
namespace {

constexpr int SMALLEST_LEVEL = 64;

QRgb Mean(QRgb a, QRgb b, QRgb c, QRgb d) {
  return qRgb((qRed(a) + qRed(b) + qRed(c) + qRed(d) + 2) / 4,
              (qGreen(a) + qGreen(b) + qGreen(c) + qGreen(d) + 2) / 4,
              (qBlue(a) + qBlue(b) + qBlue(c) + qBlue(d) + 2) / 4);
}

// Makes `area` of the half-size picture again. The edge of an odd side counts twice. Pictures that
// there was no memory for stay as they are.
void Halve(const QImage& whole, QImage& half, const QRect& area) {
  if (whole.isNull() || half.bits() == nullptr)
    return;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    const auto* upper = reinterpret_cast<const QRgb*>(whole.constScanLine(2 * y));
    const auto* lower =
        reinterpret_cast<const QRgb*>(whole.constScanLine(std::min(2 * y + 1, whole.height() - 1)));
    auto* into = reinterpret_cast<QRgb*>(half.scanLine(y));
    for (int x = area.left(); x <= area.right(); ++x) {
      const int right = std::min(2 * x + 1, whole.width() - 1);
      into[x] = Mean(upper[2 * x], upper[right], lower[2 * x], lower[right]);
    }
  }
}

} // namespace

ImageLevels::ImageLevels(const QImage& image) {
  _levels.push_back(image.convertToFormat(QImage::Format_RGB32));
  while (std::max(_levels.back().width(), _levels.back().height()) > SMALLEST_LEVEL) {
    const QImage& whole = _levels.back();
    QImage half((whole.width() + 1) / 2, (whole.height() + 1) / 2, QImage::Format_RGB32);
    Halve(whole, half, half.rect());
    _levels.push_back(half);
  }
}

void ImageLevels::replace(QPoint place, const QImage& part) {
  QRect area(place, part.size());
  QPainter(&_levels.front()).drawImage(place, part);
  for (size_t level = 1; level < _levels.size(); ++level) {
    area.setCoords(area.left() / 2, area.top() / 2, area.right() / 2, area.bottom() / 2);
    Halve(_levels[level - 1], _levels[level], area);
  }
}

void ImageLevels::draw(QPainter& painter, const QRectF& target, const QRectF& source,
                       double pixelSize) const {
  size_t level = 0;
  while (level + 1 < _levels.size() && pixelSize <= 0.5) {
    pixelSize *= 2.0;
    ++level;
  }
  const QImage& image = _levels[level];
  const double scaleX = static_cast<double>(image.width()) / size().width();
  const double scaleY = static_cast<double>(image.height()) / size().height();
  painter.setRenderHint(QPainter::SmoothPixmapTransform, pixelSize < 1.0);
  painter.drawImage(target, image,
                    QRectF(source.x() * scaleX, source.y() * scaleY, source.width() * scaleX,
                           source.height() * scaleY));
}

} // namespace editor
