#include "LM_style_lengths.h"

#include <algorithm>
#include <cmath>

#include "LM_arithmetic.h"

namespace {

template <class Change> void ForLengths(LM_style_light& light, Change change) {
  for (LM_vector2f* vector : {&light.center, &light.handle1, &light.handle2})
    *vector = {change(vector->x), change(vector->y)};
  light.radius = change(light.radius);
}

// Lengths keep to what 16 bits hold, so that no later sum or product of them overflows.
float Scaled(float length, float factor) {
  return std::clamp(length * factor, static_cast<float>(INT16_MIN), static_cast<float>(INT16_MAX));
}

} // namespace

int16_t LM_TranslateWorldUnits(int16_t value, int16_t fromUnit, int16_t toUnit) {
  if (fromUnit == 0)
    return 0;
  const int32_t half = fromUnit / 2;
  const int32_t product = value * toUnit;
  return LM_Cut16((product + (value < 0 ? -half : half)) / fromUnit);
}

LM_style_light LM_TranslateLight(const LM_style_light& light, int16_t fromUnit, int16_t toUnit) {
  LM_style_light out = light;
  const float factor =
      fromUnit == 0 ? 0.0F : static_cast<float>(toUnit) / static_cast<float>(fromUnit);
  if (LM_HasFractions(light))
    ForLengths(out, [&](float length) { return Scaled(length, factor); });
  else
    ForLengths(out, [&](float length) {
      return static_cast<float>(LM_TranslateWorldUnits(LM_WholeLength(length), fromUnit, toUnit));
    });
  return out;
}

int16_t LM_WholeLength(float length) {
  return LM_Saturate16(LM_Truncate(std::round(length)));
}

LM_vectori2 LM_WholeLengths(const LM_vector2f& lengths) {
  return {LM_WholeLength(lengths.x), LM_WholeLength(lengths.y)};
}

bool LM_HasFractions(const LM_style_light& light) {
  bool found = false;
  LM_style_light copy = light;
  ForLengths(copy, [&](float length) {
    found = found || static_cast<float>(LM_WholeLength(length)) != length;
    return length;
  });
  return found;
}

bool LM_HasFractions(const LM_style& style) {
  return std::any_of(style.lights, style.lights + std::min<int>(style.lightsRead, LM_MAX_LIGHTS),
                     [](const LM_style_light& light) { return LM_HasFractions(light); });
}
