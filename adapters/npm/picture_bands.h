// What the package's JavaScript calls beside the C library: a picture lit band by band, so that
// WebAssembly's memory holds one band and never the picture.
#pragma once

#include "limn.h"

extern "C" {

// Whole rows [first, last) of a picture, lit in place where the area is. kinds: 0 bytes, 1 words of
// 16 bits, 2 floats. relief: one component of each pixel of its rows, `relief_step` components
// apart, apart from the pixels; or null for a flat surface. Its rows are the band's and two more on
// either side, as far as the picture goes. The JavaScript writes this structure, so it is laid out
// in words of 32 bits there.
struct limn_band {
  uint8_t* pixels;
  int32_t kind, first, last;
  const uint8_t* relief;
  int32_t relief_kind, relief_step, relief_first, relief_last;
};

// Settings made ready for one size of picture, and room to work in.
struct limn_bands;

// Null with an error. An area of four zeros: all of the picture. Freed by the caller.
LIMN_API limn_bands* limn_bands_prepare(const limn_settings* settings, int32_t width,
                                        int32_t height, int32_t channels, int32_t x, int32_t y,
                                        int32_t areaWidth, int32_t areaHeight, limn_error* error);
// The picture's channel that the style takes as relief, from 1, or 0.
LIMN_API int32_t limn_bands_own_relief(const limn_bands* bands);
// With an error nothing is lit.
LIMN_API limn_result limn_bands_light(limn_bands* bands, const limn_band* band, limn_error* error);
LIMN_API void limn_bands_free(limn_bands* bands);
}
