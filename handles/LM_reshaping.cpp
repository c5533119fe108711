// What dragging a handle does to its light.
#include <algorithm>
#include <cmath>

#include "LM_arithmetic.h"
#include "LM_handles.h"

namespace {

LM_vector2f Between(LM_vector2f from, LM_vector2f to, LM_handle_grid grid) {
  return {LM_OnGrid(to.x - from.x, grid), LM_OnGrid(to.y - from.y, grid)};
}

// A vector whose end was dragged to `offset`. Without a length, or without a direction, to keep it
// becomes nothing.
LM_vector2f Constrained(LM_vector2f offset, LM_vector2f start, LM_drag_constraint constraint,
                        LM_handle_grid grid) {
  const float length = LM_Length(offset);
  const float startLength = LM_Length(start);
  if (constraint == LM_drag_constraint::KeepDirection) {
    const float ratio = length / startLength;
    return {LM_OnGrid(start.x * ratio, grid), LM_OnGrid(start.y * ratio, grid)};
  }
  if (constraint == LM_drag_constraint::None)
    return offset;
  const auto component = [&](float value) {
    float product = value * startLength;
    // On pixels it is cut to a whole number before it is divided too. That of a long vector is
    // longer than a coordinate.
    if (grid == LM_handle_grid::Whole)
      product = static_cast<float>(LM_Truncate(product));
    return LM_OnGrid(product / length, grid);
  };
  return {component(offset.x), component(offset.y)};
}

bool IsOfFirst(int code) {
  return code == LM_HANDLE_FIRST_BACK || code == LM_HANDLE_FIRST_END;
}
bool IsOfSecond(int code) {
  return code == LM_HANDLE_SECOND_BACK || code == LM_HANDLE_SECOND_END;
}

// From the centre to the end of the axis whose handle is dragged to `point`.
LM_vector2f AxisTo(LM_vector2f point, const LM_light_figure& figure, int code,
                   LM_handle_grid grid) {
  const bool back = code == LM_HANDLE_FIRST_BACK || code == LM_HANDLE_SECOND_BACK;
  return back ? Between(point, figure.center, grid) : Between(figure.center, point, grid);
}

void ReshapeOmni(LM_light_figure& figure, int code, LM_vector2f point, LM_handle_grid grid) {
  const LM_vector2f offset = AxisTo(point, figure, code, grid);
  if (IsOfFirst(code))
    figure.radius = offset.x;
  else if (IsOfSecond(code))
    figure.radius = offset.y;
  figure.radius = std::max(figure.radius, 1.0F);
}

void ReshapeSpot(LM_light_figure& figure, int code, LM_vector2f point,
                 LM_drag_constraint constraint, LM_handle_grid grid) {
  const LM_vector2f offset = AxisTo(point, figure, code, grid);
  if (IsOfFirst(code)) {
    figure.handle1 = Constrained(offset, figure.handle1, constraint, grid);
    figure.handle2 = LM_SecondAxis(figure.handle1, figure.handle2, grid);
  } else if (IsOfSecond(code)) {
    figure.handle2 = Constrained(offset, figure.handle2, constraint, grid);
    const float length = LM_Length(figure.handle2);
    // An axis without length has no direction that the first one could stand on.
    if (length == 0)
      return;
    const float ratio = std::max(LM_Length(figure.handle1) / length, 1.0F);
    figure.handle1 = LM_QuarterTurn(figure.handle2, -ratio, grid);
  }
}

float Rounded(float length, LM_handle_grid grid) {
  if (grid == LM_handle_grid::Fractions)
    return LM_OnGrid(length, grid);
  return static_cast<float>(LM_Cut16(LM_Truncate(std::round(length))));
}

} // namespace

LM_light_figure LM_ReshapeLight(const LM_light_figure& start, int code, LM_vector2f point,
                                LM_drag_constraint constraint, LM_handle_grid grid) {
  LM_light_figure figure = start;
  if (figure.type == LM_LIGHT_DIRECTIONAL) {
    figure.handle1 =
        Constrained(Between(start.center, point, grid), start.handle1, constraint, grid);
  } else if (figure.type == LM_LIGHT_OMNI) {
    ReshapeOmni(figure, code, point, grid);
  } else if (figure.type == LM_LIGHT_SPOT) {
    ReshapeSpot(figure, code, point, constraint, grid);
  }
  return figure;
}

LM_vector2f LM_SecondAxis(LM_vector2f first, LM_vector2f second, LM_handle_grid grid) {
  return LM_QuarterTurn(first, std::min(LM_Length(second) / LM_Length(first), 1.0F), grid);
}

float LM_Length(LM_vector2f vector) {
  return static_cast<float>(
      std::sqrt(static_cast<double>(vector.x * vector.x + vector.y * vector.y)));
}

LM_vector2f LM_QuarterTurn(LM_vector2f vector, float factor, LM_handle_grid grid) {
  return {Rounded(-factor * vector.y, grid), Rounded(factor * vector.x, grid)};
}
