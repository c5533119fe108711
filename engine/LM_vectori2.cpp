#include "LM_vectori2.h"

#include "LM_handles.h"

namespace {

LM_vectori2 Whole(LM_vector2f vector) {
  return {static_cast<int16_t>(vector.x), static_cast<int16_t>(vector.y)};
}

} // namespace

float LM_vectori2::Magnitude() const {
  return LM_Length(Floats());
}

LM_vectori2 LM_vectori2::QuarterTurn(float factor) const {
  return Whole(LM_QuarterTurn(Floats(), factor, LM_handle_grid::Whole));
}

LM_vectori2 LM_vectori2::QuarterTurnBack(float factor) const {
  return Whole(LM_QuarterTurnBack(Floats(), factor, LM_handle_grid::Whole));
}
