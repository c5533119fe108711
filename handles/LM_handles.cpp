// Where the handles are, and which of them lies under a point.
#include "LM_handles.h"

#include <algorithm>

#include "LM_arithmetic.h"

namespace {

constexpr float FIRST = INT16_MIN, LAST = INT16_MAX;
constexpr int GRAB_REACH = 2, CENTER_REACH = 3;

// The pixels from `first` to just before `end` that a handle covers in one direction: fewer at the
// end of 16 bits.
struct Extent {
  int first, end;
  Extent(float middle, int reach)
      : first(LM_Saturate16(LM_Truncate(middle) - reach)),
        end(LM_Saturate16(LM_Truncate(middle) + reach + 1)) {}
  bool Holds(float pixel) const { return LM_Truncate(pixel) >= first && LM_Truncate(pixel) < end; }
  int Length() const { return end - first; }
  // From the middle of the extent to that of the pixel, in halves of a pixel.
  int Halves(float pixel) const { return 2 * (LM_Truncate(pixel) - first) + 1 - Length(); }
};

} // namespace

float LM_OnGrid(float length, LM_handle_grid grid) {
  if (grid == LM_handle_grid::Whole)
    return static_cast<float>(LM_Saturate16(LM_Truncate(length)));
  // Adding 0 makes 0 of -0, which would be written with its sign.
  return length == length ? std::clamp(length, FIRST, LAST) + 0.0F : 0.0F;
}

LM_grab_handles LM_GrabHandlesOf(const LM_light_figure& figure, LM_handle_grid grid,
                                 float endInset) {
  LM_grab_handles grab;
  const auto add = [&](LM_handle_code code, float dx, float dy) {
    grab.handles[grab.count++] = {
        code, {LM_OnGrid(figure.center.x + dx, grid), LM_OnGrid(figure.center.y + dy, grid)}};
  };
  const LM_vector2f& first = figure.handle1;
  const LM_vector2f& second = figure.handle2;
  const float end = figure.radius - endInset;
  switch (figure.type) {
  case LM_LIGHT_DIRECTIONAL:
    add(LM_HANDLE_FIRST_BACK, first.x, first.y);
    break;
  case LM_LIGHT_OMNI:
    add(LM_HANDLE_FIRST_BACK, -figure.radius, 0);
    add(LM_HANDLE_FIRST_END, end, 0);
    add(LM_HANDLE_SECOND_BACK, 0, -figure.radius);
    add(LM_HANDLE_SECOND_END, 0, end);
    break;
  case LM_LIGHT_SPOT:
    add(LM_HANDLE_FIRST_BACK, -first.x, -first.y);
    add(LM_HANDLE_FIRST_END, first.x, first.y);
    add(LM_HANDLE_SECOND_BACK, -second.x, -second.y);
    add(LM_HANDLE_SECOND_END, second.x, second.y);
    break;
  default:
    break;
  }
  return grab;
}

LM_handle_code LM_GrabHandleAtPixel(const LM_light_figure& figure, LM_vector2f pixel) {
  const LM_grab_handles grab = LM_GrabHandlesOf(figure, LM_handle_grid::Whole);
  for (int i = 0; i < grab.count; ++i) {
    const LM_vector2f& middle = grab.handles[i].place;
    if (Extent(middle.x, GRAB_REACH).Holds(pixel.x) && Extent(middle.y, GRAB_REACH).Holds(pixel.y))
      return grab.handles[i].code;
  }
  return LM_HANDLE_NONE;
}

// The pixel's middle lies in the oval that touches the sides of its box.
bool LM_CenterCoversPixel(const LM_light_figure& figure, LM_vector2f pixel) {
  const Extent across(figure.center.x, CENTER_REACH);
  const Extent down(figure.center.y, CENTER_REACH);
  if (!across.Holds(pixel.x) || !down.Holds(pixel.y))
    return false;
  const int dx = across.Halves(pixel.x) * down.Length();
  const int dy = down.Halves(pixel.y) * across.Length();
  const int limit = across.Length() * down.Length();
  return dx * dx + dy * dy <= limit * limit;
}

LM_light_hit LM_NearestHandle(const LM_light_figure* figures, int count, int selected,
                              LM_vector2f point, float reach) {
  LM_light_hit hit = {-1, LM_HANDLE_NONE};
  // Takes the nearer ones; of two at the same distance the first stays.
  const auto consider = [&](LM_vector2f place, int light, LM_handle_code code) {
    const float distance = LM_Length({place.x - point.x, place.y - point.y});
    if (distance < reach || (hit.light < 0 && distance == reach)) {
      reach = distance;
      hit = {light, code};
    }
  };
  if (selected >= 0 && selected < count) {
    const LM_light_figure& figure = figures[selected];
    const LM_grab_handles grab = LM_GrabHandlesOf(figure, LM_handle_grid::Fractions);
    for (int i = 0; i < grab.count; ++i)
      consider(grab.handles[i].place, selected, grab.handles[i].code);
    consider(figure.center, selected, LM_HANDLE_CENTER);
    if (hit.light >= 0)
      return hit;
  }
  for (int i = 0; i < count; ++i)
    if (i != selected)
      consider(figures[i].center, i, LM_HANDLE_CENTER);
  return hit;
}
