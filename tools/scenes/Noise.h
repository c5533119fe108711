// Repeatable randomness: the same on every machine and with any number of threads.
#pragma once

#include "Vector.h"

#include <cstdint>

namespace scenes {

// Scrambles 32 bits.
constexpr uint32_t Hash(uint32_t x) {
  x = (x ^ (x >> 16)) * 0x21F0AAADU;
  x = (x ^ (x >> 15)) * 0x735A2D97U;
  return x ^ (x >> 15);
}
constexpr uint32_t Hash(int32_t x, int32_t y, int32_t z = 0) {
  return Hash(static_cast<uint32_t>(x) * 0x9E3779B1U ^ static_cast<uint32_t>(y) * 0x85EBCA77U ^
              static_cast<uint32_t>(z) * 0xC2B2AE3DU);
}
// [0, 1)
constexpr float UnitFloat(uint32_t bits) {
  return static_cast<float>(bits >> 8) * 0x1p-24F;
}

// A stream of numbers in [0, 1).
class Random {
public:
  explicit Random(uint32_t seed) : _state(seed) {}
  float Next() { return UnitFloat(Hash(_state += 0x9E3779B9U)); }

private:
  uint32_t _state;
};

// Smooth gradient noise about -1..1, features about one unit across.
float Noise(Vec3 p);
// Octaves of Noise, each at twice the frequency and `gain` times the height of the one before.
float Fractal(Vec3 p, int octaves, float gain = 0.5F);
// Like Fractal with sharp crests, 0..1.
float Ridged(Vec3 p, int octaves);

// Distances from p to the nearest and to the second nearest of points strewn one a unit cell,
// and a number that belongs to the nearest.
struct CellDistances {
  float first, second;
  uint32_t id;
};
CellDistances Cells(Vec3 p);

} // namespace scenes
