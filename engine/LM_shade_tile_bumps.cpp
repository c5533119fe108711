// The relief tile drivers: the real run's, which keeps nothing, and the preview's, which keeps its
// samples.
#include <algorithm>

#include "LM_delivered_tile.h"
#include "LM_facets.h"
#include "LM_host_services.h"
#include "LM_light_sums.h"
#include "LM_shader.h"
#include "LM_vector_sums.h"

namespace {

// The real run's storage: one run of samples, used again and again.
class RealRows {
public:
  RealRows(const LM_bump_map* map, LM_globals& globals) : _map(map), _scratch(globals.scratch) {}

  uint32_t MakeRun(const LM_pixel_run& run, const LM_sample_grid& grid, float y) {
    return LM_MakeFacets(
        _map, run, y, [&](int column) { return grid.X(column); }, Facets());
  }
  LM_facet_rows Facets() const {
    return {_scratch.positions, _scratch.normals, _scratch.weights, _scratch.colors.base};
  }
  LM_color96* Diffuse() const { return _scratch.sums.diffuseSums; }
  LM_color96* Specular() const { return _scratch.sums.specularSums; }
  LM_bool MakeSums(uint32_t) { return 0; }
  void NextRun(uint32_t, uint32_t) {}

private:
  const LM_bump_map* _map;
  LM_scratch_rows& _scratch;
};

// The preview's storage: every array in its cache where that exists, run behind run.
class PreviewRows {
public:
  PreviewRows(const LM_bump_map* map, const foo* params, LM_globals& g)
      : _map(map), _globals(g), _vectors(params, false, LM_BestKernels()),
        _samplesReady(g.UsePosCache() == 1 && g.UseNormCache() == 1 && g.UseWeightCache() == 1 &&
                      g.UseBaseCache() == 1 && g.UseSampleCountCache() == 1 &&
                      g.PosCacheHot() == 1 && g.NormCacheHot() == 1 && g.WeightCacheHot() == 1 &&
                      g.BaseCacheHot() == 1 && g.SampleCountCacheHot() == 1),
        _keepSums(g.UseDiffuseSumCache() == 1 && g.UseSpecularSumCache() == 1),
        _sumsReady(_keepSums && g.DiffuseSumCacheHot() == 1 && g.SpecularSumCacheHot() == 1),
        _positionsReady(g.UsePosCache() == 1 && g.PosCacheHot() == 1),
        _rows{g.UsePosCache() ? g.PosCache() : g.scratch.positions,
              g.UseNormCache() ? g.NormCache() : g.scratch.normals,
              g.UseWeightCache() ? g.WeightCache() : g.scratch.weights,
              g.UseBaseCache() ? g.BaseCache() : g.scratch.colors.base},
        _counts(g.SampleCountCache()),
        _diffuse(_keepSums ? g.DiffuseSumCache() : g.scratch.sums.diffuseSums),
        _specular(_keepSums ? g.SpecularSumCache() : g.scratch.sums.specularSums) {}

  uint32_t MakeRun(const LM_pixel_run& run, const LM_sample_grid& grid, float y) {
    if (_samplesReady)
      return *_counts;
    LM_facet_rows rows = _rows;
    if (_positionsReady)
      rows.positions = nullptr;
    const uint32_t count = LM_MakeFacets(
        _map, run, y, [&](int column) { return grid.X(column); }, rows);
    if (_counts != nullptr)
      *_counts = count;
    return count;
  }
  const LM_facet_rows& Facets() const { return _rows; }
  LM_color96* Diffuse() const { return _diffuse; }
  LM_color96* Specular() const { return _specular; }
  LM_bool MakeSums(uint32_t samples) {
    return _sumsReady || _vectors.Sum(static_cast<int>(samples), _rows.positions, _rows.normals,
                                      _diffuse, _specular)
               ? 1
               : 0;
  }

  void NextRun(uint32_t samples, uint32_t pixels) {
    if (_globals.UsePosCache())
      _rows.positions += samples;
    if (_globals.UseNormCache())
      _rows.normals += samples;
    if (_globals.UseWeightCache())
      _rows.weights += samples + pixels;
    if (_globals.UseBaseCache())
      _rows.base += static_cast<size_t>(LM_PLANES) * samples;
    if (_counts != nullptr)
      ++_counts;
    if (_keepSums) {
      _diffuse += samples;
      _specular += samples;
    }
  }

  void MarkReady() {
    _globals.PosCacheHot(1);
    _globals.NormCacheHot(1);
    _globals.WeightCacheHot(1);
    _globals.BaseCacheHot(1);
    _globals.SampleCountCacheHot(1);
    if (_keepSums) {
      _globals.DiffuseSumCacheHot(1);
      _globals.SpecularSumCacheHot(1);
    }
    LM_MarkLightCachesHot(&_globals);
  }

private:
  const LM_bump_map* _map;
  LM_globals& _globals;
  LM_vector_sums _vectors;
  bool _samplesReady, _keepSums, _sumsReady, _positionsReady;
  LM_facet_rows _rows;
  uint32_t* _counts;
  LM_color96* _diffuse;
  LM_color96* _specular;
};

// Both walks. A row of more pixels than a run of facets may have is shaded in several runs.
template <class Rows>
void ShadeRows(FilterRecord* record, const LM_tile_size& tile, foo* params, LM_globals* globals,
               Rows& rows) {
  const LM_sample_grid grid(LM_RectOf(record->filterArea), LM_RectOf(record->inTileRect), params);
  const uint32_t columns = static_cast<uint32_t>(tile.columns);
  // As delivered, whatever the host does while it is asked about a cancel.
  const FilterRecord delivered = *record;
  for (int row = 0; row < tile.rows; ++row) {
    const uint8_t* in = delivered.inPixels + ptrdiff_t{row} * delivered.inRowStride;
    uint8_t* out = delivered.outPixels + ptrdiff_t{row} * delivered.outRowStride;
    const float y = grid.Y(row);
    LM_TestCancel(record);
    for (uint32_t first = 0; first < columns; first += LM_MAX_RELIEF_PIXELS) {
      const uint32_t pixels = std::min<uint32_t>(columns - first, LM_MAX_RELIEF_PIXELS);
      const size_t offset = static_cast<size_t>(LM_PLANES) * first;
      const LM_pixel_run run = {static_cast<uint32_t>(row), first, pixels, in + offset};
      const uint32_t count = rows.MakeRun(run, grid, y);
      const LM_facet_rows& facets = rows.Facets();
      const LM_bool summed = rows.MakeSums(count);
      uint8_t* shaded = globals->scratch.colors.shaded;
      LM_ShadeBumps(params, static_cast<unsigned short>(count), facets.positions, facets.normals,
                    facets.base, rows.Diffuse(), rows.Specular(), summed, shaded, globals,
                    facets.weights);
      LM_BlendFacets(shaded, facets.weights, pixels, out + offset);
      rows.NextRun(count, pixels);
      LM_AdvanceLightCaches(params, count);
    }
  }
}

} // namespace

void LM_ShadeTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals) {
  const LM_tile_size tile = LM_ShadeableTile(record);
  foo* params = LM_Parameters(record);
  if (tile.rows == 0 || params == nullptr || !LM_HoldsHeights(map, tile.columns, tile.rows))
    return;
  RealRows rows(map, *globals);
  ShadeRows(record, tile, params, globals, rows);
}

void LM_ShadePreviewTileWithBumps(FilterRecord* record, LM_bump_map* map, LM_globals* globals) {
  const LM_tile_size tile = LM_ShadeableTile(record);
  foo* params = LM_Parameters(record);
  if (tile.rows == 0 || params == nullptr || !LM_HoldsHeights(map, tile.columns, tile.rows))
    return;
  PreviewRows rows(map, params, *globals);
  ShadeRows(record, tile, params, globals, rows);
  rows.MarkReady();
}
