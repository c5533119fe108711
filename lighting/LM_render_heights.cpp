// Heights of a block's rows, made as the walk down the image needs them.
#include <algorithm>
#include <cstring>

#include "LM_heights.h"
#include "LM_render_rows.h"

namespace {

// One row of the relief plane, from two pixels left of the run to two right of it. Beyond the image
// its edge goes on.
void FillTaps(const LM_render_job& job, const LM_source_view& relief, const LM_render_run& run,
              int32_t y, uint8_t* taps) {
  const int32_t row = std::clamp(y, 0, job.imageHeight - 1);
  const int32_t begin = run.x - LM_RELIEF_REACH;
  const int32_t end = run.x + run.pixels + LM_RELIEF_REACH;
  const int32_t left = std::max(begin, 0);
  const int32_t right = std::min(end, job.imageWidth);
  const uint8_t* pixel = relief.At(left, row);
  uint8_t* out = std::fill_n(taps, left - begin, *pixel);
  if (relief.pixelStep == 1) {
    out = std::copy_n(pixel, right - left, out);
  } else {
    for (int32_t x = left; x < right; ++x, pixel += relief.pixelStep)
      *out++ = *pixel;
  }
  std::fill_n(out, end - right, *relief.At(right - 1, row));
}

} // namespace

void LM_FillHeights(const LM_render_job& job, const LM_source_view& relief,
                    const LM_render_run& run, bool first, LM_render_scratch& scratch) {
  for (int32_t y = first ? run.y - 1 : run.y + 1; y <= run.y + 1; ++y)
    FillTaps(job, relief, run, y, scratch.taps.At(y));
  const uint8_t* const taps[3] = {scratch.taps.At(run.y - 1), scratch.taps.At(run.y),
                                  scratch.taps.At(run.y + 1)};
  int32_t* heights = scratch.heights.At(run.y);
  const int n = run.pixels + 2;
  if (job.kernels != nullptr) {
    job.kernels->heights(taps, n, job.params.bumpHeight, heights);
    return;
  }
  for (int i = 0; i < n; ++i)
    heights[i] = LM_WeighHeight(taps[0] + i, taps[1] + i, taps[2] + i, job.params.bumpHeight);
}
