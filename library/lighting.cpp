#include "bands.h"
#include "guard.h"
#include "picture.h"
#include "settings.h"

#include "LM_style_lighting.h"

#include <algorithm>
#include <cstring>
#include <memory>

struct limn_lighting {
  std::unique_ptr<LM_render_job> job;
  limn::Format format;
  limn_keep keep = LIMN_KEEP_NOTHING;
  mutable LM_kept_sums kept = {}; // of the last run, for pictures that are all flat or all not
};

namespace limn {
namespace {

// The settings as the plug-in and the shaders take them, for pictures of the format.
std::unique_ptr<foo> ParametersOf(const limn_settings* settings, const Format& format) {
  NeedPointer(settings, "settings");
  auto params = std::make_unique<foo>();
  const LM_rect& area = format.area;
  if (!LM_ParametersFromStyle(settings->style, area.right - area.left, area.bottom - area.top,
                              format.channels, params.get()))
    throw CallFailure{LIMN_BAD_STYLE, "the style holds no light"};
  return params;
}

void PrepareFor(const foo& params, const Format& format, limn_lighting& lighting) {
  auto job = std::make_unique<LM_render_job>();
  // The area was checked, so that there can be but one reason.
  if (LM_PrepareRender(params, format.area, format.width, format.height, LM_BestKernels(), *job) !=
      LM_render_result::Done)
    throw std::bad_alloc();
  lighting.format = format;
  lighting.job = std::move(job);
  lighting.kept = {};
}

std::unique_ptr<limn_lighting> Prepare(const limn_settings* settings, const limn_picture* picture) {
  NeedPointer(picture, "picture");
  const Format format = FormatOf(*picture);
  auto lighting = std::make_unique<limn_lighting>();
  PrepareFor(*ParametersOf(settings, format), format, *lighting);
  return lighting;
}

// n components of BYTES bytes each, `step` bytes apart, moved together. Returns the end.
template <size_t BYTES> uint8_t* Gather(const uint8_t* in, ptrdiff_t step, size_t n, uint8_t* out) {
  for (size_t i = 0; i < n; ++i, in += step, out += BYTES)
    std::memcpy(out, in, BYTES);
  return out;
}

// The relief that the area needs, moved to where no output is written. The view leads there.
std::unique_ptr<uint8_t[]> CopyRelief(const Format& format, LM_pixel_kind kind,
                                      LM_source_view& relief) {
  const LM_rect& area = format.area;
  const LM_rect rect = {std::max(area.top - LM_RELIEF_REACH, 0),
                        std::max(area.left - LM_RELIEF_REACH, 0),
                        std::min(area.bottom + LM_RELIEF_REACH, format.height),
                        std::min(area.right + LM_RELIEF_REACH, format.width)};
  const auto gather = kind == LM_pixel_kind::Bytes   ? Gather<1>
                      : kind == LM_pixel_kind::Words ? Gather<2>
                                                     : Gather<4>;
  const ptrdiff_t bytes = LM_ComponentBytes(kind);
  const size_t width = static_cast<size_t>(rect.right - rect.left);
  const size_t rowBytes = width * static_cast<size_t>(bytes);
  std::unique_ptr<uint8_t[]> copy(
      new uint8_t[rowBytes * static_cast<size_t>(rect.bottom - rect.top)]);
  uint8_t* out = copy.get();
  for (int32_t y = rect.top; y < rect.bottom; ++y)
    out = gather(relief.At(rect.left, y), relief.pixelStep, width, out);
  relief = {copy.get(), static_cast<ptrdiff_t>(rowBytes), bytes, rect};
  return copy;
}

// The sums that are kept for the picture, or null. Not to have them costs time alone.
LM_kept_sums* KeptFor(const limn_lighting& lighting, const LM_render_views& views) {
  const bool isFlat = views.relief.pixels == nullptr;
  if (lighting.keep == LIMN_KEEP_NOTHING || (!isFlat && lighting.keep != LIMN_KEEP_RELIEF) ||
      views.kind != LM_pixel_kind::Bytes)
    return nullptr;
  LM_kept_sums& kept = lighting.kept;
  if (kept.sums == nullptr || (kept.facets == 1) != isFlat)
    LM_StartKeeping(lighting.job->area, !isFlat, LM_ALL_LIGHTS, kept,
                    LM_TightForm(lighting.job->params, lighting.job->area, !isFlat));
  return &kept;
}

void CopyRows(const Format& format, const LM_render_views& views, Rows rows) {
  const size_t bytes =
      static_cast<size_t>(format.width) * static_cast<size_t>(views.source.pixelStep);
  for (int32_t y = rows.first; y < rows.last; ++y)
    std::memcpy(views.output.At(0, y), views.source.At(0, y), bytes);
}

void Run(const limn_lighting& lighting, const limn_picture& picture, const limn_options* options) {
  const Format& format = lighting.format;
  if (!(FormatOf(picture) == format))
    throw CallFailure{LIMN_BAD_ARGUMENT,
                      "picture: its size, channels or area are not those of the lighting"};
  Pixels pixels = PixelsOf(picture, format, lighting.job->params.bumpChannel);
  std::unique_ptr<uint8_t[]> relief;
  LM_render_views& views = pixels.views;
  if (pixels.reliefIsInOutput)
    relief = CopyRelief(format, views.reliefKind, views.relief);
  views.kept = KeptFor(lighting, views);
  const LM_rect& area = format.area;
  const bool isWhole = LM_Contains(area, {0, 0, format.height, format.width});
  const bool copies = !pixels.inPlace && (format.channels > 3 || !isWhole);
  const Rows rows = copies ? Rows{0, format.height} : Rows{area.top, area.bottom};
  LightInBands(rows, format.width, options != nullptr ? *options : limn_options{},
               [&](Rows band, LM_render_scratch& scratch) {
                 if (copies)
                   CopyRows(format, views, band);
                 LM_RenderRect(*lighting.job, views,
                               {std::max(band.first, area.top), area.left,
                                std::min(band.last, area.bottom), area.right},
                               scratch);
               });
}

} // namespace
} // namespace limn

using limn::Guard;
using limn::GuardedMade;
using limn::NeedPointer;

limn_lighting* limn_prepare(const limn_settings* settings, const limn_picture* picture,
                            limn_error* error) {
  return GuardedMade<limn_lighting*>(error,
                                     [&] { return limn::Prepare(settings, picture).release(); });
}

limn_result limn_run(const limn_lighting* lighting, const limn_picture* picture,
                     const limn_options* options, limn_error* error) {
  return Guard(error, [&] {
    NeedPointer(lighting, "lighting");
    NeedPointer(picture, "picture");
    limn::Run(*lighting, *picture, options);
  });
}

limn_result limn_light(const limn_settings* settings, const limn_picture* picture,
                       const limn_options* options, limn_error* error) {
  return Guard(error, [&] {
    const auto lighting = limn::Prepare(settings, picture);
    limn::Run(*lighting, *picture, options);
  });
}

uint64_t limn_kept_bytes(const limn_lighting* lighting, limn_keep keep) {
  if (lighting == nullptr || (keep != LIMN_KEEP_FLAT && keep != LIMN_KEEP_RELIEF))
    return 0;
  const bool relief = keep == LIMN_KEEP_RELIEF;
  return LM_KeptBytes(lighting->job->area, relief, LM_ALL_LIGHTS,
                      LM_TightForm(lighting->job->params, lighting->job->area, relief));
}

limn_result limn_set_keep(limn_lighting* lighting, limn_keep keep, limn_error* error) {
  return Guard(error, [&] {
    NeedPointer(lighting, "lighting");
    if (keep < LIMN_KEEP_NOTHING || keep > LIMN_KEEP_RELIEF)
      throw limn::CallFailure{LIMN_BAD_ARGUMENT, "keep: there is no such way to keep"};
    lighting->keep = keep;
    lighting->kept = {};
  });
}

limn_result limn_set_settings(limn_lighting* lighting, const limn_settings* settings,
                              limn_error* error) {
  return Guard(error, [&] {
    NeedPointer(lighting, "lighting");
    const auto params = limn::ParametersOf(settings, lighting->format);
    if (params->bumpChannel != lighting->job->params.bumpChannel ||
        !LM_ChangeSurface(*params, *lighting->job))
      limn::PrepareFor(*params, lighting->format, *lighting);
  });
}

void limn_lighting_free(limn_lighting* lighting) {
  delete lighting;
}

size_t limn_settings_parameters(const limn_settings* settings, const limn_picture* picture,
                                void* buffer, size_t room, limn_error* error) {
  return GuardedMade<size_t>(error, [&] {
    NeedPointer(picture, "picture");
    const auto params = limn::ParametersOf(settings, limn::FormatOf(*picture));
    if (buffer != nullptr && room >= sizeof *params)
      std::memcpy(buffer, params.get(), sizeof *params);
    return sizeof *params;
  });
}
