#include "preview_frame.h"

#include "failure.h"

#include "LM_style_lighting.h"

#include <algorithm>
#include <memory>
#include <new>

namespace limn {
namespace {

constexpr int NUM_LIT = 3;
constexpr int MARGIN = 3; // of the reduced relief, in preview pixels: more than lighting reaches

// Every scale-th pixel of every scale-th row of a channel, the first at (x, y) of the document,
// beyond whose sides its edge goes on.
void Reduce(const CVDocument& document, int channel, int x, int y, int scale, const LM_rect& size,
            const LM_output_view& out) {
  const CVChannelView<const uint8_t> view = document.channel(channel);
  for (int row = size.top; row < size.bottom; ++row) {
    const int from = std::clamp(y + row * scale, 0, document.height() - 1);
    for (int column = size.left; column < size.right; ++column) {
      const int across = std::clamp(x + column * scale, 0, document.width() - 1);
      *out.At(column, row) = view.data[static_cast<size_t>(from) * view.rowStride +
                                       static_cast<size_t>(across) * view.pixelStep];
    }
  }
}

// Lights the picture in place. The document's relief is reduced as the picture was.
void LightPreview(const CVDocument& document, const CVRect& area, const LM_style& style,
                  const LM_preview_geometry& fit, LM_output_view picture, const std::string& file) {
  const auto job = std::make_unique<LM_render_job>();
  if (!LM_PreviewParametersFromStyle(style, fit, document.channelCount(), &job->params))
    throw Failure(ExitCode::Refused, file + ": the style holds no light");
  // The picture stands in the middle of its relief, which has a margin.
  const LM_rect all = {0, 0, fit.height + 2 * MARGIN, fit.width + 2 * MARGIN};
  const LM_rect lit = {MARGIN, MARGIN, MARGIN + fit.height, MARGIN + fit.width};
  std::vector<uint8_t> heights;
  LM_render_views views = {};
  if (job->params.bumpChannel > 0) {
    heights.resize(static_cast<size_t>(all.right) * static_cast<size_t>(all.bottom));
    Reduce(document, job->params.bumpChannel - 1, area.left - MARGIN * fit.scale,
           area.top - MARGIN * fit.scale, fit.scale, all, {heights.data(), all.right, 1, all});
    views.relief = {heights.data(), all.right, 1, all};
  }
  picture.bounds = lit;
  views.output = picture;
  views.source = {picture.pixels, picture.rowStride, picture.pixelStep, lit};
  const LM_render_scratch_pointer scratch = LM_NewRenderScratch();
  if (scratch == nullptr || LM_PrepareRender(job->params, lit, all.right, all.bottom,
                                             LM_BestKernels(), *job) != LM_render_result::Done)
    throw std::bad_alloc();
  const LM_render_result result = LM_RenderRect(*job, views, lit, *scratch);
  if (result != LM_render_result::Done)
    throw Failure(ExitCode::Refused, file + ": " + LM_RenderMessage(result));
}

} // namespace

Photograph DrawFrame(const CVDocument& document, CVRect area, const LM_style& style, Light light,
                     const std::string& file) {
  constexpr int SIDE = LM_FRAME_SIZE;
  Photograph frame;
  frame.width = frame.height = SIDE;
  frame.numPlanes = NUM_LIT;
  frame.pixels.assign(size_t{SIDE} * SIDE * NUM_LIT, 0xFF);
  frame.metadata = vips::VImage::black(1, 1);
  const LM_preview_geometry fit =
      LM_FitPreviewInFrame(area.right - area.left, area.bottom - area.top);
  const int left = fit.previewBox.left;
  const int top = fit.previewBox.top;
  CVPixelMap map = {};
  map.bounds = {0, 0, SIDE, SIDE};
  map.rowBytes = SIDE * NUM_LIT;
  map.columnBytes = NUM_LIT;
  map.baseAddress = frame.pixels.data();
  LM_DrawPreviewOutlines(map, left, top, fit.width, fit.height);
  const LM_rect size = {0, 0, fit.height, fit.width};
  LM_output_view picture = {map.baseAddress + top * map.rowBytes + left * NUM_LIT, map.rowBytes,
                            NUM_LIT, size};
  for (int plane = 0; plane < NUM_LIT; ++plane) {
    Reduce(document, plane, area.left, area.top, fit.scale, size, picture);
    ++picture.pixels;
  }
  picture.pixels -= NUM_LIT;
  if (light == Light::On)
    LightPreview(document, area, style, fit, picture, file);
  return frame;
}

} // namespace limn
