// What dragging a handle does to its light.
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

float RadiusAt(const LM_light_figure& start, int code, LM_vector2f point, LM_handle_grid grid) {
  const LM_vector2f offset = Between(start.center, point, grid);
  const LM_vector2f back = Between(point, start.center, grid);
  switch (code) {
  case LM_HANDLE_FIRST_BACK:
    return back.x;
  case LM_HANDLE_SECOND_BACK:
    return back.y;
  case LM_HANDLE_FIRST_END:
    return offset.x;
  case LM_HANDLE_SECOND_END:
    return offset.y;
  default:
    return start.radius;
  }
}

void ReshapeSpot(LM_light_figure& figure, int code, LM_vector2f point,
                 LM_drag_constraint constraint, LM_handle_grid grid) {
  const bool back = code == LM_HANDLE_FIRST_BACK || code == LM_HANDLE_SECOND_BACK;
  const LM_vector2f offset =
      back ? Between(point, figure.center, grid) : Between(figure.center, point, grid);
  if (code == LM_HANDLE_FIRST_BACK || code == LM_HANDLE_FIRST_END) {
    figure.handle1 = Constrained(offset, figure.handle1, constraint, grid);
    figure.handle2 = LM_SecondAxis(figure.handle1, figure.handle2, grid);
  } else if (code == LM_HANDLE_SECOND_BACK || code == LM_HANDLE_SECOND_END) {
    figure.handle2 = Constrained(offset, figure.handle2, constraint, grid);
    const float length = LM_Length(figure.handle2);
    // An axis without length has no direction that the first one could stand on.
    if (length == 0)
      return;
    const float ratio = LM_Length(figure.handle1) / length;
    figure.handle1 = LM_QuarterTurnBack(figure.handle2, ratio < 1.0F ? 1.0F : ratio, grid);
  }
}

// The product's sign is decided by the component, so that a product of 0 rounds like its component.
float Product(float factor, float component, bool up, LM_handle_grid grid) {
  const float product = factor * component;
  if (grid == LM_handle_grid::Fractions)
    return LM_OnGrid(product, grid);
  const double wide = static_cast<double>(product);
  return static_cast<float>(LM_Cut16(LM_Truncate(up ? wide + 0.5 : wide - 0.5)));
}

} // namespace

LM_light_figure LM_ReshapeLight(const LM_light_figure& start, int code, LM_vector2f point,
                                LM_drag_constraint constraint, LM_handle_grid grid) {
  LM_light_figure figure = start;
  if (figure.type == LM_LIGHT_DIRECTIONAL) {
    figure.handle1 =
        Constrained(Between(start.center, point, grid), start.handle1, constraint, grid);
  } else if (figure.type == LM_LIGHT_OMNI) {
    figure.radius = RadiusAt(start, code, point, grid);
    if (figure.radius < 1)
      figure.radius = 1;
  } else if (figure.type == LM_LIGHT_SPOT) {
    ReshapeSpot(figure, code, point, constraint, grid);
  }
  return figure;
}

LM_vector2f LM_SecondAxis(LM_vector2f first, LM_vector2f second, LM_handle_grid grid) {
  float ratio = LM_Length(second) / LM_Length(first);
  if (ratio >= 1.0F)
    ratio = 1.0F;
  return LM_QuarterTurn(first, ratio, grid);
}

float LM_Length(LM_vector2f vector) {
  return static_cast<float>(
      std::sqrt(static_cast<double>(vector.x * vector.x + vector.y * vector.y)));
}

LM_vector2f LM_QuarterTurn(LM_vector2f vector, float factor, LM_handle_grid grid) {
  return {Product(-factor, vector.y, vector.y < 0, grid),
          Product(factor, vector.x, vector.x >= 0, grid)};
}

LM_vector2f LM_QuarterTurnBack(LM_vector2f vector, float factor, LM_handle_grid grid) {
  return {Product(factor, vector.y, vector.y >= 0, grid),
          Product(-factor, vector.x, vector.x < 0, grid)};
}
