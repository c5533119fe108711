// The rows of samples that a driver works in, and which of them are kept.
#pragma once

#include "LM_block.h"
#include "LM_facets.h"

// Rows that the shaders work in when there are no caches.
struct LM_scratch_rows {
  LM_vector2f positions[LM_MAX_RUN];
  LM_vector3f normals[LM_MAX_RUN];
  struct {
    LM_color96 diffuseSums[LM_MAX_RUN];
    LM_color96 specularSums[LM_MAX_RUN];
    int32_t combined[LM_PLANES * LM_MAX_RUN];
  } sums;
  int32_t weights[LM_MAX_RUN + LM_MAX_RELIEF_PIXELS]; // a 0 after each pixel's run
  struct {
    uint8_t base[LM_PLANES * LM_MAX_RUN];
    uint8_t shaded[LM_PLANES * LM_MAX_RUN];
  } colors;
};
static_assert(sizeof(LM_scratch_rows::positions) == 8192 &&
              sizeof(LM_scratch_rows::normals) == 12288 && sizeof(LM_scratch_rows::sums) == 45056 &&
              sizeof(LM_scratch_rows::weights) == 5120 && sizeof(LM_scratch_rows::colors) == 6144);

// Scratch rows are used again for every run of samples. Arrays that are kept hold one run after the
// other for a whole tile, and may hold it already. Nothing is owned.
struct LM_sample_store {
  LM_facet_rows rows; // of a flat surface only the positions
  LM_color96 *diffuse, *specular;
  uint32_t* counts;         // samples of each run; kept when it is not null
  LM_scratch_rows* scratch; // what is not kept, and the combination
  bool keepsPositions, keepsNormals, keepsWeights, keepsBase, keepsSums;
  // What a kept array holds from an earlier pass over the same tile.
  bool positionsReady, samplesReady, sumsReady;
  // The block whose lights' caches go on with the samples; null when its lights have none.
  foo* advancing;

  bool KeepsNothing() const {
    return !(keepsPositions || keepsNormals || keepsWeights || keepsBase || keepsSums) &&
           counts == nullptr && advancing == nullptr;
  }
  // Goes on to the next run.
  void Next(uint32_t samples, uint32_t pixels);
};

// One that keeps nothing.
LM_sample_store LM_ScratchStore(LM_scratch_rows& scratch);
