#include "LM_render.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "LM_row_driver.h"

namespace {

// What a relief of the rectangle reads: its neighbours too, inside the image.
LM_rect ReliefOf(const LM_render_job& job, const LM_rect& rect) {
  return {std::max(rect.top - LM_RELIEF_REACH, 0), std::max(rect.left - LM_RELIEF_REACH, 0),
          std::min(rect.bottom + LM_RELIEF_REACH, job.imageHeight),
          std::min(rect.right + LM_RELIEF_REACH, job.imageWidth)};
}

LM_render_result CheckViews(const LM_render_job& job, const LM_render_views& views,
                            const LM_rect& rect) {
  if (!LM_Contains(job.area, rect))
    return LM_render_result::OutsideArea;
  if (views.source.pixels == nullptr || !LM_Contains(views.source.bounds, rect))
    return LM_render_result::BadSource;
  if (views.output.pixels == nullptr || !LM_Contains(views.output.bounds, rect))
    return LM_render_result::BadOutput;
  if (views.relief.pixels != nullptr && !LM_Contains(views.relief.bounds, ReliefOf(job, rect)))
    return LM_render_result::BadRelief;
  return LM_render_result::Done;
}

bool FillColumns(LM_render_job& job) {
  const size_t width = static_cast<size_t>(job.AreaWidth());
  job.columns.reset(new (std::nothrow) float[width + LM_KERNEL_SLACK]);
  if (job.columns == nullptr)
    return false;
  const LM_sample_grid grid(job.area, &job.params);
  for (size_t i = 0; i < width; ++i)
    job.columns[i] = grid.X(job.area.left + static_cast<int32_t>(i));
  std::fill_n(job.columns.get() + width, LM_KERNEL_SLACK, job.columns[width - 1]);
  return true;
}

// Whether two lights are the same to the bit, caches apart.
bool IsSameLight(const LM_light& a, const LM_light& b) {
  constexpr size_t OWN = offsetof(LM_light, spreadMinCos) + sizeof(LM_light::spreadMinCos);
  return std::memcmp(&a, &b, OWN) == 0;
}

// Where a block that begins `column` pixels into the rectangle lies in the sums that are kept for
// it.
LM_kept_rows KeptRows(const LM_render_job& job, const LM_render_views& views, const LM_rect& rect,
                      int32_t column) {
  const bool flat = views.relief.pixels == nullptr;
  const LM_kept_sums* const kept = views.kept;
  if (kept == nullptr || kept->IsEmpty() || job.kernels == nullptr ||
      job.kernels->keep == nullptr || (kept->facets == 1) != flat ||
      views.kind != LM_pixel_kind::Bytes || rect.left != kept->rect.left ||
      rect.right != kept->rect.right || !LM_Contains(kept->rect, rect))
    return {};
  const int32_t row = rect.top - kept->rect.top;
  const ptrdiff_t block = column / LM_RENDER_BLOCK;
  return {kept, column, row,
          kept->ready.get() + block * (kept->rect.bottom - kept->rect.top) + row};
}

} // namespace

const char* LM_RenderMessage(LM_render_result result) {
  switch (result) {
  case LM_render_result::Done:
    return "the rectangle is lit";
  case LM_render_result::EmptyArea:
    return "the filter area is empty or reaches outside the image";
  case LM_render_result::NoLight:
    return "the settings hold no light";
  case LM_render_result::NoMemory:
    return "there is not enough memory to prepare the lighting";
  case LM_render_result::BadSource:
    return "the source does not hold the rectangle";
  case LM_render_result::BadOutput:
    return "the output does not hold the rectangle";
  case LM_render_result::BadRelief:
    return "the relief does not hold the rectangle with its neighbours";
  case LM_render_result::OutsideArea:
    return "the rectangle reaches outside the filter area";
  }
  return "the lighting failed";
}

LM_render_result LM_PrepareRender(const foo& params, const LM_rect& area, int32_t imageWidth,
                                  int32_t imageHeight, const LM_kernels* kernels,
                                  LM_render_job& job) {
  if (LM_IsEmpty(area) || !LM_Contains({0, 0, imageHeight, imageWidth}, area))
    return LM_render_result::EmptyArea;
  if (&params != &job.params)
    job.params = params;
  LM_DetachParameterCaches(&job.params);
  job.area = area;
  job.imageWidth = imageWidth;
  job.imageHeight = imageHeight;
  job.kernels = kernels;
  if (!FillColumns(job))
    return LM_render_result::NoMemory;
  job.flatLights = LM_SortLights(job.params, true);
  job.reliefLights = LM_SortLights(job.params, false);
  return LM_render_result::Done;
}

std::optional<uint32_t> LM_ChangedLights(const foo& before, const foo& after) {
  const int count = LM_LightCount(&before);
  if (count != LM_LightCount(&after) || before.bumpHeight != after.bumpHeight ||
      before.worldScale != after.worldScale)
    return std::nullopt;
  uint32_t changed = 0;
  for (int j = 0; j < count; ++j)
    changed |= (IsSameLight(before.lights[j], after.lights[j]) ? 0U : 1U) << j;
  return changed;
}

bool LM_ChangeSurface(const foo& params, LM_render_job& job) {
  if (LM_ChangedLights(job.params, params) != 0U)
    return false;
  job.params.gloss = params.gloss;
  job.params.material = params.material;
  job.params.exposure = params.exposure;
  job.params.ambient = params.ambient;
  for (LM_sorted_lights* lights : {&job.flatLights, &job.reliefLights})
    std::copy_n(params.ambient.component, LM_PLANES, lights->kernel.diffuse);
  return true;
}

struct LM_render_scratch {
  LM_row_buffers buffers;
  LM_scratch_rows samples;
  LM_deep_buffers deep;
};

void LM_render_scratch_deleter::operator()(LM_render_scratch* scratch) const {
  delete scratch;
}

LM_render_scratch_pointer LM_NewRenderScratch() {
  static_assert(sizeof(LM_render_scratch) <= LM_MOST_SCRATCH_BYTES);
  // Cleared, since vectors read beyond a row's end.
  return LM_render_scratch_pointer(new (std::nothrow) LM_render_scratch());
}

LM_render_result LM_RenderRect(const LM_render_job& job, const LM_render_views& views,
                               const LM_rect& rect, LM_render_scratch& scratch) {
  if (LM_IsEmpty(rect))
    return LM_render_result::Done;
  const LM_render_result checked = CheckViews(job, views, rect);
  if (checked != LM_render_result::Done)
    return checked;
  const bool flat = views.relief.pixels == nullptr;
  LM_piece piece = {&job.params,
                    job.kernels,
                    flat ? &job.flatLights : &job.reliefLights,
                    job.area,
                    rect,
                    nullptr,
                    views.source,
                    views.output,
                    views.relief,
                    {0, 0, job.imageHeight, job.imageWidth},
                    nullptr,
                    views.kind,
                    views.reliefKind,
                    &scratch.deep,
                    {}};
  for (int32_t x = rect.left; x < rect.right; x += LM_RENDER_BLOCK) {
    piece.rect.left = x;
    piece.rect.right = std::min(rect.right, x + LM_RENDER_BLOCK);
    piece.columns = job.columns.get() + (x - job.area.left);
    piece.kept = KeptRows(job, views, rect, x - rect.left);
    LM_row_driver driver(piece, LM_ScratchStore(scratch.samples), scratch.buffers);
    for (int32_t y = rect.top; y < rect.bottom; ++y)
      driver.LightNextRow();
  }
  return checked;
}
