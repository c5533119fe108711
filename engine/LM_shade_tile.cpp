// The drivers of a tile: the host's record and the settings as views of pixels, lights and rows.
#include <algorithm>

#include "LM_arithmetic.h"
#include "LM_host_services.h"
#include "LM_row_driver.h"
#include "LM_shader.h"

namespace {

// A tile that can be lit, as it was delivered, whatever the host does while it is asked about a
// cancel.
struct Tile {
  foo* params = nullptr; // null: there is nothing to light
  LM_rect area, rect;    // rect: at most LM_MAX_RUN pixels wide
  LM_source_view source = {};
  LM_output_view output = {};

  explicit Tile(const FilterRecord& record)
      : area(LM_RectOf(record.filterArea)), rect(LM_RectOf(record.inTileRect)) {
    const int rows = LM_Cut16(rect.bottom - rect.top);
    const int columns = LM_Cut16(rect.right - rect.left);
    if (record.inPixels == nullptr || record.outPixels == nullptr || LM_IsEmpty(area) || rows < 1 ||
        columns < 1 || columns > LM_MAX_RUN)
      return;
    params = LM_Parameters(&record);
    rect.bottom = rect.top + rows;
    rect.right = rect.left + columns;
    source = {record.inPixels, record.inRowStride, LM_PLANES, rect};
    output = {record.outPixels, record.outRowStride, LM_PLANES, rect};
  }
  bool IsHeldBy(const LM_bump_map& map) const {
    return LM_HoldsHeights(&map, rect.right - rect.left, rect.bottom - rect.top);
  }
};

// The tile in one piece. map: null for a flat surface.
void LightTile(FilterRecord* record, const Tile& tile, const LM_bump_map* map,
               LM_sample_store store) {
  for (const LM_light& light : tile.params->lights)
    if (light.diffuseCache != nullptr || light.specularCache != nullptr)
      store.advancing = tile.params;
  float columns[LM_MAX_RUN + LM_KERNEL_SLACK];
  const int pixels = tile.rect.right - tile.rect.left;
  const LM_sample_grid grid(tile.area, tile.params);
  for (int i = 0; i < pixels; ++i)
    columns[i] = grid.X(tile.rect.left + i);
  std::fill_n(columns + pixels, LM_KERNEL_SLACK, columns[pixels - 1]);
  const LM_sorted_lights lights = LM_SortLights(*tile.params, map == nullptr);
  LM_row_buffers buffers = {};
  LM_row_driver driver({tile.params,
                        LM_BestKernels(),
                        &lights,
                        tile.area,
                        tile.rect,
                        columns,
                        tile.source,
                        tile.output,
                        {},
                        {},
                        map},
                       store, buffers);
  for (int32_t row = tile.rect.top; row < tile.rect.bottom; ++row) {
    LM_TestCancel(record);
    driver.LightNextRow();
  }
}

// The sums' part of a store in the caches of the preview.
void KeepSums(LM_globals& g, LM_sample_store& store) {
  if (g.UseDiffuseSumCache() != 1 || g.UseSpecularSumCache() != 1)
    return;
  store.keepsSums = true;
  store.sumsReady = g.DiffuseSumCacheHot() == 1 && g.SpecularSumCacheHot() == 1;
  store.diffuse = g.DiffuseSumCache();
  store.specular = g.SpecularSumCache();
}

void KeepPositions(LM_globals& g, LM_sample_store& store) {
  if (g.UsePosCache() != 1)
    return;
  store.keepsPositions = true;
  store.positionsReady = g.PosCacheHot() == 1;
  store.rows.positions = g.PosCache();
}

void KeepFacets(LM_globals& g, LM_sample_store& store) {
  store.keepsNormals = g.UseNormCache() == 1;
  store.keepsWeights = g.UseWeightCache() == 1;
  store.keepsBase = g.UseBaseCache() == 1;
  if (store.keepsNormals)
    store.rows.normals = g.NormCache();
  if (store.keepsWeights)
    store.rows.weights = g.WeightCache();
  if (store.keepsBase)
    store.rows.base = g.BaseCache();
  store.counts = g.SampleCountCache();
  // A flag is only ever set while its cache exists.
  store.samplesReady = g.PosCacheHot() == 1 && g.NormCacheHot() == 1 && g.WeightCacheHot() == 1 &&
                       g.BaseCacheHot() == 1 && g.SampleCountCacheHot() == 1;
}

// Missing caches stay cold.
void MarkSumsHot(LM_globals& g, const LM_sample_store& store) {
  if (store.keepsSums) {
    g.DiffuseSumCacheHot(1);
    g.SpecularSumCacheHot(1);
  }
  for (LM_light_UI& light : g.lights) {
    light.DiffuseCacheHot(1);
    light.SpecularCacheHot(1);
  }
}

} // namespace

void LM_ShadeTile(FilterRecord* record, LM_globals* globals) {
  const Tile tile(*record);
  if (tile.params == nullptr)
    return;
  LM_sample_store store = LM_ScratchStore(globals->scratch);
  KeepPositions(*globals, store);
  KeepSums(*globals, store);
  LightTile(record, tile, nullptr, store);
  globals->PosCacheHot(1);
  MarkSumsHot(*globals, store);
}

void LM_ShadeTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals) {
  const Tile tile(*record);
  if (tile.params != nullptr && tile.IsHeldBy(*map))
    LightTile(record, tile, map, LM_ScratchStore(globals->scratch));
}

void LM_ShadePreviewTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals) {
  const Tile tile(*record);
  if (tile.params == nullptr || !tile.IsHeldBy(*map))
    return;
  LM_sample_store store = LM_ScratchStore(globals->scratch);
  KeepPositions(*globals, store);
  KeepFacets(*globals, store);
  KeepSums(*globals, store);
  LightTile(record, tile, map, store);
  globals->PosCacheHot(1);
  globals->NormCacheHot(1);
  globals->WeightCacheHot(1);
  globals->BaseCacheHot(1);
  globals->SampleCountCacheHot(1);
  MarkSumsHot(*globals, store);
}
