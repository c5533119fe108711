// The rows that a run of samples is worked out in.
#ifndef LM_SAMPLE_ROWS_H
#define LM_SAMPLE_ROWS_H

#include "LM_vectors.h"

// Rows that the shaders work in when there are no caches.
struct LM_scratch_rows {
  LM_vector2f positions[LM_MAX_RUN];
  LM_vector3f normals[LM_MAX_RUN];
  struct {
    LM_color96 diffuseSums[LM_MAX_RUN];
    LM_color96 specularSums[LM_MAX_RUN];
    int32_t combined[LM_PLANES * LM_MAX_RUN];
  } sums;
  int32_t weights[LM_MAX_RUN + LM_MAX_RELIEF_PIXELS]; // a 0 behind each pixel's run
  struct {
    uint8_t base[LM_PLANES * LM_MAX_RUN];
    uint8_t shaded[LM_PLANES * LM_MAX_RUN];
  } colors;
};
static_assert(sizeof(LM_scratch_rows::positions) == 8192 &&
              sizeof(LM_scratch_rows::normals) == 12288 && sizeof(LM_scratch_rows::sums) == 45056 &&
              sizeof(LM_scratch_rows::weights) == 5120 && sizeof(LM_scratch_rows::colors) == 6144);

#endif
