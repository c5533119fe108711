#include "LM_heights.h"

#include <algorithm>
#include <cmath>

#include "LM_arithmetic.h"

void LM_SetUpHeightFilter(LM_bump_map* map) {
  static constexpr int32_t WEIGHTS[5][5] = {
      {1, 2, 4, 2, 1}, {2, 8, 16, 8, 2}, {4, 16, 64, 16, 4}, {2, 8, 16, 8, 2}, {1, 2, 4, 2, 1}};
  std::copy(&WEIGHTS[0][0], &WEIGHTS[0][0] + 25, &map->kernel[0][0]);
}

namespace {

// 72 weights over 68: the gain is part of the look.
constexpr int32_t GAIN = 68;

template <class Tap> int32_t WeighTaps(const Tap* above, const Tap* middle, const Tap* below) {
  return 2 * above[0] + 8 * above[1] + 2 * above[2] + 8 * middle[0] + 32 * middle[1] +
         8 * middle[2] + 2 * below[0] + 8 * below[1] + 2 * below[2];
}

} // namespace

int32_t LM_WeighHeight(const uint8_t* above, const uint8_t* middle, const uint8_t* below,
                       int32_t scale) {
  return LM_WrapMultiply(WeighTaps(above, middle, below), scale) / GAIN;
}

int32_t LM_WeighHeight(const uint16_t* above, const uint16_t* middle, const uint16_t* below,
                       int32_t scale) {
  return static_cast<int32_t>(int64_t{WeighTaps(above, middle, below)} * scale / (257 * GAIN));
}

int32_t LM_FilterHeight(const uint8_t* source, uint32_t rowBytes, int32_t scale,
                        [[maybe_unused]] const int32_t kernel[][5]) {
  const uint8_t* above = source + rowBytes + 1;
  return LM_WeighHeight(above, above + rowBytes, above + 2 * static_cast<size_t>(rowBytes), scale);
}

bool LM_HoldsHeights(const LM_bump_map* map, int columns, int rows) {
  const uint64_t needed = (static_cast<uint64_t>(rows) + 2) * map->width * 4;
  return map->heights != nullptr && map->width >= static_cast<uint32_t>(columns) + 2 &&
         map->capacity >= needed;
}

LM_vector3f LM_FacetNormal(int32_t gradX, int32_t gradY) {
  if (gradX == 0 && gradY == 0)
    return {0.0F, 0.0F, 1.0F};
  // Summed wide. A hard edge of the channel gives gradients of 360 times the amplitude, whose
  // square leaves 32 bits above amplitude 128: a sum that has wrapped below zero would have no
  // root, and its facet, lit by nothing, would be a black speck on the edge.
  const int64_t squares = static_cast<int64_t>(gradX) * gradX + static_cast<int64_t>(gradY) * gradY;
  const float sum = static_cast<float>(squares) + 16777216.0F;
  const float inverse = static_cast<float>(1.0 / std::sqrt(static_cast<double>(sum)));
  return {static_cast<float>(-gradX) * inverse, static_cast<float>(gradY) * inverse,
          4096.0F * inverse};
}

int32_t LM_GeneratePreviewBumpSample(const int32_t& a, const int32_t& b, const int32_t& c,
                                     const int32_t& d, int32_t* firstGradX, int32_t* firstGradY,
                                     int32_t* firstWeight, int32_t** endGradX, int32_t** endGradY,
                                     int32_t** endWeight, uint32_t& count) {
  const int32_t falling = LM_WrapSubtract(b, d);
  const int32_t rising = LM_WrapSubtract(c, a);
  const int32_t gradX = LM_WrapAdd(falling, rising) >> 1;
  const int32_t gradY = LM_WrapSubtract(falling, rising) >> 1;
  if (gradX == 0 && gradY == 0) {
    int32_t* weight = firstWeight;
    for (int32_t *x = firstGradX, *y = firstGradY; x != *endGradX; ++x, ++y, ++weight) {
      if (*x == 0 && *y == 0) {
        *weight += 4;
        return gradX;
      }
    }
  }
  *(*endGradX)++ = gradX;
  *(*endGradY)++ = gradY;
  *(*endWeight)++ = 4;
  ++count;
  return gradX;
}
