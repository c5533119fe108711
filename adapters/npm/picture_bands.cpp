#include "picture_bands.h"

#include "guard.h"
#include "picture.h"
#include "picture_heights.h"
#include "settings.h"

#include "LM_height_words.h"
#include "LM_style_lighting.h"

#include <algorithm>
#include <cmath>
#include <memory>

struct limn_bands {
  LM_render_job job;
  LM_render_scratch_pointer scratch;
  int32_t channels;
};

namespace limn {
namespace {

// The size that the style is fitted to; that of `area` unless the picture is a reduced one.
struct Fit {
  int width, height;
};

std::unique_ptr<limn_bands> Prepare(const limn_settings* settings, const limn_picture& picture,
                                    Fit fit) {
  NeedPointer(settings, "settings");
  const Format format = FormatOf(picture);
  const int areaWidth = format.area.right - format.area.left;
  if (fit.width < 1 || fit.height < 1)
    fit = {areaWidth, format.area.bottom - format.area.top};
  auto bands = std::make_unique<limn_bands>();
  foo& params = bands->job.params;
  if (!LM_ParametersFromStyle(settings->style, fit.width, fit.height, format.channels, &params))
    throw CallFailure{LIMN_BAD_STYLE, "the style holds no light"};
  // Where a pixel stands for several, heights are as many times closer together.
  if (fit.width != areaWidth)
    params.bumpHeight =
        static_cast<int32_t>(std::lround(1.0 * params.bumpHeight * areaWidth / fit.width));
  bands->scratch = LM_NewRenderScratch();
  if (LM_PrepareRender(params, format.area, format.width, format.height, LM_BestKernels(),
                       bands->job) != LM_render_result::Done ||
      bands->scratch == nullptr)
    throw std::bad_alloc();
  bands->channels = format.channels;
  return bands;
}

template <class Byte>
LM_view<Byte> ViewOf(Byte* pixels, int32_t kind, int32_t step, const LM_rect& part) {
  const ptrdiff_t pixelStep = ptrdiff_t{LM_ComponentBytes(static_cast<LM_pixel_kind>(kind))} * step;
  return {pixels, pixelStep * (part.right - part.left), pixelStep, part};
}

void Light(limn_bands& bands, const limn_band& band) {
  LM_render_views views = {};
  views.kind = static_cast<LM_pixel_kind>(band.kind);
  views.output = ViewOf(band.pixels, band.kind, bands.channels, band.part);
  views.source = ViewOf<const uint8_t>(band.pixels, band.kind, bands.channels, band.part);
  if (band.relief != nullptr) {
    views.reliefKind = static_cast<LM_pixel_kind>(band.relief_kind);
    views.relief = ViewOf(band.relief, band.relief_kind, band.relief_step, band.relief_part);
  }
  const LM_rect& area = bands.job.area;
  const LM_rect part = {std::max(band.part.top, area.top), std::max(band.part.left, area.left),
                        std::min(band.part.bottom, area.bottom),
                        std::min(band.part.right, area.right)};
  const LM_render_result result = LM_RenderRect(bands.job, views, part, *bands.scratch);
  if (result != LM_render_result::Done)
    throw CallFailure{LIMN_FAILED, LM_RenderMessage(result)};
}

void MakeHeights(const limn_heights& heights) {
  LM_height_source source;
  if (!LM_SetHeightSource(source, heights.source))
    throw CallFailure{LIMN_BAD_ARGUMENT, "relief: it is " + LM_HeightSourceWords()};
  HeightsOfPicture(LM_ResolvedSource(source, true), LM_LUMINANCE, heights.pixels, 4,
                   {heights.width, heights.height}, heights.picture_side, heights.out,
                   {heights.out_width, heights.out_height});
}

} // namespace
} // namespace limn

limn_bands* limn_bands_prepare(const limn_settings* settings, int32_t width, int32_t height,
                               int32_t channels, int32_t x, int32_t y, int32_t areaWidth,
                               int32_t areaHeight, int32_t fitWidth, int32_t fitHeight,
                               limn_error* error) {
  return limn::GuardedMade<limn_bands*>(error, [&] {
    limn_picture picture = {};
    picture.width = width, picture.height = height, picture.channels = channels;
    picture.area = {x, y, areaWidth, areaHeight};
    return limn::Prepare(settings, picture, {fitWidth, fitHeight}).release();
  });
}

int32_t limn_bands_own_relief(const limn_bands* bands) {
  return bands->job.params.bumpChannel;
}

limn_result limn_bands_light(limn_bands* bands, const limn_band* band, limn_error* error) {
  return limn::Guard(error, [&] { limn::Light(*bands, *band); });
}

void limn_bands_free(limn_bands* bands) {
  delete bands;
}

int32_t limn_preview_width(int32_t width, int32_t height) {
  return LM_FitPreviewInFrame(width, height).width;
}

limn_result limn_heights_make(const limn_heights* heights, limn_error* error) {
  return limn::Guard(error, [&] { limn::MakeHeights(*heights); });
}
