#include "halving.h"

namespace limn {
namespace {

// BANDS: what a pixel has, so that the loop over them is none; 0 takes `bands`.
template <size_t BANDS>
void HalveRowOf(const uint8_t* above, const uint8_t* below, size_t width, size_t bands,
                uint8_t* out) {
  if constexpr (BANDS > 0)
    bands = BANDS;
  const size_t step = 2 * bands;
  for (size_t x = 0; x < width; x += 2, above += step, below += step, out += bands) {
    const size_t next = x + 1 < width ? bands : 0;
    for (size_t band = 0; band < bands; ++band)
      out[band] = static_cast<uint8_t>(
          (above[band] + above[band + next] + below[band] + below[band + next] + 2) / 4);
  }
}

} // namespace

void HalveRow(const uint8_t* above, const uint8_t* below, size_t width, size_t bands,
              uint8_t* out) {
  const auto halve = bands == 3 ? HalveRowOf<3> : bands == 4 ? HalveRowOf<4> : HalveRowOf<0>;
  halve(above, below, width, bands, out);
}

std::vector<uint8_t> Halved(const std::vector<uint8_t>& pixels, int width, int height, int bands) {
  const auto step = static_cast<size_t>(bands);
  const size_t row = static_cast<size_t>(width) * step;
  std::vector<uint8_t> half(pixels.size() / 4);
  for (size_t y = 0; y + 1 < static_cast<size_t>(height); y += 2)
    HalveRow(pixels.data() + y * row, pixels.data() + (y + 1) * row, static_cast<size_t>(width),
             step, half.data() + y / 2 * (row / 2));
  return half;
}

} // namespace limn
