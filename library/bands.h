// Work on the rows of a picture, shared out among threads in bands.
#pragma once

#include "limn.h"

#include "LM_render.h"

#include <functional>

namespace limn {

// Rows [first, last) of a picture.
struct Rows {
  int32_t first, last;
};

// Lights some rows. Called by several threads at once, for different rows; does not throw.
using LightRows = std::function<void(Rows rows, LM_render_scratch& scratch)>;

// Calls `light` for all `rows`, in bands of some `width` × 30 pixels, and the progress function of
// `options` between them. Throws CallFailure: LIMN_NO_MEMORY before anything is lit, LIMN_CANCELLED
// and LIMN_FAILED as the progress function wishes.
void LightInBands(Rows rows, int32_t width, const limn_options& options, const LightRows& light);

} // namespace limn
