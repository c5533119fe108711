#include "thumbnail.h"

#include "CVMix.h"
#include "LM_style_lighting.h"

#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>

namespace limn {
namespace {

constexpr int NUM_LIT = 3;

LM_source_view PlanesFrom(const ReducedPhotograph& photograph, int plane, const LM_rect& bounds) {
  const ptrdiff_t step = photograph.numPlanes;
  return {photograph.pixels.data() + plane, photograph.width * step, step, bounds};
}

// Heights of fewer pixels are less far apart for the same slope.
void FitRelief(foo& params, const ReducedPhotograph& photograph) {
  const double share = static_cast<double>(photograph.width) / photograph.fullWidth;
  params.bumpHeight = static_cast<int32_t>(std::lround(params.bumpHeight * share));
}

// Takes back the light that the mask keeps off.
void KeepToMask(const ReducedPhotograph& photograph, std::vector<uint8_t>& lit) {
  const auto step = static_cast<size_t>(photograph.numPlanes);
  for (size_t pixel = 0; pixel < photograph.mask.size(); ++pixel)
    for (size_t plane = 0; plane < NUM_LIT; ++plane) {
      uint8_t& sample = lit[pixel * NUM_LIT + plane];
      sample =
          CVMixSelected(photograph.pixels[pixel * step + plane], sample, photograph.mask[pixel]);
    }
}

} // namespace

std::vector<uint8_t> LitThumbnail(const ReducedPhotograph& photograph, const LM_style& style) try {
  const std::unique_ptr<LM_render_job> job(new (std::nothrow) LM_render_job);
  const LM_render_scratch_pointer scratch = LM_NewRenderScratch();
  if (job == nullptr || scratch == nullptr ||
      !LM_ParametersFromStyle(style, photograph.fullWidth, photograph.fullHeight,
                              photograph.numPlanes, &job->params))
    return {};
  FitRelief(job->params, photograph);
  const LM_rect whole = {0, 0, photograph.height, photograph.width};
  if (LM_PrepareRender(job->params, whole, photograph.width, photograph.height, LM_BestKernels(),
                       *job) != LM_render_result::Done)
    return {};
  std::vector<uint8_t> lit(static_cast<size_t>(photograph.width) * photograph.height * NUM_LIT);
  LM_render_views views = {};
  views.source = PlanesFrom(photograph, 0, whole);
  views.output = {lit.data(), ptrdiff_t{photograph.width} * NUM_LIT, NUM_LIT, whole};
  if (job->params.bumpChannel > 0)
    views.relief = PlanesFrom(photograph, job->params.bumpChannel - 1, whole);
  if (LM_RenderRect(*job, views, whole, *scratch) != LM_render_result::Done)
    return {};
  KeepToMask(photograph, lit);
  return lit;
} catch (const std::bad_alloc&) {
  return {};
}

std::vector<uint8_t> UnlitThumbnail(const ReducedPhotograph& photograph) {
  std::vector<uint8_t> colours;
  const auto step = static_cast<size_t>(photograph.numPlanes);
  colours.reserve(photograph.pixels.size() / step * NUM_LIT);
  for (size_t at = 0; at + NUM_LIT <= photograph.pixels.size(); at += step)
    for (size_t plane = 0; plane < NUM_LIT; ++plane)
      colours.push_back(photograph.pixels[at + plane]);
  return colours;
}

} // namespace limn
