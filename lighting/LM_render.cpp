#include "LM_render.h"

#include <algorithm>
#include <new>

#include "LM_light_sums.h"
#include "LM_render_rows.h"

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

// Lights one run by the kernel that light(planes, x) calls.
template <class Light>
void LightPlanes(const LM_render_job& job, const LM_render_views& views, const LM_render_run& run,
                 LM_render_scratch& scratch, Light light) {
  const LM_kernel_planes planes = {{scratch.planes[0], scratch.planes[1], scratch.planes[2]}};
  job.kernels->split(views.source.At(run.x, run.y), views.source.pixelStep, run.pixels, planes);
  light(planes, job.columns.get() + (run.x - job.area.left));
  job.kernels->join(planes, run.pixels, views.output.At(run.x, run.y), views.output.pixelStep);
}

void LightFlat(const LM_render_job& job, const LM_render_views& views, const LM_rect& rect,
               LM_render_scratch& scratch) {
  LM_kernel_lights lights;
  for (int32_t y = rect.top; y < rect.bottom; ++y) {
    const bool vectors = job.kernels != nullptr && LM_RowLights(job, job.flatLights, y, lights);
    for (int32_t x = rect.left; x < rect.right; x += LM_RENDER_BLOCK) {
      const LM_render_run run = {x, y, std::min(rect.right - x, LM_RENDER_BLOCK)};
      if (!vectors) {
        LM_LightPlainFlat(job, views, run, scratch);
        continue;
      }
      LightPlanes(job, views, run, scratch,
                  [&](const LM_kernel_planes& planes, const float* place) {
                    job.kernels->flat(lights, job.surface, place, run.pixels, planes);
                  });
    }
  }
}

// Goes down one block, so that each row of heights is made once.
void LightReliefBlock(const LM_render_job& job, const LM_render_views& views, const LM_rect& block,
                      LM_render_scratch& scratch) {
  const int32_t pixels = block.right - block.left;
  LM_kernel_lights lights;
  LM_FillHeights(job, views.relief, {block.left, block.top - 1, pixels}, true, scratch);
  LM_FillHeights(job, views.relief, {block.left, block.top, pixels}, false, scratch);
  for (int32_t y = block.top; y < block.bottom; ++y) {
    const LM_render_run run = {block.left, y, pixels};
    LM_FillHeights(job, views.relief, {block.left, y + 1, pixels}, false, scratch);
    if (job.kernels == nullptr || !LM_RowLights(job, job.reliefLights, y, lights)) {
      LM_LightPlainRelief(job, views, run, scratch);
      continue;
    }
    const int32_t* const heights[3] = {scratch.heights.At(y - 1), scratch.heights.At(y),
                                       scratch.heights.At(y + 1)};
    LightPlanes(job, views, run, scratch, [&](const LM_kernel_planes& planes, const float* place) {
      job.kernels->relief(lights, job.surface, place, pixels, heights, planes);
    });
  }
}

bool FillColumns(LM_render_job& job) {
  const size_t width = static_cast<size_t>(job.AreaWidth());
  job.columns.reset(new (std::nothrow) float[width + LM_KERNEL_SLACK]);
  if (job.columns == nullptr)
    return false;
  const LM_sample_grid grid(job.area, job.area, &job.params);
  for (size_t i = 0; i < width; ++i)
    job.columns[i] = grid.X(static_cast<int>(i));
  std::fill_n(job.columns.get() + width, LM_KERNEL_SLACK, job.columns[width - 1]);
  return true;
}

} // namespace

const char* LM_RenderMessage(LM_render_result result) {
  switch (result) {
  case LM_render_result::Done:
    return "the rectangle is lit";
  case LM_render_result::EmptyArea:
    return "the filter area is empty or reaches outside the image";
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
  job.params = params;
  LM_DetachParameterCaches(&job.params);
  job.area = area;
  job.imageWidth = imageWidth;
  job.imageHeight = imageHeight;
  job.kernels = kernels;
  if (!FillColumns(job))
    return LM_render_result::NoMemory;
  job.surface = {params.gloss, params.material, params.exposure};
  LM_PrepareLights(job);
  return LM_render_result::Done;
}

void LM_render_scratch_deleter::operator()(LM_render_scratch* scratch) const {
  delete scratch;
}

LM_render_scratch_pointer LM_NewRenderScratch() {
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
  if (views.relief.pixels == nullptr) {
    LightFlat(job, views, rect, scratch);
    return checked;
  }
  for (int32_t x = rect.left; x < rect.right; x += LM_RENDER_BLOCK)
    LightReliefBlock(
        job, views, {rect.top, x, rect.bottom, std::min(rect.right, x + LM_RENDER_BLOCK)}, scratch);
  return checked;
}
