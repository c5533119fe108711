// Vectors in preview pixels.
#pragma once

#include "LM_export.h"
#include "LM_vectors.h"

// Horizontal, then vertical, in preview pixels; vertical grows downwards.
struct LM_vectori2 {
  int16_t h, v;

  LM_vector2f Floats() const { return {static_cast<float>(h), static_cast<float>(v)}; }

  // The length, squares summed in single precision and the root taken in double.
  LM_EXPORT float Magnitude() const;

  // This vector turned a quarter, from h towards v, and scaled by `factor`: each component rounded
  // to the nearest integer, halves away from zero. Turning (h, v) gives (-v, h).
  LM_EXPORT LM_vectori2 QuarterTurn(float factor) const;
  // The same turned the other way: (v, -h).
  LM_EXPORT LM_vectori2 QuarterTurnBack(float factor) const;

  friend bool operator==(const LM_vectori2&, const LM_vectori2&) = default;
};
