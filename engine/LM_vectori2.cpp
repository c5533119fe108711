#include "LM_vectori2.h"

#include <cmath>

#include "LM_arithmetic.h"

namespace {

// The product's sign is decided by the component, so that a product of 0 rounds like its component.
int16_t RoundProduct(float factor, int16_t component, bool up) {
  const double product = static_cast<double>(factor * static_cast<float>(component));
  return LM_Cut16(LM_Truncate(up ? product + 0.5 : product - 0.5));
}

} // namespace

float LM_vectori2::Magnitude() const {
  const float x = static_cast<float>(h);
  const float y = static_cast<float>(v);
  return static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y)));
}

LM_vectori2 LM_vectori2::QuarterTurn(float factor) const {
  return {RoundProduct(-factor, v, v < 0), RoundProduct(factor, h, h >= 0)};
}

LM_vectori2 LM_vectori2::QuarterTurnBack(float factor) const {
  return {RoundProduct(factor, v, v >= 0), RoundProduct(-factor, h, h < 0)};
}
