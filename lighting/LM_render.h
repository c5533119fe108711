// Lighting of any rectangle of an image that the caller holds in memory, with the bytes that the
// tile walk of a real run gives.
//
// Prepare a job once; then light rectangles with it, on as many threads as there are scratch
// objects. Rectangles that do not overlap may be lit at the same time; their order and their shapes
// change nothing in the result. Between two calls a caller may report progress, or stop.
#pragma once

#include <memory>
#include <optional>

#include "LM_image.h"
#include "LM_kept_sums.h"

enum class LM_render_result {
  Done,
  EmptyArea,   // the filter area has no pixels, or lies outside the image
  NoMemory,    // the job could not be prepared
  BadSource,   // the source view does not hold the rectangle, or has no pixels
  BadOutput,   // the same of the output view
  BadRelief,   // the relief view does not hold the rectangle and its neighbours inside the image
  OutsideArea, // the rectangle reaches outside the filter area
  NoLight      // the settings hold none, so that no job is prepared
};
// One sentence in English, without the full stop. Never null.
const char* LM_RenderMessage(LM_render_result result);

// How far beyond a rectangle its relief is read, in pixels, as far as the image goes there.
constexpr int LM_RELIEF_REACH = 2;

// All that lighting an image depends on, but for the pixels. Read only once it is prepared.
struct LM_render_job {
  foo params; // without caches
  LM_rect area;
  int32_t imageWidth, imageHeight;
  // x of every column of the area in shading units, and a few more that vectors may read.
  std::unique_ptr<float[]> columns;
  LM_sorted_lights flatLights, reliefLights;
  const LM_kernels* kernels; // null: the plain rows light everything

  int AreaWidth() const { return area.right - area.left; }
};

// Fills the job for one image and its filter area, both in pixels; the area must lie in the image.
// The parameter block is copied, caches left out; it may be the job's own. Its relief is used when
// a call brings a relief plane, whatever channel it names. kernels: null for the plain rows.
LM_render_result LM_PrepareRender(const foo& params, const LM_rect& area, int32_t imageWidth,
                                  int32_t imageHeight, const LM_kernels* kernels,
                                  LM_render_job& job);

// Takes gloss, material, exposure and ambience of a block with the job's own lights and heights, so
// that sums which are kept stay valid. False, and nothing changed, when the lights are others.
bool LM_ChangeSurface(const foo& params, LM_render_job& job);

// Room to work in, of at most LM_MOST_SCRATCH_BYTES: to be allocated by the caller, one for each
// thread, and kept from call to call. Holds nothing between calls.
constexpr size_t LM_MOST_SCRATCH_BYTES = 153'000;
struct LM_render_scratch;
struct LM_render_scratch_deleter {
  void operator()(LM_render_scratch* scratch) const;
};
using LM_render_scratch_pointer = std::unique_ptr<LM_render_scratch, LM_render_scratch_deleter>;
// Null when memory is short.
LM_render_scratch_pointer LM_NewRenderScratch();

// The lights of which the second block has others, marked. Nothing when they differ in more than
// lights and surface, so that no sum of the one holds for the other.
std::optional<uint32_t> LM_ChangedLights(const foo& before, const foo& after);

// What a call reads and writes. source and output: planes 0 to 2 are the first three components of
// a pixel; further bytes of the output are left alone. They may be the same pixels. relief: the
// first component of a pixel is its height; its pixels are null for a flat surface. Beyond the
// image its edge goes on, so the view has to hold the rectangle grown by LM_RELIEF_REACH and cut to
// the image. It must not overlap the output. kind: of the source's and the output's components
// alike, the first three of a pixel; reliefKind: of the relief's. Pixels of more than 8 bits are
// lit in the arithmetic of LM_deep_pixels.h, whatever the relief's kind; bytes in that of bytes.
// kept: this job's, or another's with the same heights and, as far as they hold them, lights; or
// null. Used and filled by rectangles of bytes that are as wide as its part.
struct LM_render_views {
  LM_source_view source;
  LM_output_view output;
  LM_source_view relief;
  LM_pixel_kind kind = LM_pixel_kind::Bytes, reliefKind = LM_pixel_kind::Bytes;
  LM_kept_sums* kept = nullptr;
};

// Lights the pixels of `rect`, in image coordinates. An empty one is done at once. With any result
// but Done nothing is written.
LM_render_result LM_RenderRect(const LM_render_job& job, const LM_render_views& views,
                               const LM_rect& rect, LM_render_scratch& scratch);
