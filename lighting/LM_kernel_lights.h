// Lights of a block as the vector kernels read them, and which of them vectors light as the plain
// code does.
#pragma once

#include "LM_block.h"
#include "LM_kernels.h"

// The lights that give a surface anything, sorted by kind, not yet in any row; they begin with the
// ambient light. A black one, or one whose place,
// direction or cone is NaN, gives nothing.
struct LM_sorted_lights {
  LM_kernel_lights kernel;
  int source[LM_MAX_LIGHTS]; // each one's place in the block
  uint32_t listed;           // bit j: the block's light j is among them
};
// flat: without those that do not rise above a flat surface. The block outlives the result.
LM_sorted_lights LM_SortLights(const foo& params, bool flat);

// Where samples lie, in shading units: rows from top to bottom, x from left to right.
struct LM_extent {
  float left, right, top, bottom;
};

// Whether no number comes up between a light that is in no row yet, or the lights, and these
// samples that vectors do not treat as the plain code does: a way that is too short or too long.
// Marks the lights that are strong there; a light stays strong.
bool LM_FitsVectors(LM_kernel_light& light, bool directional, const LM_extent& extent);
bool LM_FitVectors(LM_kernel_lights& lights, const LM_extent& extent);

// Puts an omni or a spot into the row of samples at y = place; moved may be the light itself.
inline void LM_MoveToRow(const LM_kernel_light& light, float place, LM_kernel_light& moved) {
  moved.strong = light.strong;
  moved.y = light.y - place;
  moved.ySquare = moved.y * moved.y;
  moved.axisY = light.axisY * moved.y;
}
