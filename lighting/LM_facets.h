// Rows of relief samples: making them from heights, and blending them back into pixels.
#ifndef LM_FACETS_H
#define LM_FACETS_H

#include "LM_heights.h"

// Where the samples of one run of pixels are written, all indexed by sample; weights holds one more
// entry per pixel, the 0 behind its weights. Positions are left alone when null.
struct LM_facet_rows {
  LM_vector2f* positions;
  LM_vector3f* normals;
  int32_t* weights;
  uint8_t* base;
};

// A run of pixels of a tile row: `pixels` of them from column `first` of row `row`, their colours
// in `source`, their first sample's position from `x(column)` and y.
struct LM_pixel_run {
  uint32_t row, first, pixels;
  const uint8_t* source;
};

// Makes the samples of the run. Returns how many; at most four a pixel.
// placeX(column): x of a pixel, in shading units.
template <class PlaceX>
uint32_t LM_MakeFacets(const LM_bump_map* map, const LM_pixel_run& run, float y, PlaceX placeX,
                       const LM_facet_rows& rows);

// The samples of one pixel: gradients and weights of up to four facets.
struct LM_pixel_facets {
  int32_t gradX[4], gradY[4], weight[4];
  uint32_t count;
};
LM_pixel_facets LM_MakePixelFacets(const LM_bump_map* map, uint32_t x, uint32_t y);

// The samples that the next `pixels` pixels of a weights list have.
uint32_t LM_CountFacets(const int32_t* weights, uint32_t pixels);

// Blends each pixel's shaded samples by weight into 3 bytes a pixel.
void LM_BlendFacets(const uint8_t* shaded, const int32_t* weights, uint32_t pixels, uint8_t* out);

template <class PlaceX>
uint32_t LM_MakeFacets(const LM_bump_map* map, const LM_pixel_run& run, float y, PlaceX placeX,
                       const LM_facet_rows& rows) {
  uint32_t sample = 0;
  int32_t* weights = rows.weights;
  for (uint32_t i = 0; i < run.pixels; ++i) {
    const uint32_t column = run.first + i;
    const LM_pixel_facets facets = LM_MakePixelFacets(map, column, run.row);
    const float x = placeX(static_cast<int>(column));
    for (uint32_t f = 0; f < facets.count; ++f, ++sample) {
      *weights++ = facets.weight[f];
      rows.normals[sample] = LM_FacetNormal(facets.gradX[f], facets.gradY[f]);
      if (rows.positions != nullptr)
        rows.positions[sample] = {x, y};
      for (uint32_t plane = 0; plane < LM_PLANES; ++plane)
        rows.base[LM_PLANES * sample + plane] = run.source[LM_PLANES * i + plane];
    }
    *weights++ = 0;
  }
  return sample;
}

#endif
