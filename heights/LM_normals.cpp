#include "LM_normals.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double ZERO = 32768;
constexpr double ONE = 32767;
constexpr float LEAST_SQUARE = 0.25F; // of a normal's length
constexpr float STEEPEST = 16;

// How much heights rise per pixel at pixel i of n, `step` apart: through the seven around, and near
// the edges through five, with as many on one side as there are.
double SlopeAt(const uint16_t* height, ptrdiff_t step, int i, int n) {
  const auto at = [&](int place) { return static_cast<double>(height[place * step]); };
  if (n < 5) {
    const int first = std::max(i - 1, 0);
    const int last = std::min(i + 1, n - 1);
    return first == last ? 0 : (at(last) - at(first)) / (last - first);
  }
  if (i >= 3 && i < n - 3)
    return (45 * (at(i + 1) - at(i - 1)) - 9 * (at(i + 2) - at(i - 2)) + at(i + 3) - at(i - 3)) /
           60;
  if (i >= 2 && i < n - 2)
    return (at(i - 2) - 8 * at(i - 1) + 8 * at(i + 1) - at(i + 2)) / 12;
  const int edge = i < 2 ? 0 : n - 1;
  const int inward = i < 2 ? 1 : -1;
  const auto from = [&](int place) { return at(edge + inward * place); };
  if (i == edge)
    return inward * (-25 * from(0) + 48 * from(1) - 36 * from(2) + 16 * from(3) - 3 * from(4)) / 12;
  return inward * (-3 * from(0) - 10 * from(1) + 18 * from(2) - 6 * from(3) + from(4)) / 12;
}

} // namespace

void LM_NormalsOfRow(const LM_height_plane& plane, int y, LM_normals_y greenIs, uint16_t* row) {
  for (int x = 0; x < plane.width; ++x) {
    const double across = SlopeAt(plane.Row(y), 1, x, plane.width) / LM_HEIGHT_OF_A_PIXEL;
    const double down =
        SlopeAt(plane.Row(0) + x, plane.width, y, plane.height) / LM_HEIGHT_OF_A_PIXEL;
    const double out = 1 / std::sqrt(1 + across * across + down * down);
    // Rounded up or down, now one and now the other, as pixels follow each other evenly in both
    // directions (the plastic number's powers): many that are rounded the same way would add up,
    // over a long gentle slope, to more than a height's step. What is a whole number stays.
    uint32_t phase =
        static_cast<uint32_t>(x) * 0xC13FA9A9U + static_cast<uint32_t>(y) * 0x91E10DA6U;
    const auto coded = [&phase](double component) {
      phase += 0x55555555U;
      return static_cast<uint16_t>(ZERO + ONE * component + phase * 0x1p-32);
    };
    *row++ = coded(-across * out);
    *row++ = coded((greenIs == LM_normals_y::Up ? down : -down) * out);
    *row++ = coded(out);
  }
}

size_t LM_SlopesOfNormals(const float* normal, size_t count, LM_normals_y greenIs, float* across,
                          float* down) {
  const float sign = greenIs == LM_normals_y::Up ? 1.0F : -1.0F;
  size_t without = 0;
  for (size_t i = 0; i < count; ++i, normal += 3) {
    const float square = normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2];
    across[i] = down[i] = 0;
    if (normal[2] > 0 && square > LEAST_SQUARE) {
      across[i] = std::clamp(-normal[0] / normal[2], -STEEPEST, STEEPEST);
      down[i] = std::clamp(sign * normal[1] / normal[2], -STEEPEST, STEEPEST);
    } else {
      ++without;
    }
  }
  return without;
}

double LM_FitTogether(const LM_slopes& slopes) {
  double both = 0;
  double squares = 0;
  const ptrdiff_t width = slopes.width;
  for (int y = 1; y + 1 < slopes.height; ++y)
    for (int x = 1; x + 1 < slopes.width; ++x) {
      const ptrdiff_t at = y * width + x;
      const double turn = double{slopes.across[static_cast<size_t>(at + width)]} -
                          slopes.across[static_cast<size_t>(at - width)];
      const double back = double{slopes.down[static_cast<size_t>(at + 1)]} -
                          slopes.down[static_cast<size_t>(at - 1)];
      both += turn * back;
      squares += turn * turn + back * back;
    }
  return squares > 0 ? 2 * both / squares : 0;
}

LM_integrated_heights LM_HeightsOfSlopes(const LM_slopes& slopes) {
  const std::vector<double> surface = LM_SurfaceOfSlopes(slopes);
  double most = 0;
  for (const double height : surface)
    most = std::max(most, std::abs(height));
  LM_integrated_heights made{LM_height_plane(slopes.width, slopes.height),
                             std::min(1.0, ONE / (LM_HEIGHT_OF_A_PIXEL * std::max(most, 1.0)))};
  const double scale = LM_HEIGHT_OF_A_PIXEL * made.share;
  for (size_t i = 0; i < surface.size(); ++i)
    made.plane.values[i] = LM_NearestHeight(ZERO + scale * surface[i]);
  return made;
}
