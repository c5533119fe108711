#include "LM_delivered_tile.h"

#include "LM_arithmetic.h"

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
