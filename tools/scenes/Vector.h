// Small vectors, and the few mappings of numbers that procedural pictures are made of.
#pragma once

#include <algorithm>
#include <cmath>

namespace scenes {

inline constexpr float PI = 3.14159265F;

struct Vec2 {
  float x = 0, y = 0;
};

struct Vec3 {
  float x = 0, y = 0, z = 0;
};

constexpr Vec2 operator+(Vec2 a, Vec2 b) {
  return {a.x + b.x, a.y + b.y};
}
constexpr Vec2 operator-(Vec2 a, Vec2 b) {
  return {a.x - b.x, a.y - b.y};
}
constexpr Vec2 operator*(Vec2 a, float s) {
  return {a.x * s, a.y * s};
}
constexpr float Dot(Vec2 a, Vec2 b) {
  return a.x * b.x + a.y * b.y;
}
inline float Length(Vec2 a) {
  return std::sqrt(Dot(a, a));
}

constexpr Vec3 operator+(Vec3 a, Vec3 b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
constexpr Vec3 operator-(Vec3 a, Vec3 b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
constexpr Vec3 operator-(Vec3 a) {
  return {-a.x, -a.y, -a.z};
}
constexpr Vec3 operator*(Vec3 a, Vec3 b) {
  return {a.x * b.x, a.y * b.y, a.z * b.z};
}
constexpr Vec3 operator*(Vec3 a, float s) {
  return {a.x * s, a.y * s, a.z * s};
}
constexpr Vec3 operator/(Vec3 a, float s) {
  return a * (1 / s);
}
constexpr Vec3& operator+=(Vec3& a, Vec3 b) {
  return a = a + b;
}
constexpr Vec3& operator*=(Vec3& a, Vec3 b) {
  return a = a * b;
}
constexpr float Dot(Vec3 a, Vec3 b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr Vec3 Cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float Length(Vec3 a) {
  return std::sqrt(Dot(a, a));
}
// The zero vector becomes straight up, so that a degenerate gradient still gives a direction.
inline Vec3 Normalized(Vec3 a) {
  const float length = Length(a);
  return length > 1e-20F ? a / length : Vec3{0, 1, 0};
}
constexpr float Luminance(Vec3 c) {
  return 0.2126F * c.x + 0.7152F * c.y + 0.0722F * c.z;
}

constexpr float Clamp01(float x) {
  return std::clamp(x, 0.0F, 1.0F);
}
constexpr float Mix(float a, float b, float t) {
  return a + (b - a) * t;
}
constexpr Vec3 Mix(Vec3 a, Vec3 b, float t) {
  return a + (b - a) * t;
}
constexpr float Square(float x) {
  return x * x;
}
// 0 at and before `from`, 1 at and after `to`, smooth between; from > to falls instead of rising.
constexpr float SmoothStep(float from, float to, float x) {
  const float t = Clamp01((x - from) / (to - from));
  return t * t * (3 - 2 * t);
}
// A bell of height 1 and the given width around 0.
inline float Bell(float x, float width) {
  return std::exp(-Square(x / width));
}

// A rotation, by its three columns: where the x, y and z axes go.
struct Rotation {
  Vec3 x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};

  constexpr Vec3 Apply(Vec3 p) const { return x * p.x + y * p.y + z * p.z; }
  constexpr Vec3 Undo(Vec3 p) const { return {Dot(x, p), Dot(y, p), Dot(z, p)}; }
};

// Turns by pitch about x, then roll about z, then yaw about y. Degrees.
inline Rotation Turned(float yaw, float pitch = 0, float roll = 0) {
  const float k = PI / 180;
  const float cy = std::cos(yaw * k), sy = std::sin(yaw * k);
  const float cp = std::cos(pitch * k), sp = std::sin(pitch * k);
  const float cr = std::cos(roll * k), sr = std::sin(roll * k);
  const auto turn = [=](Vec3 p) {
    p = {p.x, cp * p.y - sp * p.z, sp * p.y + cp * p.z};
    p = {cr * p.x - sr * p.y, sr * p.x + cr * p.y, p.z};
    return Vec3{cy * p.x + sy * p.z, p.y, cy * p.z - sy * p.x};
  };
  return {turn({1, 0, 0}), turn({0, 1, 0}), turn({0, 0, 1})};
}

// Some rotation that takes z to `normal`, a unit vector.
inline Rotation FacingZ(Vec3 normal) {
  const float sign = std::copysign(1.0F, normal.z);
  const float a = -1 / (sign + normal.z), b = normal.x * normal.y * a;
  return {{1 + sign * normal.x * normal.x * a, sign * b, -sign * normal.x},
          {b, sign + normal.y * normal.y * a, -normal.y},
          normal};
}

} // namespace scenes
