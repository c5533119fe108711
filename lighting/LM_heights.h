// Relief: one channel of the image read as a field of heights, and the facets that shading makes of
// it.
#pragma once

#include <cstddef>

#include "LM_vectors.h"

// The height field of the current tile. A difference of 4096 across one pixel is a slope of 45
// degrees.
struct LM_bump_map {
  uint32_t capacity; // bytes allocated for heights; never shrinks
  int32_t* heights;  // row-major, `width` a row; owned, through LM_NewPtr
  uint32_t rowBytes; // width * 4
  uint32_t width;
  int32_t scale;        // height gain: twice the amplitude, negative when black is high
  int32_t kernel[5][5]; // written by LM_SetUpHeightFilter
};

// Fills the kernel. Once per run, when the height buffer has been allocated.
void LM_SetUpHeightFilter(LM_bump_map* map);

// The height in the middle of a 3 x 3 block of channel bytes, given by its rows. Wraps at 32 bits.
int32_t LM_WeighHeight(const uint8_t* above, const uint8_t* middle, const uint8_t* below,
                       int32_t scale);

// The same of 16-bit words: 257 times a byte gives the byte's height. In 64 bits.
int32_t LM_WeighHeight(const uint16_t* above, const uint16_t* middle, const uint16_t* below,
                       int32_t scale);

// The height in the middle of a 5 x 5 block of channel bytes, `source` its top-left corner. Only
// the inner 3 x 3 is read, with fixed weights; the kernel is accepted for the callers' sake. Wraps
// at 32 bits.
int32_t LM_FilterHeight(const uint8_t* source, uint32_t rowBytes, int32_t scale,
                        const int32_t kernel[][5]);

// True when the map holds the heights around a tile of `columns` x `rows` pixels.
bool LM_HoldsHeights(const LM_bump_map* map, int columns, int rows);

// The 3 x 3 heights whose top-left is height (x, y); hrc lies c columns and r rows further. No
// bounds test.
inline void LM_GetPixelHeights(const LM_bump_map* map, uint32_t x, uint32_t y, int32_t& h00,
                               int32_t& h01, int32_t& h02, int32_t& h10, int32_t& h11, int32_t& h12,
                               int32_t& h20, int32_t& h21, int32_t& h22) {
  const int32_t* row = map->heights + static_cast<size_t>(y) * map->width + x;
  h00 = row[0], h01 = row[1], h02 = row[2];
  row += map->width;
  h10 = row[0], h11 = row[1], h12 = row[2];
  row += map->width;
  h20 = row[0], h21 = row[1], h22 = row[2];
}

// The unit normal of a facet whose right side is gradX higher than its left, and top gradY higher
// than its bottom. Exactly (0, 0, 1) for a flat one.
LM_vector3f LM_FacetNormal(int32_t gradX, int32_t gradY);

// Makes the sample of one quad of a pixel from its corner heights a (top-left), b (top-right), c
// (bottom- right), d (bottom-left). Appends gradients and the weight 4 at the ends of three lists
// and counts the sample; a flat quad adds its weight to a flat sample that the pixel has already.
// Returns gradient x.
int32_t LM_GeneratePreviewBumpSample(const int32_t& a, const int32_t& b, const int32_t& c,
                                     const int32_t& d, int32_t* firstGradX, int32_t* firstGradY,
                                     int32_t* firstWeight, int32_t** endGradX, int32_t** endGradY,
                                     int32_t** endWeight, uint32_t& count);
