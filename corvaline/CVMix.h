// How a selection mask mixes a filter's result with what was there before.
#pragma once

#include <cstdint>

// selection: 0 keeps the old sample, 255 takes the new one; between them the mean by weight,
// rounded to the nearest.
inline uint8_t CVMixSelected(uint8_t before, uint8_t after, uint8_t selection) {
  const unsigned share = selection;
  return static_cast<uint8_t>((before * (255 - share) + after * share + 127) / 255);
}
