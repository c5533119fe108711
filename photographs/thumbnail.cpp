#include "thumbnail.h"

#include "CVMix.h"
#include "LM_style_lighting.h"
#include "halving.h"

#include <cmath>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace limn {
namespace {

constexpr int NUM_LIT = 3;

LM_source_view PlanesFrom(const ReducedPhotograph& photograph, int plane, const LM_rect& bounds) {
  const ptrdiff_t step = photograph.numPlanes;
  return {photograph.pixels.data() + plane, photograph.width * step, step, bounds};
}

// The heights of a style's relief in the picture; null where it has none.
LM_source_view ReliefOf(const ReducedPhotograph& photograph, const LM_style& style,
                        const foo& params, const LM_rect& bounds, LM_pixel_kind& kind) {
  const LM_height_source relief = LM_ResolvedSource(photograph.relief, style.bumpChannel != 0);
  kind = LM_pixel_kind::Bytes;
  if (relief.kind == LM_height_kind::None)
    return {};
  const bool isChannel = relief.kind == LM_height_kind::Channel && LM_IsPlain(relief) &&
                         relief.channel <= photograph.numPlanes;
  if (relief.kind == LM_height_kind::Style || isChannel) {
    const int channel = isChannel ? relief.channel : params.bumpChannel;
    return channel > 0 ? PlanesFrom(photograph, channel - 1, bounds) : LM_source_view{};
  }
  if (photograph.heights.empty())
    return {};
  kind = LM_pixel_kind::Words;
  return {reinterpret_cast<const uint8_t*>(photograph.heights.data()),
          ptrdiff_t{photograph.width} * 2, 2, bounds};
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

std::vector<uint8_t> Shown(const ReducedPhotograph& photograph, std::vector<uint8_t> colours) {
  return photograph.samples == 1 ? std::move(colours)
                                 : Halved(colours, photograph.width, photograph.height, NUM_LIT);
}

} // namespace

std::vector<uint8_t> LitThumbnail(const ReducedPhotograph& photograph, const LM_style& style) try {
  const std::unique_ptr<LM_render_job> job(new (std::nothrow) LM_render_job);
  const LM_render_scratch_pointer scratch = LM_NewRenderScratch();
  if (job == nullptr || scratch == nullptr ||
      !LM_ParametersFromStyle(style, photograph.fullWidth, photograph.fullHeight,
                              photograph.numPlanes, &job->params))
    return {};
  FitRelief(job->params, photograph.width, photograph.fullWidth);
  const LM_rect whole = {0, 0, photograph.height, photograph.width};
  if (LM_PrepareRender(job->params, whole, photograph.width, photograph.height, LM_BestKernels(),
                       *job) != LM_render_result::Done)
    return {};
  std::vector<uint8_t> lit(static_cast<size_t>(photograph.width) * photograph.height * NUM_LIT);
  LM_render_views views = {};
  views.source = PlanesFrom(photograph, 0, whole);
  views.output = {lit.data(), ptrdiff_t{photograph.width} * NUM_LIT, NUM_LIT, whole};
  views.relief = ReliefOf(photograph, style, job->params, whole, views.reliefKind);
  if (LM_RenderRect(*job, views, whole, *scratch) != LM_render_result::Done)
    return {};
  KeepToMask(photograph, lit);
  return Shown(photograph, std::move(lit));
} catch (const std::bad_alloc&) {
  return {};
}

void FitRelief(foo& params, int width, int fullWidth) {
  const double share = static_cast<double>(width) / fullWidth;
  params.bumpHeight = static_cast<int32_t>(std::lround(params.bumpHeight * share));
}

std::vector<uint8_t> UnlitThumbnail(const ReducedPhotograph& photograph) {
  std::vector<uint8_t> colours;
  const auto step = static_cast<size_t>(photograph.numPlanes);
  colours.reserve(photograph.pixels.size() / step * NUM_LIT);
  for (size_t at = 0; at + NUM_LIT <= photograph.pixels.size(); at += step)
    for (size_t plane = 0; plane < NUM_LIT; ++plane)
      colours.push_back(photograph.pixels[at + plane]);
  return Shown(photograph, std::move(colours));
}

} // namespace limn
