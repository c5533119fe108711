// What the package's JavaScript calls beside the C library: a picture lit band by band, so that
// WebAssembly's memory holds one band and never the picture.
#pragma once

#include "limn.h"

#include "LM_image.h"

extern "C" {

// A part of a picture, row by row without gaps, lit in place where the area is. kinds: 0 bytes, 1
// words of 16 bits, 2 floats. relief: one component of each pixel of its own part, `relief_step`
// components apart, apart from the pixels; or null for a flat surface. Its part is the band's and
// two more pixels on every side, as far as the picture goes. The JavaScript writes this structure,
// so it is laid out in words of 32 bits there.
struct limn_band {
  uint8_t* pixels;
  int32_t kind;
  LM_rect part;
  const uint8_t* relief;
  int32_t relief_kind, relief_step;
  LM_rect relief_part;
};

// Settings made ready for one size of picture, and room to work in.
struct limn_bands;

// Null with an error. An area of four zeros: all of the picture. fit: the size that the style is
// fitted to, where the area is a reduced copy of one of that size; zeros: the area's own. Freed by
// the caller.
LIMN_API limn_bands* limn_bands_prepare(const limn_settings* settings, int32_t width,
                                        int32_t height, int32_t channels, int32_t x, int32_t y,
                                        int32_t areaWidth, int32_t areaHeight, int32_t fitWidth,
                                        int32_t fitHeight, limn_error* error);
// The picture's channel that the style takes as relief, from 1, or 0.
LIMN_API int32_t limn_bands_own_relief(const limn_bands* bands);
// With an error nothing is lit.
LIMN_API limn_result limn_bands_light(limn_bands* bands, const limn_band* band, limn_error* error);
LIMN_API void limn_bands_free(limn_bands* bands);

// How many of the units that places and lengths of lights are counted in go across a picture.
LIMN_API int32_t limn_preview_width(int32_t width, int32_t height);

// Heights in 16 bits, made of the luminance of a picture, or of a map of its shape in another size.
struct limn_heights {
  const char* source;    // "luminance" as it is, or "auto" for what suits most photographs
  const uint8_t* pixels; // red, green, blue and one more byte each, without gaps
  int32_t width, height;
  int32_t picture_side; // the longer side of the picture at its full size
  uint16_t* out;        // out_width * out_height of them
  int32_t out_width, out_height;
};
LIMN_API limn_result limn_heights_make(const limn_heights* heights, limn_error* error);
}
