// Samples of pictures read as heights of 16 bits.
#pragma once

#include <cstdint>

// Of the components of a pixel, in 65536ths: a channel alone, or three from it on.
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

template <class Sample>
constexpr uint16_t LM_HeightOf(const Sample* pixel, const LM_height_weights& weights) {
  uint64_t sum = 0;
  for (int i = 0; i < (weights.weight[1] == 0 ? 1 : 3); ++i)
    sum += uint64_t{LM_HeightWord(pixel[weights.first + i])} * weights.weight[i];
  return static_cast<uint16_t>((sum + 32768) / 65536);
}
