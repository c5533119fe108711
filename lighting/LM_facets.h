// Rows of relief samples: making them from heights, and blending them back into pixels.
#pragma once

#include "LM_heights.h"

// Where the samples of one run of pixels are written, all indexed by sample; weights holds one more
// entry per pixel, the 0 after its weights. Positions are left alone when null.
struct LM_facet_rows {
  LM_vector2f* positions;
  LM_vector3f* normals;
  int32_t* weights;
  uint8_t* base;
};

// A run of pixels of a tile row: `pixels` of them from column `first` of row `row`, their colours
// in `source`, three bytes each.
struct LM_pixel_run {
  uint32_t row, first, pixels;
  const uint8_t* source;
};

// Makes the samples of the run. Returns how many; at most four a pixel.
// columns: x of each of its pixels, y of all, in shading units.
uint32_t LM_MakeFacets(const LM_bump_map* map, const LM_pixel_run& run, const float* columns,
                       float y, const LM_facet_rows& rows);

// The samples of one pixel: gradients and weights of up to four facets.
struct LM_pixel_facets {
  int32_t gradX[4], gradY[4], weight[4];
  uint32_t count;
};
LM_pixel_facets LM_MakePixelFacets(const LM_bump_map* map, uint32_t x, uint32_t y);

// Blends each pixel's shaded samples by weight into 3 bytes a pixel.
void LM_BlendFacets(const uint8_t* shaded, const int32_t* weights, uint32_t pixels, uint8_t* out);
