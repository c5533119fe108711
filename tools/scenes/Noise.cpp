#include "Noise.h"

namespace scenes {

namespace {

float Corner(int32_t x, int32_t y, int32_t z, Vec3 offset) {
  const uint32_t h = Hash(x, y, z);
  const Vec3 gradient = {static_cast<float>(h & 1023U) / 511.5F - 1,
                         static_cast<float>((h >> 10) & 1023U) / 511.5F - 1,
                         static_cast<float>((h >> 20) & 1023U) / 511.5F - 1};
  return Dot(gradient, offset);
}

// Unlike the library's, never a call.
int32_t Floor(float x) {
  const auto whole = static_cast<int32_t>(x);
  return whole - (x < static_cast<float>(whole) ? 1 : 0);
}

float Fade(float t) {
  return t * t * t * (t * (t * 6 - 15) + 10);
}

} // namespace

float Noise(Vec3 p) {
  const int32_t x = Floor(p.x), y = Floor(p.y), z = Floor(p.z);
  const Vec3 f = p - Vec3{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
  const float u = Fade(f.x), v = Fade(f.y), w = Fade(f.z);
  const auto edge = [&](int32_t dy, int32_t dz) {
    const Vec3 g = f - Vec3{0, static_cast<float>(dy), static_cast<float>(dz)};
    return Mix(Corner(x, y + dy, z + dz, g), Corner(x + 1, y + dy, z + dz, g - Vec3{1, 0, 0}), u);
  };
  return 1.1F * Mix(Mix(edge(0, 0), edge(1, 0), v), Mix(edge(0, 1), edge(1, 1), v), w);
}

float Fractal(Vec3 p, int octaves, float gain) {
  float sum = 0, height = 1;
  for (int i = 0; i < octaves; ++i) {
    sum += height * Noise(p);
    height *= gain;
    // Turned a little each time, so that the lattices never line up.
    p = Vec3{1.6F * p.x + 1.2F * p.z, 2.0F * p.y, 1.6F * p.z - 1.2F * p.x} +
        Vec3{17.3F, 5.1F, 9.7F};
  }
  return sum;
}

float Ridged(Vec3 p, int octaves) {
  float sum = 0, height = 0.5F;
  for (int i = 0; i < octaves; ++i) {
    sum += height * Square(1 - std::min(1.0F, std::abs(Noise(p))));
    height *= 0.5F;
    p = Vec3{1.6F * p.x + 1.2F * p.z, 2.0F * p.y, 1.6F * p.z - 1.2F * p.x} + Vec3{3.7F, 8.2F, 1.9F};
  }
  return sum;
}

CellDistances Cells(Vec3 p) {
  const Vec3 base = {std::floor(p.x), std::floor(p.y), std::floor(p.z)};
  CellDistances found = {9, 9, 0};
  for (int i = 0; i < 27; ++i) {
    const int dx = i % 3 - 1, dy = i / 3 % 3 - 1, dz = i / 9 - 1;
    const Vec3 cell =
        base + Vec3{static_cast<float>(dx), static_cast<float>(dy), static_cast<float>(dz)};
    const uint32_t id = Hash(static_cast<int32_t>(cell.x), static_cast<int32_t>(cell.y),
                             static_cast<int32_t>(cell.z));
    const Vec3 point = {UnitFloat(id), UnitFloat(Hash(id)), UnitFloat(Hash(id + 1))};
    const Vec3 away = cell + point - p;
    const float distance = Dot(away, away);
    if (distance < found.first) {
      found = {distance, found.first, id};
    } else {
      found.second = std::min(found.second, distance);
    }
  }
  return {std::sqrt(found.first), std::sqrt(found.second), found.id};
}

} // namespace scenes
