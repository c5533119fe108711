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

// The size of a band: as many whole rows as have BAND_PIXELS, and never fewer than LEAST_BAND_ROWS.
// Small enough for a prompt stop and an even share, large enough that neither the start of a band
// nor that of a thread counts.
constexpr int32_t BAND_PIXELS = 1 << 16;
constexpr int32_t LEAST_BAND_ROWS = 16;

// Calls `light` for all `rows`, band by band, and the progress function of `options` between bands.
// Throws CallFailure: LIMN_NO_MEMORY before anything is lit, LIMN_CANCELLED and LIMN_FAILED as the
// progress function wishes.
void LightInBands(Rows rows, int32_t width, const limn_options& options, const LightRows& light);

} // namespace limn
