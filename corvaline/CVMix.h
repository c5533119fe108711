// How a selection mask mixes a filter's result with what was there before.
#ifndef CV_MIX_H
#define CV_MIX_H

#include <cstdint>

// selection: 0 keeps the old sample, 255 takes the new one; between them the mean by weight,
// rounded to the nearest.
inline std::uint8_t CVMixSelected(std::uint8_t before, std::uint8_t after, std::uint8_t selection) {
  const unsigned share = selection;
  return static_cast<std::uint8_t>((before * (255 - share) + after * share + 127) / 255);
}

#endif
