#include "LM_light_sums.h"

void LM_ClearSums(LM_color96* sums, int n) {
  for (int i = 0; i < n; ++i)
    sums[i] = {};
}

void LM_AddSums(const LM_color96* part, int n, LM_color96* sums) {
  for (int i = 0; i < n; ++i) {
    for (int plane = 0; plane < LM_PLANES; ++plane)
      sums[i].component[plane] = LM_WrapAdd(sums[i].component[plane], part[i].component[plane]);
    // Added like the others, so that a sum is one vector.
    sums[i].unused = LM_WrapAdd(sums[i].unused, part[i].unused);
  }
}

void LM_AdvanceLightCaches(foo* params, uint32_t n) {
  for (int j = 0; j < LM_LightCount(params); ++j) {
    LM_light& light = params->lights[j];
    if (light.diffuseCache != nullptr)
      light.diffuseCache += n;
    if (light.specularCache != nullptr)
      light.specularCache += n;
  }
}

void LM_MarkLightCachesHot(LM_globals* globals) {
  for (int i = LM_MAX_LIGHTS - 1; i >= 0; --i) {
    globals->lights[i].DiffuseCacheHot(1);
    globals->lights[i].SpecularCacheHot(1);
  }
}

LM_tile_size LM_ShadeableTile(const FilterRecord* record) {
  const CVRect& area = record->filterArea;
  const CVRect& tile = record->inTileRect;
  if (record->inPixels == nullptr || record->outPixels == nullptr)
    return {0, 0};
  if (area.bottom - area.top < 1 || area.right - area.left < 1)
    return {0, 0};
  const int rows = LM_Cut16(tile.bottom - tile.top);
  const int columns = LM_Cut16(tile.right - tile.left);
  if (rows < 1 || columns < 1 || columns > LM_MAX_RUN)
    return {0, 0};
  return {rows, columns};
}
