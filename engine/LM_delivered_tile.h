// What flat and relief drivers of a tile have in common.
#ifndef LM_DELIVERED_TILE_H
#define LM_DELIVERED_TILE_H

#include "LM_globals.h"

// Marks the per-light caches of the editable lights as filled, once a tile is shaded.
void LM_MarkLightCachesHot(LM_globals* globals);

// The delivered tile's size; rows is 0 when there is nothing to shade.
struct LM_tile_size {
  int rows, columns;
};
LM_tile_size LM_ShadeableTile(const FilterRecord* record);

#endif
