#include "LM_height_source.h"

#include "LM_height_filters.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double WHITE = 65535;
constexpr double MIDDLE = 32768;
constexpr double LEVEL = 257; // a step of 8 bits

// Large enough to tell grain from what is drawn, small enough to keep it off edges, on a plane of
// LM_HEIGHTS_SIDE pixels.
constexpr double SMOOTHING_RADIUS = 4;
// The part of a detail that is the radius of what is smoothed.
constexpr double FINENESS = 0.02;
// However far something stands out of its surroundings, its height comes to no more: the edge of a
// window is no cliff. As much as 16 bits hold on a picture of 6000 pixels that is fitted.
constexpr double MOST_HEIGHT = 38 * LEVEL;

// By how much the heights are steeper than their plane's, with fit.
double FitOf(const LM_height_source& source, int pictureSide) {
  return source.fit ? static_cast<double>(pictureSide) / LM_HEIGHTS_SIDE : 1;
}

uint16_t Rounded(double height) {
  return LM_NearestHeight(std::clamp(height, 0.0, WHITE));
}

// What differs from its surroundings, around the middle.
void KeepDetail(LM_height_plane& plane, double radius, double fit) {
  LM_height_plane around = LM_BoxMeans(plane, radius);
  around = LM_BoxMeans(LM_BoxMeans(around, radius), radius);
  plane = LM_BoxMeans(LM_BoxMeans(plane, radius * FINENESS), radius * FINENESS);
  const double most = std::min(MOST_HEIGHT, (MIDDLE - 1) / fit);
  for (size_t i = 0; i < plane.values.size(); ++i) {
    const int height = plane.values[i] - around.values[i];
    plane.values[i] = Rounded(MIDDLE + fit * (height / (1 + std::abs(height) / most)));
  }
}

} // namespace

LM_height_source LM_ResolvedSource(LM_height_source source, bool hasRelief) {
  const bool isAuto = source.kind == LM_height_kind::Auto;
  if (isAuto) {
    source.kind = hasRelief ? LM_height_kind::Luminance : LM_height_kind::None;
    source.fit = true;
  }
  if (source.smoothing < 0)
    source.smoothing = isAuto ? LM_USUAL_SMOOTHING : 0;
  if (source.detail < 0)
    source.detail = source.fit ? LM_USUAL_DETAIL : 0;
  return source;
}

bool LM_IsPlain(const LM_height_source& source) {
  return source.smoothing == 0 && source.detail == 0 && !source.fit && !source.invert;
}

LM_plane_size LM_PreparedSize(const LM_height_source& source, int pictureWidth, int pictureHeight) {
  const int side = std::max(pictureWidth, pictureHeight);
  if (side <= LM_HEIGHTS_SIDE || (source.smoothing == 0 && source.detail == 0))
    return {pictureWidth, pictureHeight};
  const auto reduced = [side](int length) {
    return std::max(1, (length * LM_HEIGHTS_SIDE + side / 2) / side);
  };
  return {reduced(pictureWidth), reduced(pictureHeight)};
}

void LM_PrepareHeights(const LM_height_source& source, int pictureSide, LM_height_plane& plane) {
  const double side = std::max(plane.width, plane.height);
  const double fit = FitOf(source, pictureSide);
  if (source.smoothing > 0)
    LM_SmoothBetweenEdges(plane, SMOOTHING_RADIUS * side / LM_HEIGHTS_SIDE,
                          source.smoothing * LEVEL);
  if (source.detail > 0)
    KeepDetail(plane, side * source.detail / 1000, fit);
  else if (source.fit)
    for (uint16_t& value : plane.values)
      value = Rounded(MIDDLE + fit * (value - MIDDLE));
  if (source.invert)
    for (uint16_t& value : plane.values)
      value = static_cast<uint16_t>(65535 - value);
}
