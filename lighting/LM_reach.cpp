#include "LM_reach.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double ANYWHERE = std::numeric_limits<double>::infinity();

// Ways x from a sample to a lamp, both ends included; nothing when `least` is above `most`.
struct Span {
  double least, most;
};
constexpr Span NOWHERE = {ANYWHERE, -ANYWHERE};
constexpr Span EVERYWHERE = {-ANYWHERE, ANYWHERE};

// Where a row crosses a spot's cone. NaN in the light makes every comparison fail, or ends in a
// span of NaN, which PiecesIn takes for everywhere.
Span SpanOf(const LM_kernel_light& light) {
  const double c = light.reachCosine;
  if (!(c > 0x1p-6))
    return EVERYWHERE;
  const auto a = static_cast<double>(light.axisX);
  const double k = static_cast<double>(light.axisY) + static_cast<double>(light.axisZ);
  const double squares = static_cast<double>(light.ySquare) + static_cast<double>(light.zSquare);
  const double leading = a * a - c * c;
  const double constant = k * k - c * c * squares;
  // B B - A C, but for the factor c c, without the squares that cancel.
  const double discriminant = k * k + leading * squares;
  // The cone opens along the axis; against it lies its mirror image, which gets no light.
  if (leading < 0.0 && (discriminant < 0.0 || k >= 0.0))
    return NOWHERE;
  const double root = c * std::sqrt(std::max(discriminant, 0.0));
  const double q = -(a * k + std::copysign(root, a * k));
  const double first = q / leading;
  const double second = q != 0.0 ? constant / q : 0.0;
  if (leading < 0.0)
    return {std::min(first, second), std::max(first, second)};
  return a > 0.0 ? Span{-ANYWHERE, std::min(first, second)}
                 : Span{std::max(first, second), ANYWHERE};
}

// The pieces that a span of ways to a lamp at `lamp` covers, as bits.
uint32_t PiecesIn(const Span& span, double lamp, const float* places, int samples) {
  if (span.least > span.most)
    return 0;
  const int pieces = LM_ReachPieces(samples);
  const auto left = static_cast<double>(places[0]);
  const auto right = static_cast<double>(places[samples - 1]);
  const double step = (right - left) / std::max(samples - 1, 1);
  // A way is found in single precision; a place lies a fraction of a sample off an even grid.
  const double roundings =
      2.0 + 0x1p-22 * (std::fabs(lamp) + std::max(std::fabs(left), std::fabs(right))) / step;
  const double first = (lamp - span.most - left) / step - roundings;
  const double last = (lamp - span.least - left) / step + roundings;
  if (!(step > 0.0) || std::isnan(first) || std::isnan(last))
    return (1U << pieces) - 1;
  if (last < 0.0 || first >= samples)
    return 0;
  const int begin = first > 0.0 ? static_cast<int>(first) / LM_REACH_PIECE : 0;
  const int end = last < samples ? static_cast<int>(last) / LM_REACH_PIECE + 1 : pieces;
  return (1U << std::min(end, pieces)) - (1U << begin);
}

} // namespace

int LM_row_reach::EndOfRun(int piece, int pieces) const {
  int end = piece + 1;
  while (end < pieces && lights[end] == lights[piece])
    ++end;
  return end;
}

LM_row_reach LM_FindReach(const LM_kernel_lights& row, const float* places, int samples) {
  const int pieces = LM_ReachPieces(samples);
  const int spots = row.omnis + row.spots;
  LM_row_reach reach = {};
  std::fill_n(reach.lights, pieces, (1U << row.Count()) - (1U << spots) + (1U << row.omnis) - 1);
  for (int k = row.omnis; k < spots; ++k) {
    const LM_kernel_light& light = row.light[k];
    const uint32_t covered = PiecesIn(SpanOf(light), static_cast<double>(light.x), places, samples);
    for (int piece = 0; piece < pieces; ++piece)
      reach.lights[piece] |= (covered >> piece & 1U) << k;
  }
  return reach;
}

void LM_SelectLights(const LM_kernel_lights& row, uint32_t lights, LM_kernel_lights& selected) {
  std::copy_n(row.diffuse, LM_PLANES, selected.diffuse);
  std::copy_n(row.specular, LM_PLANES, selected.specular);
  selected.omnis = selected.spots = selected.directionals = 0;
  uint8_t places[LM_MAX_LIGHTS] = {};
  uint8_t count = 0;
  for (int k = 0; k < row.Count(); ++k) {
    if ((lights >> k & 1U) == 0)
      continue;
    places[k] = count;
    selected.light[count++] = row.light[k];
    ++(k < row.omnis               ? selected.omnis
       : k < row.omnis + row.spots ? selected.spots
                                   : selected.directionals);
  }
  count = 0;
  for (int i = 0; i < row.Count(); ++i)
    if ((lights >> row.ordered[i] & 1U) != 0)
      selected.ordered[count++] = places[row.ordered[i]];
}
