// Samples of pictures read as heights of 16 bits.
#pragma once

#include <cstddef>
#include <cstdint>

// Of the components of a pixel, in 65536ths: a channel alone, or three from it on, which together
// are one.
struct LM_height_weights {
  int first = 0; // component
  uint32_t weight[3] = {65536, 0, 0};
};
// That of sRGB's primaries, of which eyes see luminance.
constexpr LM_height_weights LM_LUMINANCE = {0, {19595, 38470, 7471}};

constexpr uint32_t LM_HeightWord(uint8_t sample) {
  return sample * 257U;
}
constexpr uint32_t LM_HeightWord(uint16_t sample) {
  return sample;
}
// White is 1; beyond black and white, and NaN, count as these and as black.
constexpr uint32_t LM_HeightWord(float sample) {
  if (sample >= 1.0F)
    return 65535U;
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): the nearest float below a half makes no height
  return sample > 0.0F ? static_cast<uint32_t>(sample * 65535.0F + 0.5F) : 0U;
}

// The heights of `count` pixels, of `step` samples each.
template <class Sample>
void LM_HeightsOfPixels(const Sample* pixel, ptrdiff_t step, const LM_height_weights& weights,
                        uint16_t* heights, size_t count) {
  constexpr uint32_t HALF = 32768;
  const auto [first, second, third] = weights.weight;
  pixel += weights.first;
  if (second == 0 && third == 0)
    for (size_t i = 0; i < count; ++i, pixel += step)
      heights[i] = static_cast<uint16_t>((LM_HeightWord(pixel[0]) * first + HALF) / 65536);
  else
    for (size_t i = 0; i < count; ++i, pixel += step) // white comes to less than 2^32
      heights[i] = static_cast<uint16_t>((LM_HeightWord(pixel[0]) * first +
                                          LM_HeightWord(pixel[1]) * second +
                                          LM_HeightWord(pixel[2]) * third + HALF) /
                                         65536);
}
