// Where spots reach in a row of samples, so that no light is worked out where it gives nothing.
//
// With w = (x, y, z) the way from a sample to the lamp, d the lamp's axis and c its cutoff, a
// sample is inside the cone where -(d . w) > c |w|. Along a row only x changes: with k = d.y y +
// d.z z and m = y y + z z the cone's edge is at the roots of
//   (d.x d.x - c c) x x + 2 d.x k x + k k - c c m = 0,
// between them when d.x d.x < c c, and on one side of one of them otherwise.
//
// The shader finds the cosine in single precision. Six roundings and the two of its inverse length
// move it by less than 2^-21 |d|, so with a cutoff that is 2^-19 |d| smaller nothing is left out
// that the shader would light.
#pragma once

#include "LM_height_rows.h"
#include "LM_kernels.h"

// Samples that have the same lights. A multiple of the longest vectors that kernels work on.
constexpr int LM_REACH_PIECE = 64;

// By piece the lights that may give something to one of its samples: bit k for light k of the row.
struct LM_row_reach {
  uint32_t lights[LM_RENDER_BLOCK / LM_REACH_PIECE];

  // The piece after the last one from `piece` on that has the same lights.
  int EndOfRun(int piece, int pieces) const;
};
static_assert(LM_MAX_LIGHTS < 32 && LM_RENDER_BLOCK % LM_REACH_PIECE == 0);

constexpr int LM_ReachPieces(int samples) {
  return (samples + LM_REACH_PIECE - 1) / LM_REACH_PIECE;
}

// Lights that are in their row, in front of `samples` samples at evenly spaced places; at most
// LM_RENDER_BLOCK.
LM_row_reach LM_FindReach(const LM_kernel_lights& row, const float* places, int samples);

// The marked lights of a row, which begin with the same light.
void LM_SelectLights(const LM_kernel_lights& row, uint32_t lights, LM_kernel_lights& selected);
