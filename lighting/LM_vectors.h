// The small types that light is computed in.
#pragma once

#include <cstdint>

// The program's boolean: 0 false, 1 true. Some rules tell "exactly 1" from "not 0", so it stays an
// integer.
using LM_bool = int32_t;

// A point of the image plane, or a vector in it. Shading units: the filter rectangle is
// `worldScale` of them wide, its centre is the origin, y grows downwards.
struct LM_vector2f {
  float x, y;
};

// The same with the height above the image plane, z growing towards the viewer.
struct LM_vector3f {
  float x, y, z;
};

// A colour in plane order, 65535 is full.
struct LM_color48 {
  uint16_t component[3];
};

// Three signed sums or factors in plane order. Arrays of sums are walked with this 16-byte stride;
// the fourth word holds nothing and is never read.
struct LM_color96 {
  int32_t component[3];
  int32_t unused;
};
static_assert(sizeof(LM_color96) == 16);

// The same for pixels of more than 8 bits, whose sums of light are not rounded to integers.
struct LM_deep_color {
  float component[3];
};

constexpr int LM_PLANES = 3;
constexpr int LM_MAX_LIGHTS = 16;
// No run of samples is longer: every fixed row buffer holds this many.
constexpr int LM_MAX_RUN = 1024;
// Four facets a pixel: the longest row of relief pixels that fits a run.
constexpr int LM_MAX_RELIEF_PIXELS = LM_MAX_RUN / 4;
