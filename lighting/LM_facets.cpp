#include "LM_facets.h"

LM_pixel_facets LM_MakePixelFacets(const LM_bump_map* map, uint32_t x, uint32_t y) {
  int32_t h00, h01, h02, h10, h11, h12, h20, h21, h22;
  LM_GetPixelHeights(map, x, y, h00, h01, h02, h10, h11, h12, h20, h21, h22);
  LM_pixel_facets facets = {};
  int32_t* endX = facets.gradX;
  int32_t* endY = facets.gradY;
  int32_t* endWeight = facets.weight;
  const auto quad = [&](const int32_t& a, const int32_t& b, const int32_t& c, const int32_t& d) {
    LM_GeneratePreviewBumpSample(a, b, c, d, facets.gradX, facets.gradY, facets.weight, &endX,
                                 &endY, &endWeight, facets.count);
  };
  quad(h00, h01, h11, h10);
  quad(h01, h02, h12, h11);
  quad(h11, h12, h22, h21);
  quad(h10, h11, h21, h20);
  return facets;
}

uint32_t LM_MakeFacets(const LM_bump_map* map, const LM_pixel_run& run, const float* columns,
                       float y, const LM_facet_rows& rows) {
  uint32_t sample = 0;
  int32_t* weights = rows.weights;
  for (uint32_t i = 0; i < run.pixels; ++i) {
    const LM_pixel_facets facets = LM_MakePixelFacets(map, run.first + i, run.row);
    for (uint32_t f = 0; f < facets.count; ++f, ++sample) {
      *weights++ = facets.weight[f];
      rows.normals[sample] = LM_FacetNormal(facets.gradX[f], facets.gradY[f]);
      if (rows.positions != nullptr)
        rows.positions[sample] = {columns[i], y};
      for (uint32_t plane = 0; plane < LM_PLANES; ++plane)
        rows.base[LM_PLANES * sample + plane] = run.source[LM_PLANES * i + plane];
    }
    *weights++ = 0;
  }
  return sample;
}

void LM_BlendFacets(const uint8_t* shaded, const int32_t* weights, uint32_t pixels, uint8_t* out) {
  for (; pixels > 0; --pixels, ++weights, out += LM_PLANES) {
    int32_t sums[LM_PLANES] = {};
    for (; *weights != 0; ++weights) {
      for (int32_t& sum : sums)
        sum += *weights * *shaded++;
    }
    for (int plane = 0; plane < LM_PLANES; ++plane)
      out[plane] = static_cast<uint8_t>(sums[plane] >> 4);
  }
}
