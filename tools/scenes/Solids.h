// Signed distances to simple solids (negative inside), and ways to join and carve them.
#pragma once

#include "Picture.h"
#include "Vector.h"

#include <functional>
#include <vector>

namespace scenes {

inline float Sphere(Vec3 p, float radius) {
  return Length(p) - radius;
}

// A box of the given half size with edges rounded by `round`, which the half size includes.
inline float RoundBox(Vec3 p, Vec3 half, float round) {
  const Vec3 q = {std::abs(p.x) - half.x + round, std::abs(p.y) - half.y + round,
                  std::abs(p.z) - half.z + round};
  const Vec3 outside = {std::max(q.x, 0.0F), std::max(q.y, 0.0F), std::max(q.z, 0.0F)};
  return Length(outside) + std::min(std::max({q.x, q.y, q.z}), 0.0F) - round;
}

inline float RoundRectangle(Vec2 p, Vec2 half, float round) {
  return RoundBox({p.x, p.y, 0}, {half.x, half.y, 1e6F}, round);
}

// Close to the distance near the surface, which is all that marching needs.
inline float Ellipsoid(Vec3 p, Vec3 radii) {
  const Vec3 a = {p.x / radii.x, p.y / radii.y, p.z / radii.z};
  const Vec3 b = {a.x / radii.x, a.y / radii.y, a.z / radii.z};
  const float k = Length(a);
  return k * (k - 1) / std::max(Length(b), 1e-6F);
}

// A rod from a to b whose radius goes from ra to rb.
float Rod(Vec3 p, Vec3 a, Vec3 b, float ra, float rb);

// Unions, cuts and common parts with a fillet about k wide.
inline float Join(float a, float b, float k) {
  const float h = std::max(k - std::abs(a - b), 0.0F) / k;
  return std::min(a, b) - h * h * k * 0.25F;
}
inline float Cut(float a, float b, float k) {
  return -Join(-a, b, k);
}
inline float Common(float a, float b, float k) {
  return -Join(-a, -b, k);
}

// A slow function of the plane, sampled once on a square grid and then smoothly interpolated.
// Outside the grid its nearest edge counts.
class Sampled {
public:
  Sampled(Vec2 low, Vec2 high, float step, const std::function<float(Vec2)>& function);
  float At(Vec2 p) const;

private:
  Vec2 _low;
  float _step;
  Plane<float> _values;
};

// A smooth curve through points of rising x, held level outside them.
class Profile {
public:
  explicit Profile(std::vector<Vec2> points) : _points(std::move(points)) {}
  float At(float x) const;

private:
  std::vector<Vec2> _points;
};

} // namespace scenes
