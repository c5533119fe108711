#include "LM_height_source.h"

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

LM_height_maker::LM_height_maker(const LM_height_source& source, int pictureSide,
                                 LM_height_plane& plane)
    : _isFittedAlone(source.fit && source.detail <= 0),
      _fit(source.fit ? static_cast<double>(pictureSide) / LM_HEIGHTS_SIDE : 1),
      _isInverted(source.invert), _plane(plane) {
  const double side = std::max(plane.width, plane.height);
  if (source.smoothing > 0)
    _edges.emplace(plane, SMOOTHING_RADIUS * side / LM_HEIGHTS_SIDE, source.smoothing * LEVEL);
  const double radius = side * source.detail / 1000;
  if (source.detail > 0)
    _detail.emplace(plane, radius, radius * FINENESS, _fit,
                    std::min(MOST_HEIGHT, (MIDDLE - 1) / _fit));
}

void LM_height_maker::Advance(int numRows) {
  if (_edges)
    numRows = _edges->Advance(numRows);
  if (_detail)
    numRows = _detail->Advance(numRows);
  uint16_t* const end = _plane.Row(numRows);
  for (uint16_t* value = _plane.Row(_numDone); value < end; ++value) {
    if (_isFittedAlone)
      *value = LM_NearestHeight(std::clamp(MIDDLE + _fit * (*value - MIDDLE), 0.0, WHITE));
    if (_isInverted)
      *value = static_cast<uint16_t>(65535 - *value);
  }
  _numDone = numRows;
}

void LM_PrepareHeights(const LM_height_source& source, int pictureSide, LM_height_plane& plane) {
  LM_height_maker(source, pictureSide, plane).Advance(plane.height);
}
