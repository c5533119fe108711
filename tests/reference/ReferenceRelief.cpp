#include "Reference.h"

#include <cmath>

namespace {

// Halves rounded down, as an arithmetic shift does.
int32_t HalfDown(int32_t value) {
  return value >= 0 ? value / 2 : -((1 - value) / 2);
}

ReferenceVector Normal(int32_t gx, int32_t gy) {
  const int64_t squares = int64_t{gx} * gx + int64_t{gy} * gy;
  const float sum = static_cast<float>(squares) + 16777216.0F;
  const float inverse = static_cast<float>(1.0 / std::sqrt(static_cast<double>(sum)));
  return {static_cast<float>(-gx) * inverse, static_cast<float>(gy) * inverse, 4096.0F * inverse};
}

} // namespace

int32_t ReferenceHeight(const ReferenceChannel& channel, int x, int y, int32_t scale) {
  static const int weights[3][3] = {{2, 8, 2}, {8, 32, 8}, {2, 8, 2}};
  int32_t sum = 0;
  for (int row = -1; row <= 1; ++row)
    for (int column = -1; column <= 1; ++column)
      sum += weights[row + 1][column + 1] * channel(x + column, y + row);
  return static_cast<int32_t>(int64_t{sum} * scale) / 68;
}

std::vector<ReferenceFacet> ReferenceFacets(const ReferenceChannel& channel, int x, int y,
                                            int32_t scale) {
  int32_t h[3][3];
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column)
      h[row][column] = ReferenceHeight(channel, x + column - 1, y + row - 1, scale);

  // Top-left corners of the quads among the nine heights.
  static const int quads[4][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};
  std::vector<ReferenceFacet> facets;
  int flat = -1;
  for (const auto& [row, column] : quads) {
    const int32_t a = h[row][column];
    const int32_t b = h[row][column + 1];
    const int32_t c = h[row + 1][column + 1];
    const int32_t d = h[row + 1][column];
    const int32_t gx = HalfDown((b - d) + (c - a));
    const int32_t gy = HalfDown((b - d) - (c - a));
    const bool isFlat = gx == 0 && gy == 0;
    if (isFlat && flat >= 0) {
      facets[static_cast<size_t>(flat)].weight += 4;
      continue;
    }
    if (isFlat)
      flat = static_cast<int>(facets.size());
    facets.push_back({isFlat ? ReferenceVector{0, 0, 1} : Normal(gx, gy), 4});
  }
  return facets;
}
