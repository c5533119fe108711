#include "Solids.h"

namespace scenes {

float Rod(Vec3 p, Vec3 a, Vec3 b, float ra, float rb) {
  const Vec3 along = b - a;
  const float t = Clamp01(Dot(p - a, along) / Dot(along, along));
  return Length(p - a - along * t) - Mix(ra, rb, t);
}

Sampled::Sampled(Vec2 low, Vec2 high, float step, const std::function<float(Vec2)>& function)
    : _low(low), _step(step), _values(static_cast<int>((high.x - low.x) / step) + 2,
                                      static_cast<int>((high.y - low.y) / step) + 2) {
  for (int y = 0; y < _values.height; ++y) {
    for (int x = 0; x < _values.width; ++x) {
      _values.At(x, y) = function(low + Vec2{static_cast<float>(x), static_cast<float>(y)} * step);
    }
  }
}

// Quadratic splines, whose slope has no jumps that would show as facets.
float Sampled::At(Vec2 p) const {
  const auto limit = [](float at, int size) {
    return std::clamp(at, 1.0F, static_cast<float>(size) - 2.001F);
  };
  const float x = limit((p.x - _low.x) / _step, _values.width);
  const float y = limit((p.y - _low.y) / _step, _values.height);
  const float right = x + 0.5F, below = y + 0.5F;
  const int column = static_cast<int>(right), row = static_cast<int>(below);
  const auto weights = [](float offset) {
    return Vec3{0.5F * Square(0.5F - offset), 0.75F - Square(offset), 0.5F * Square(0.5F + offset)};
  };
  const Vec3 across = weights(x - static_cast<float>(column));
  const Vec3 down = weights(y - static_cast<float>(row));
  const auto line = [&](int at) {
    const float* values = &_values.At(column - 1, at);
    return across.x * values[0] + across.y * values[1] + across.z * values[2];
  };
  return down.x * line(row - 1) + down.y * line(row) + down.z * line(row + 1);
}

float Profile::At(float x) const {
  if (x <= _points.front().x) {
    return _points.front().y;
  }
  if (x >= _points.back().x) {
    return _points.back().y;
  }
  size_t i = 0;
  while (x > _points[i + 1].x) {
    ++i;
  }
  const Vec2 p1 = _points[i], p2 = _points[i + 1];
  const Vec2 p0 = _points[i > 0 ? i - 1 : i], p3 = _points[std::min(i + 2, _points.size() - 1)];
  const float width = p2.x - p1.x, t = (x - p1.x) / width;
  const float m1 = (p2.y - p0.y) / (p2.x - p0.x) * width;
  const float m2 = (p3.y - p1.y) / (p3.x - p1.x) * width;
  const float t2 = t * t, t3 = t2 * t;
  return (2 * t3 - 3 * t2 + 1) * p1.y + (t3 - 2 * t2 + t) * m1 + (3 * t2 - 2 * t3) * p2.y +
         (t3 - t2) * m2;
}

} // namespace scenes
