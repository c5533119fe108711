// Runs of pixels by the plain shader: what the kernels have to equal, and what lights where they
// cannot.
#include <algorithm>
#include <cstring>

#include "LM_facets.h"
#include "LM_light_shader.h"
#include "LM_light_sums.h"
#include "LM_render_rows.h"

namespace {

// Pixels of any step, packed, and back.
void Pack(const uint8_t* pixels, ptrdiff_t step, int n, uint8_t* packed) {
  for (int i = 0; i < n; ++i, pixels += step, packed += LM_PLANES)
    std::copy_n(pixels, LM_PLANES, packed);
}
void Unpack(const uint8_t* packed, int n, uint8_t* pixels, ptrdiff_t step) {
  for (int i = 0; i < n; ++i, pixels += step, packed += LM_PLANES)
    std::copy_n(packed, LM_PLANES, pixels);
}

float PlaceOfRow(const LM_render_job& job, int32_t y) {
  return LM_sample_grid(job.area, job.area, &job.params).Y(y - job.area.top);
}

// The three rows of heights around the run, as a bump map.
LM_bump_map HeightsAround(const LM_render_run& run, int32_t first, LM_render_scratch& scratch) {
  const size_t width = static_cast<size_t>(run.pixels) + 2;
  for (int32_t i = 0; i < 3; ++i)
    std::copy_n(scratch.heights.At(run.y - 1 + i) + first, width,
                scratch.plainHeights + static_cast<size_t>(i) * width);
  LM_bump_map map = {};
  map.heights = scratch.plainHeights;
  map.width = static_cast<uint32_t>(width);
  map.capacity = sizeof scratch.plainHeights;
  return map;
}

// One run of at most LM_MAX_RELIEF_PIXELS, `first` pixels into the block.
void LightFacets(const LM_render_job& job, const LM_render_views& views, const LM_render_run& run,
                 int32_t first, LM_render_scratch& scratch) {
  LM_scratch_rows& rows = scratch.plain;
  const LM_bump_map map = HeightsAround(run, first, scratch);
  uint8_t* source = rows.colors.shaded; // made use of before the shading fills it
  Pack(views.source.At(run.x, run.y), views.source.pixelStep, run.pixels, source);
  const LM_facet_rows facets = {rows.positions, rows.normals, rows.weights, rows.colors.base};
  const float* columns = job.columns.get() + (run.x - job.area.left);
  const uint32_t pixels = static_cast<uint32_t>(run.pixels);
  const uint32_t count = LM_MakeFacets(
      &map, {0, 0, pixels, source}, PlaceOfRow(job, run.y),
      [&](int column) { return columns[column]; }, facets);
  LM_SumLights(&job.params, static_cast<int>(count), rows.sums.diffuseSums, rows.sums.specularSums,
               [&](const LM_light& light, LM_color96* diffuse, LM_color96* specular) {
                 LM_ShadeLightBumps(light, count, rows.positions, rows.normals, diffuse, specular,
                                    rows.weights);
               });
  LM_Combine(&job.params, static_cast<unsigned short>(count), rows.colors.base,
             rows.sums.diffuseSums, rows.sums.specularSums, rows.sums.combined, rows.colors.shaded);
  LM_BlendFacets(rows.colors.shaded, rows.weights, pixels, rows.colors.base);
  Unpack(rows.colors.base, run.pixels, views.output.At(run.x, run.y), views.output.pixelStep);
}

} // namespace

void LM_LightPlainFlat(const LM_render_job& job, const LM_render_views& views,
                       const LM_render_run& run, LM_render_scratch& scratch) {
  LM_scratch_rows& rows = scratch.plain;
  const auto count = static_cast<unsigned short>(run.pixels);
  const float y = PlaceOfRow(job, run.y);
  const float* columns = job.columns.get() + (run.x - job.area.left);
  for (int i = 0; i < run.pixels; ++i)
    rows.positions[i] = {columns[i], y};
  LM_SumLights(&job.params, run.pixels, rows.sums.diffuseSums, rows.sums.specularSums,
               [&](const LM_light& light, LM_color96* diffuse, LM_color96* specular) {
                 LM_ShadeLight(light, count, rows.positions, diffuse, specular);
               });
  Pack(views.source.At(run.x, run.y), views.source.pixelStep, run.pixels, rows.colors.base);
  LM_Combine(&job.params, count, rows.colors.base, rows.sums.diffuseSums, rows.sums.specularSums,
             rows.sums.combined, rows.colors.shaded);
  Unpack(rows.colors.shaded, run.pixels, views.output.At(run.x, run.y), views.output.pixelStep);
}

void LM_LightPlainRelief(const LM_render_job& job, const LM_render_views& views,
                         const LM_render_run& run, LM_render_scratch& scratch) {
  for (int32_t first = 0; first < run.pixels; first += LM_MAX_RELIEF_PIXELS) {
    const int32_t pixels = std::min<int32_t>(run.pixels - first, LM_MAX_RELIEF_PIXELS);
    LightFacets(job, views, {run.x + first, run.y, pixels}, first, scratch);
  }
}
