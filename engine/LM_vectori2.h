// Vectors in preview pixels.
#pragma once

#include "LM_vectors.h"

// Horizontal, then vertical, in preview pixels; vertical grows downwards.
struct LM_vectori2 {
  int16_t h, v;

  LM_vector2f Floats() const { return {static_cast<float>(h), static_cast<float>(v)}; }

  // The length, squares summed in single precision and the root taken in double.
  float Magnitude() const;

  friend bool operator==(const LM_vectori2&, const LM_vectori2&) = default;
};
