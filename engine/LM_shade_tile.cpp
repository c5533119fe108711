// The flat tile driver.
#include "LM_delivered_tile.h"
#include "LM_host_services.h"
#include "LM_light_sums.h"
#include "LM_shader.h"
#include "LM_vector_sums.h"

namespace {

// Where a tile's positions and sums are kept: in the caches that exist, whole tile behind whole
// tile, or in one row that is used again and again.
struct FlatRows {
  explicit FlatRows(LM_globals& g)
      : keepPositions(g.UsePosCache() == 1), positionsReady(keepPositions && g.PosCacheHot() == 1),
        keepSums(g.UseDiffuseSumCache() == 1 && g.UseSpecularSumCache() == 1),
        sumsReady(keepSums && g.DiffuseSumCacheHot() == 1 && g.SpecularSumCacheHot() == 1),
        positions(keepPositions ? g.PosCache() : g.scratch.positions),
        diffuse(keepSums ? g.DiffuseSumCache() : g.scratch.sums.diffuseSums),
        specular(keepSums ? g.SpecularSumCache() : g.scratch.sums.specularSums) {}

  void NextRow(int columns) {
    if (keepPositions)
      positions += columns;
    if (keepSums) {
      diffuse += columns;
      specular += columns;
    }
  }

  bool keepPositions, positionsReady, keepSums, sumsReady;
  LM_vector2f* positions;
  LM_color96* diffuse;
  LM_color96* specular;
};

} // namespace

void LM_ShadeTile(FilterRecord* record, LM_globals* globals) {
  const LM_tile_size tile = LM_ShadeableTile(record);
  foo* params = LM_Parameters(record);
  if (tile.rows == 0 || params == nullptr)
    return;
  const LM_sample_grid grid(LM_RectOf(record->filterArea), LM_RectOf(record->inTileRect), params);
  FlatRows rows(*globals);
  // Only a preview keeps its sums: a run without caches stays with the plain shader.
  const LM_vector_sums vectors(params, true, rows.keepSums ? LM_BestKernels() : nullptr);
  // As delivered, whatever the host does while it is asked about a cancel.
  const FilterRecord delivered = *record;
  for (int row = 0; row < tile.rows; ++row) {
    const uint8_t* in = delivered.inPixels + ptrdiff_t{row} * delivered.inRowStride;
    uint8_t* out = delivered.outPixels + ptrdiff_t{row} * delivered.outRowStride;
    const float y = grid.Y(row);
    LM_TestCancel(record);
    if (!rows.positionsReady) {
      for (int column = 0; column < tile.columns; ++column)
        rows.positions[column] = {grid.X(column), y};
    }
    const bool summed = rows.sumsReady || vectors.Sum(tile.columns, rows.positions, nullptr,
                                                      rows.diffuse, rows.specular);
    LM_Shade(params, static_cast<unsigned short>(tile.columns), rows.positions, in, rows.diffuse,
             rows.specular, summed ? 1 : 0, out, globals);
    rows.NextRow(tile.columns);
    LM_AdvanceLightCaches(params, static_cast<uint32_t>(tile.columns));
  }
  globals->PosCacheHot(1);
  if (rows.keepSums) {
    globals->DiffuseSumCacheHot(1);
    globals->SpecularSumCacheHot(1);
  }
  LM_MarkLightCachesHot(globals);
}
