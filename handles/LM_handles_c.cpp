#include "LM_handles_c.h"

#include <algorithm>
#include <iterator>

#include "LM_arithmetic.h"
#include "LM_handles.h"

namespace {

LM_light_figure FigureAt(const float* values) {
  LM_light_figure figure = {};
  figure.type = LM_Truncate(values[0]);
  figure.center = {values[1], values[2]};
  figure.handle1 = {values[3], values[4]};
  figure.handle2 = {values[5], values[6]};
  figure.radius = values[7];
  return figure;
}

void Store(const LM_light_figure& figure, float* values) {
  const float stored[] = {figure.center.x,  figure.center.y,  figure.handle1.x, figure.handle1.y,
                          figure.handle2.x, figure.handle2.y, figure.radius};
  std::copy(std::begin(stored), std::end(stored), values + 1);
}

} // namespace

int LM_figure_handles(const float* values, float* handles) {
  const LM_light_figure figure = FigureAt(values);
  const LM_grab_handles grab = LM_GrabHandlesOf(figure, LM_handle_grid::Fractions);
  const auto put = [&](LM_handle_code code, LM_vector2f place) {
    *handles++ = code;
    *handles++ = place.x;
    *handles++ = place.y;
  };
  for (int i = 0; i < grab.count; ++i)
    put(grab.handles[i].code, grab.handles[i].place);
  put(LM_HANDLE_CENTER, figure.center);
  return grab.count + 1;
}

int LM_figures_hit(const float* values, int count, int selected, float x, float y, float reach) {
  LM_light_figure figures[LM_MAX_LIGHTS];
  count = std::clamp(count, 0, LM_MAX_LIGHTS);
  for (int i = 0; i < count; ++i)
    figures[i] = FigureAt(values + i * LM_FIGURE_FLOATS);
  const LM_light_hit hit = LM_NearestHandle(figures, count, selected, {x, y}, reach);
  return hit.light < 0 ? 0 : 8 * hit.light + hit.code;
}

void LM_figure_drag(float* values, int code, float x, float y, int constraint) {
  const LM_light_figure start = FigureAt(values);
  const LM_drag_constraint kept = constraint == 1   ? LM_drag_constraint::KeepDirection
                                  : constraint == 2 ? LM_drag_constraint::KeepLength
                                                    : LM_drag_constraint::None;
  LM_light_figure figure = start;
  if (code == LM_HANDLE_CENTER)
    figure.center = {LM_OnGrid(x, LM_handle_grid::Fractions),
                     LM_OnGrid(y, LM_handle_grid::Fractions)};
  else if (code > LM_HANDLE_CENTER && code <= LM_HANDLE_SECOND_END)
    figure = LM_ReshapeLight(start, code, {x, y}, kept, LM_handle_grid::Fractions);
  Store(figure, values);
}

void LM_figure_validate(float* values) {
  LM_light_figure figure = FigureAt(values);
  if (figure.type == LM_LIGHT_SPOT)
    figure.handle2 = LM_SecondAxis(figure.handle1, figure.handle2, LM_handle_grid::Fractions);
  Store(figure, values);
}
