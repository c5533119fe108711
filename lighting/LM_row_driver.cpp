#include "LM_row_driver.h"

#include <algorithm>
#include <cstring>

#include "LM_light_shader.h"

namespace {

// Pixels of any step, packed, and back.
void Pack(const uint8_t* pixels, ptrdiff_t step, uint32_t n, uint8_t* packed) {
  for (uint32_t i = 0; i < n; ++i, pixels += step, packed += LM_PLANES)
    std::copy_n(pixels, LM_PLANES, packed);
}
void Unpack(const uint8_t* packed, uint32_t n, uint8_t* pixels, ptrdiff_t step) {
  for (uint32_t i = 0; i < n; ++i, pixels += step, packed += LM_PLANES)
    std::copy_n(packed, LM_PLANES, pixels);
}

LM_kernel_surface SurfaceOf(const foo& params) {
  return {params.gloss, params.material, params.exposure};
}

// Those of the piece's lights that are marked by their places in the block, as a row's vectors
// begin with them. On a flat surface a directional light is the same for all samples, so it is
// there from the start; but sums of floats keep the lights' order.
LM_kernel_lights FirstRow(const LM_piece& piece, uint32_t lights) {
  const LM_kernel_lights& sorted = piece.lights->kernel;
  if (piece.kind != LM_pixel_kind::Bytes)
    return sorted;
  uint32_t marked = 0;
  for (int k = 0; k < sorted.Count(); ++k)
    marked |= (lights >> piece.lights->source[k] & 1U) << k;
  LM_kernel_lights row = {};
  LM_SelectLights(sorted, marked, row);
  for (int k = sorted.omnis + sorted.spots; piece.IsFlat() && k < sorted.Count(); ++k) {
    if ((marked >> k & 1U) == 0)
      continue;
    const LM_vector2f anywhere = {};
    LM_color96 diffuse = {};
    LM_color96 specular = {};
    LM_ShadeLight(piece.params->lights[piece.lights->source[k]], 1, &anywhere, &diffuse, &specular);
    for (int plane = 0; plane < LM_PLANES; ++plane) {
      row.diffuse[plane] = LM_WrapAdd(row.diffuse[plane], diffuse.component[plane]);
      row.specular[plane] = LM_WrapAdd(row.specular[plane], specular.component[plane]);
    }
    --row.directionals;
  }
  return row;
}

// The block's lights that the sums of a piece hold, where there are any; else all.
uint32_t KeptLights(const LM_piece& piece) {
  return piece.kept.sums != nullptr ? piece.kept.sums->lights : LM_ALL_LIGHTS;
}

} // namespace

void LM_sample_store::Next(uint32_t samples, uint32_t pixels) {
  if (keepsPositions)
    rows.positions += samples;
  if (keepsNormals)
    rows.normals += samples;
  if (keepsWeights)
    rows.weights += samples + pixels;
  if (keepsBase)
    rows.base += static_cast<size_t>(LM_PLANES) * samples;
  if (counts != nullptr)
    ++counts;
  if (keepsSums) {
    diffuse += samples;
    specular += samples;
  }
  if (advancing != nullptr)
    LM_AdvanceLightCaches(advancing, samples);
}

LM_sample_store LM_ScratchStore(LM_scratch_rows& scratch) {
  LM_sample_store store = {};
  store.rows = {scratch.positions, scratch.normals, scratch.weights, scratch.colors.base};
  store.diffuse = scratch.sums.diffuseSums;
  store.specular = scratch.sums.specularSums;
  store.scratch = &scratch;
  return store;
}

LM_row_driver::LM_row_driver(const LM_piece& piece, const LM_sample_store& store,
                             LM_row_buffers& buffers)
    : _piece(piece), _store(store), _buffers(buffers), _grid(piece.area, piece.params),
      _heights(piece.plane, piece.planeKind, piece.edges, piece.rect.left - 1,
               piece.rect.right - piece.rect.left + 2, piece.params->bumpHeight, piece.kernels,
               {&buffers.taps, piece.deep == nullptr ? nullptr : &piece.deep->taps}),
      _sums(piece.params, *piece.lights, piece.kernels), _extent{piece.columns[0],
                                                                 piece.columns[piece.Pixels() - 1],
                                                                 _grid.Y(piece.rect.top),
                                                                 _grid.Y(piece.rect.bottom - 1)},
      _lights(), _row(), _near(), _onVectors(piece.kernels != nullptr && store.KeepsNothing()),
      _allFit(false), _heightsEnd(0), _y(piece.rect.top) {
  if (!_onVectors)
    return;
  _lights = FirstRow(piece, KeptLights(piece));
  _allFit = LM_FitVectors(_lights, _extent);
  _row = _lights;
  if (piece.kept.sums == nullptr || piece.kept.sums->packed.IsEmpty())
    return;
  LM_kernel_lights over = FirstRow(piece, ~KeptLights(piece));
  _allFit = LM_FitVectors(over, _extent) && _allFit;
  _over = {over, over};
}

bool LM_row_driver::_PutLightsIntoRow(float place) {
  const LM_extent row = {_extent.left, _extent.right, place, place};
  if (!_allFit && !(LM_FitVectors(_lights, row) && (!_over || LM_FitVectors(_over->lights, row))))
    return false;
  for (int k = 0; k < _row.omnis + _row.spots; ++k)
    LM_MoveToRow(_lights.light[k], place, _row.light[k]);
  for (int k = 0; _over && k < _over->row.omnis + _over->row.spots; ++k)
    LM_MoveToRow(_over->lights.light[k], place, _over->row.light[k]);
  return true;
}

void LM_row_driver::LightNextRow() {
  const int32_t y = _y++;
  const bool flat = _piece.IsFlat();
  const bool isKept = _IsKept(y);
  const bool onVectors = isKept || (_onVectors && _PutLightsIntoRow(_grid.Y(y)));
  const bool feels = !isKept && (_onVectors || _piece.map == nullptr);
  if (!flat && feels)
    _FillHeights(y);
  if (_piece.kind != LM_pixel_kind::Bytes) {
    _LightDeep(y, onVectors);
  } else if (onVectors) {
    _LightPlanes(y);
  } else if (flat) {
    _LightFlatSamples(y);
  } else {
    // A row of more pixels than a run of facets may have is lit in several runs.
    for (uint32_t first = 0; first < _piece.Pixels(); first += LM_MAX_RELIEF_PIXELS)
      _LightFacets(y, first, std::min<uint32_t>(_piece.Pixels() - first, LM_MAX_RELIEF_PIXELS));
  }
}

// Whether all that lights give to row y is kept, as vectors made it.
bool LM_row_driver::_IsKept(int32_t y) const {
  return _piece.kept.sums != nullptr && _piece.kept.ready[y - _piece.rect.top] != 0 && !_over;
}

// Makes the row of heights below row y, and those above it too where the row before had none.
void LM_row_driver::_FillHeights(int32_t y) {
  const int32_t top = _piece.rect.top;
  const bool goesOn = _heightsEnd == y - top + 1;
  if (!goesOn)
    _heights.StartAnew();
  _heightsEnd = y - top + 2;
  if (!goesOn)
    _normalsReady[(y - top) % 2] = 0;
  _normalsReady[(y - top + 1) % 2] = 0;
  for (int32_t row = goesOn ? y - top + 1 : y - top - 1; row < _heightsEnd; ++row) {
    int32_t* heights = _buffers.heights.At(row);
    if (_piece.map != nullptr)
      std::copy_n(_piece.map->heights + static_cast<size_t>(row + 1) * _piece.map->width,
                  _piece.Pixels() + 2, heights);
    else
      _heights.Make(top + row, heights);
  }
}

// Of the facets above a row, from the piece's first one.
LM_normal_row LM_row_driver::_NormalsAbove(int32_t row) const {
  return {_buffers.normals[0].At(row), _buffers.normals[1].At(row), _buffers.normals[2].At(row)};
}

// Makes the normals around n pixels of a row from the `first` one on, but for those above that were
// made below the row before.
void LM_row_driver::_FillNormals(int32_t row, int first, int n) {
  const uint32_t pieces = ((1U << LM_ReachPieces(n)) - 1) << first / LM_REACH_PIECE;
  for (const int32_t below : {row, row + 1}) {
    uint32_t& ready = _normalsReady[below % 2];
    if ((ready & pieces) == pieces)
      continue;
    ready |= pieces;
    _piece.kernels->normals(_buffers.heights.At(below - 1) + first,
                            _buffers.heights.At(below) + first, n + 1,
                            _NormalsAbove(below).From(first));
  }
}

// Lights n samples of a row's planes from the `first` one on; or only keeps what lights give them.
void LM_row_driver::_LightRun(const LM_kernel_lights& lights, int32_t y, int first, int n,
                              Aim aim) {
  const LM_kernels& kernels = *_piece.kernels;
  const LM_kernel_surface surface = SurfaceOf(*_piece.params);
  const float* const columns = _piece.columns + first;
  const int32_t row = y - _piece.rect.top;
  const LM_normal_row rows[2] = {_NormalsAbove(row).From(first),
                                 _NormalsAbove(row + 1).From(first)};
  const LM_normal_row* const normals = _piece.IsFlat() ? nullptr : rows;
  const bool isDeep = _piece.kind != LM_pixel_kind::Bytes;
  const bool isUnlit = lights.Count() == 0 && !isDeep && aim != Aim::Keep;
  if (normals != nullptr && !isUnlit)
    _FillNormals(row, first, n);
  if (isDeep)
    return kernels.deep(lights, surface, columns, n, normals, _piece.deep->Planes(first));
  const LM_kernel_planes planes = {
      {_buffers.planes[0] + first, _buffers.planes[1] + first, _buffers.planes[2] + first}};
  if (aim == Aim::Light) // without lights, all facets are alike
    return normals == nullptr || isUnlit
               ? kernels.flat(lights, surface, columns, n, planes)
               : kernels.relief(lights, surface, columns, n, normals, planes);
  const LM_kept_sums& kept = *_piece.kept.sums;
  const int32_t column = _piece.kept.column + first;
  const int32_t keptRow = _piece.kept.row + row;
  if (kept.packed.IsEmpty())
    return kernels.keep(lights, columns, n, normals, kept.At(column, keptRow));
  const LM_packed_run packed = kept.packed.At(column, keptRow);
  if (aim == Aim::Keep)
    kernels.pack(lights, columns, n, normals, packed);
  else
    kernels.over(lights, surface, packed, columns, n, normals, planes);
}

// Works out a row, each run of it by those of the row's lights that reach it.
void LM_row_driver::_LightRuns(const LM_kernel_lights& row, int32_t y, Aim aim) {
  const int n = static_cast<int>(_piece.Pixels());
  const int pieces = LM_ReachPieces(n);
  const LM_row_reach reach = LM_FindReach(row, _piece.columns, n);
  for (int piece = 0, end = 0; piece < pieces; piece = end) {
    end = reach.EndOfRun(piece, pieces);
    LM_SelectLights(row, reach.lights[piece], _near);
    for (int plane = 0; aim == Aim::Keep && plane < LM_PLANES; ++plane)
      _near.diffuse[plane] =
          LM_WrapSubtract(_near.diffuse[plane], _piece.params->ambient.component[plane]);
    const int first = piece * LM_REACH_PIECE;
    _LightRun(_near, y, first, std::min(end * LM_REACH_PIECE, n) - first, aim);
  }
}

// Lights a row's planes by its kept sums, which are made first where they are not there, and by the
// lights that are not in them.
void LM_row_driver::_LightKept(int32_t y) {
  const int32_t row = y - _piece.rect.top;
  if (_piece.kept.ready[row] == 0)
    _LightRuns(_row, y, Aim::Keep);
  _piece.kept.ready[row] = 1;
  if (_over)
    return _LightRuns(_over->row, y, Aim::Over);
  _piece.kernels->combine(SurfaceOf(*_piece.params), _piece.params->ambient.component,
                          _piece.kept.sums->At(_piece.kept.column, _piece.kept.row + row),
                          _piece.Facets(), static_cast<int>(_piece.Pixels()),
                          {{_buffers.planes[0], _buffers.planes[1], _buffers.planes[2]}});
}

void LM_row_driver::_LightPlanes(int32_t y) {
  const LM_kernels& kernels = *_piece.kernels;
  const int n = static_cast<int>(_piece.Pixels());
  const LM_kernel_planes planes = {{_buffers.planes[0], _buffers.planes[1], _buffers.planes[2]}};
  kernels.split(_piece.source.At(_piece.rect.left, y), _piece.source.pixelStep, n, planes);
  if (_piece.kept.ready != nullptr)
    _LightKept(y);
  else
    _LightRuns(_row, y, Aim::Light);
  kernels.join(planes, n, _piece.output.At(_piece.rect.left, y), _piece.output.pixelStep);
}

void LM_row_driver::_LightDeep(int32_t y, bool onVectors) {
  const int n = static_cast<int>(_piece.Pixels());
  const int32_t row = y - _piece.rect.top;
  const LM_deep_planes planes = _piece.deep->Planes(0);
  const auto load = _piece.kernels != nullptr ? _piece.kernels->load : LM_LoadDeep;
  const auto store = _piece.kernels != nullptr ? _piece.kernels->store : LM_StoreDeep;
  load(_piece.source.At(_piece.rect.left, y), _piece.source.pixelStep, _piece.kind, n, planes);
  const int32_t* const heights[3] = {_buffers.heights.At(row - 1), _buffers.heights.At(row),
                                     _buffers.heights.At(row + 1)};
  if (onVectors)
    _LightRuns(_row, y, Aim::Light);
  else
    LM_LightDeepPixels(*_piece.params, _piece.columns, _grid.Y(y), n,
                       _piece.IsFlat() ? nullptr : heights, planes);
  store(planes, n, _piece.kind, _piece.output.At(_piece.rect.left, y), _piece.output.pixelStep);
}

// The pixels from (x, y) on, three bytes each.
const uint8_t* LM_row_driver::_Packed(int32_t x, int32_t y, uint32_t pixels) {
  const uint8_t* source = _piece.source.At(x, y);
  if (_piece.source.pixelStep == LM_PLANES)
    return source;
  Pack(source, _piece.source.pixelStep, pixels, _buffers.source);
  return _buffers.source;
}

void LM_row_driver::_Combine(uint32_t samples, const uint8_t* colors, uint8_t* out) {
  LM_Combine(_piece.params, static_cast<unsigned short>(samples), colors, _store.diffuse,
             _store.specular, _store.scratch->sums.combined, out);
}

void LM_row_driver::_LightFlatSamples(int32_t y) {
  const uint32_t pixels = _piece.Pixels();
  const auto count = static_cast<unsigned short>(pixels);
  LM_vector2f* positions = _store.rows.positions;
  const float place = _grid.Y(y);
  for (uint32_t i = 0; !_store.positionsReady && i < pixels; ++i)
    positions[i] = {_piece.columns[i], place};
  if (!_store.sumsReady &&
      !_sums.Sum(static_cast<int>(pixels), positions, nullptr, _store.diffuse, _store.specular))
    LM_SumLights(_piece.params, count, _store.diffuse, _store.specular,
                 [&](const LM_light& light, LM_color96* diffuse, LM_color96* specular) {
                   LM_ShadeLight(light, count, positions, diffuse, specular);
                 });
  _Combine(pixels, _Packed(_piece.rect.left, y, pixels), _buffers.output);
  Unpack(_buffers.output, pixels, _piece.output.At(_piece.rect.left, y), _piece.output.pixelStep);
  _store.Next(pixels, pixels);
}

// The heights around the run, as a bump map; the run's place in it.
LM_bump_map LM_row_driver::_HeightsAround(int32_t y, LM_pixel_run& run) {
  const int32_t row = y - _piece.rect.top;
  if (_piece.map != nullptr) {
    run.row = static_cast<uint32_t>(row);
    return *_piece.map;
  }
  const size_t width = static_cast<size_t>(run.pixels) + 2;
  for (int32_t i = 0; i < 3; ++i)
    std::copy_n(_buffers.heights.At(row - 1 + i) + run.first, width,
                _buffers.plainHeights + static_cast<size_t>(i) * width);
  run.first = 0;
  LM_bump_map map = {};
  map.heights = _buffers.plainHeights;
  map.width = static_cast<uint32_t>(width);
  map.capacity = sizeof _buffers.plainHeights;
  return map;
}

// Makes the samples of a run that begins `first` pixels into the piece, as far as they are not
// kept. Returns how many there are.
uint32_t LM_row_driver::_MakeFacets(int32_t y, uint32_t first, uint32_t pixels) {
  if (_store.samplesReady)
    return *_store.counts;
  LM_pixel_run run = {0, first, pixels,
                      _Packed(_piece.rect.left + static_cast<int32_t>(first), y, pixels)};
  const LM_bump_map map = _HeightsAround(y, run);
  LM_facet_rows rows = _store.rows;
  if (_store.positionsReady)
    rows.positions = nullptr;
  const uint32_t count = LM_MakeFacets(&map, run, _piece.columns + first, _grid.Y(y), rows);
  if (_store.counts != nullptr)
    *_store.counts = count;
  return count;
}

void LM_row_driver::_LightFacets(int32_t y, uint32_t first, uint32_t pixels) {
  const uint32_t count = _MakeFacets(y, first, pixels);
  const LM_facet_rows& rows = _store.rows;
  if (!_store.sumsReady && !_sums.Sum(static_cast<int>(count), rows.positions, rows.normals,
                                      _store.diffuse, _store.specular))
    LM_SumLights(_piece.params, static_cast<int>(count), _store.diffuse, _store.specular,
                 [&](const LM_light& light, LM_color96* diffuse, LM_color96* specular) {
                   LM_ShadeLightBumps(light, count, rows.positions, rows.normals, diffuse, specular,
                                      rows.weights);
                 });
  uint8_t* shaded = _store.scratch->colors.shaded;
  _Combine(count, rows.base, shaded);
  LM_BlendFacets(shaded, rows.weights, pixels, _buffers.output);
  Unpack(_buffers.output, pixels,
         _piece.output.At(_piece.rect.left + static_cast<int32_t>(first), y),
         _piece.output.pixelStep);
  _store.Next(count, pixels);
}
