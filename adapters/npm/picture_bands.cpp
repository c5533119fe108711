#include "picture_bands.h"

#include "guard.h"
#include "picture.h"
#include "settings.h"

#include "LM_style_lighting.h"

#include <algorithm>
#include <memory>

struct limn_bands {
  LM_render_job job;
  LM_render_scratch_pointer scratch;
  int32_t channels;
  int32_t ownRelief; // the picture's channel that the style takes as relief, from 1, or 0
};

namespace limn {
namespace {

std::unique_ptr<limn_bands> Prepare(const limn_settings* settings, const limn_picture& picture) {
  NeedPointer(settings, "settings");
  const Format format = FormatOf(picture);
  auto bands = std::make_unique<limn_bands>();
  const LM_render_result prepared = LM_PrepareStyle(settings->style, format.area, format.width,
                                                    format.height, format.channels, bands->job);
  if (prepared == LM_render_result::NoLight)
    throw CallFailure{LIMN_BAD_STYLE, "the style holds no light"};
  bands->scratch = LM_NewRenderScratch();
  if (prepared != LM_render_result::Done || bands->scratch == nullptr)
    throw std::bad_alloc();
  bands->channels = format.channels;
  bands->ownRelief = bands->job.params.bumpChannel;
  return bands;
}

template <class Byte>
LM_view<Byte> RowsOf(Byte* pixels, int32_t kind, int32_t step, int32_t width, int32_t first,
                     int32_t last) {
  const ptrdiff_t pixelStep = ptrdiff_t{LM_ComponentBytes(static_cast<LM_pixel_kind>(kind))} * step;
  return {pixels, pixelStep * width, pixelStep, {first, 0, last, width}};
}

void Light(limn_bands& bands, const limn_band& band) {
  const int32_t width = bands.job.imageWidth;
  LM_render_views views = {};
  views.kind = static_cast<LM_pixel_kind>(band.kind);
  views.output = RowsOf(band.pixels, band.kind, bands.channels, width, band.first, band.last);
  views.source = {views.output.pixels, views.output.rowStride, views.output.pixelStep,
                  views.output.bounds};
  if (band.relief != nullptr) {
    views.reliefKind = static_cast<LM_pixel_kind>(band.relief_kind);
    views.relief = RowsOf(band.relief, band.relief_kind, band.relief_step, width, band.relief_first,
                          band.relief_last);
  }
  const LM_rect& area = bands.job.area;
  const LM_rect part = {std::max(band.first, area.top), area.left, std::min(band.last, area.bottom),
                        area.right};
  const LM_render_result result = LM_RenderRect(bands.job, views, part, *bands.scratch);
  if (result != LM_render_result::Done)
    throw CallFailure{LIMN_FAILED, LM_RenderMessage(result)};
}

} // namespace
} // namespace limn

limn_bands* limn_bands_prepare(const limn_settings* settings, int32_t width, int32_t height,
                               int32_t channels, int32_t x, int32_t y, int32_t areaWidth,
                               int32_t areaHeight, limn_error* error) {
  return limn::GuardedMade<limn_bands*>(error, [&] {
    limn_picture picture = {};
    picture.width = width, picture.height = height, picture.channels = channels;
    picture.area = {x, y, areaWidth, areaHeight};
    return limn::Prepare(settings, picture).release();
  });
}

int32_t limn_bands_own_relief(const limn_bands* bands) {
  return bands->ownRelief;
}

limn_result limn_bands_light(limn_bands* bands, const limn_band* band, limn_error* error) {
  return limn::Guard(error, [&] { limn::Light(*bands, *band); });
}

void limn_bands_free(limn_bands* bands) {
  delete bands;
}
