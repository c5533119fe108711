#include "Brush.h"

#include <algorithm>
#include <cmath>

namespace editor {
namespace {

// Distance of a point from the line between two others.
double Distance(QPointF point, QPointF from, QPointF to) {
  const QPointF line = to - from;
  const double length = QPointF::dotProduct(line, line);
  const double along =
      length > 0 ? std::clamp(QPointF::dotProduct(point - from, line) / length, 0.0, 1.0) : 0.0;
  const QPointF off = point - from - along * line;
  return std::hypot(off.x(), off.y());
}

// 255 up to half of the radius, then a smooth fall to 0.
int Strength(double distance, double radius) {
  const double t = std::clamp((radius - distance) / (radius / 2.0), 0.0, 1.0);
  return static_cast<int>(std::lround(255.0 * t * t * (3.0 - 2.0 * t)));
}

} // namespace

QRect PaintStroke(QImage& mask, QPointF from, QPointF to, const Brush& brush) {
  // Half a pixel more than asked for: the thinnest brush still covers the pixel below it.
  const double radius = (std::max(brush.diameter, 1) + 1) / 2.0;
  const QRect area = QRectF(from, to)
                         .normalized()
                         .adjusted(-radius, -radius, radius, radius)
                         .toAlignedRect()
                         .intersected(mask.rect());
  for (int y = area.top(); y <= area.bottom(); ++y) {
    uint8_t* row = mask.scanLine(y);
    for (int x = area.left(); x <= area.right(); ++x) {
      const int strength = Strength(Distance(QPointF(x + 0.5, y + 0.5), from, to), radius);
      row[x] = static_cast<uint8_t>(brush.ink == BrushInk::Select
                                        ? std::max<int>(row[x], strength)
                                        : std::min<int>(row[x], 255 - strength));
    }
  }
  return area;
}

} // namespace editor
