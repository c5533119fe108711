// Pixels of more than 8 bits: in, out, and the plain arithmetic that lights them.
//
// A component c counts 255 for white: a 16-bit one divided by 257, a float times 255, which may lie
// outside 0 to 255. With the sums D and S of what lights give, ambient light A, gloss g, material m
// and exposure e, all in single precision and in the order written,
//   light = A + D,   shine = (S / 256) g
//   acc = light c + shine 255                                 for m below 1
//   acc = (light + shine) c                                   for m above 255
//   acc = light c + shine ((c m + (256 - m) 255) / 256)       otherwise
//   out = (acc e) / 2^23
// and in relief ((o0 + o1) + (o2 + o3)) / 4 of the four facets' results, clockwise from the top
// left, of which none ends at white on its own. It is what the arithmetic of bytes does without
// rounding to integers on the way, so a byte v and the word 257 v give results that differ by what
// those roundings cut.
#pragma once

#include "LM_block.h"
#include "LM_height_rows.h"

// What deep rows are worked out in. Cleared before it is used, since vectors read beyond a row's
// end.
struct LM_deep_buffers {
  LM_row_ring<uint16_t> taps;
  alignas(64) float planes[LM_PLANES][LM_RENDER_BLOCK + LM_KERNEL_SLACK];

  LM_deep_planes Planes(int first) {
    return {{planes[0] + first, planes[1] + first, planes[2] + first}};
  }
};

// n pixels, `step` bytes apart, to planes. kind: not bytes. NaN counts as 0, and what is beyond the
// largest number as that.
void LM_LoadDeep(const uint8_t* pixels, ptrdiff_t step, LM_pixel_kind kind, int n,
                 const LM_deep_planes& planes);
// And back, leaving what lies between. Words are rounded to nearest, ties to even, and end at black
// and white; floats do not end. NaN is stored as 0.
void LM_StoreDeep(const LM_deep_planes& planes, int n, LM_pixel_kind kind, uint8_t* pixels,
                  ptrdiff_t step);

// Lights n pixels with all lights of the block. columns, y: their places. heights: three rows, each
// starting one pixel to the left; null for a flat surface.
void LM_LightDeepPixels(const foo& params, const float* columns, float y, int n,
                        const int32_t* const* heights, const LM_deep_planes& planes);
