// The pieces of LM_RenderRect: what a thread works in, and rows of pixels, plain and by vectors.
#ifndef LM_RENDER_ROWS_H
#define LM_RENDER_ROWS_H

#include "LM_render.h"
#include "LM_sample_rows.h"

// Pixels that are worked on together: their rows stay in the first-level cache.
constexpr int LM_RENDER_BLOCK = 1024;

// Three rows that go down an image one by one: row y is at At(y). Sized so that no two rows lie a
// multiple of 4096 bytes apart, where stores would hold up loads.
template <class Element> struct LM_row_ring {
  static constexpr int LENGTH = LM_RENDER_BLOCK + 4 + LM_KERNEL_SLACK;
  alignas(64) Element row[3][LENGTH];
  Element* At(int32_t y) { return row[(y + 3) % 3]; } // y from -3
};

struct LM_render_scratch {
  LM_row_ring<uint8_t> taps;    // bytes of the relief plane, from two pixels left of the block
  LM_row_ring<int32_t> heights; // from one pixel left of it
  alignas(64) uint8_t planes[LM_PLANES][LM_RENDER_BLOCK + LM_KERNEL_SLACK];
  LM_scratch_rows plain;
  // Three rows of heights one behind the other, as a bump map has them.
  int32_t plainHeights[3 * (LM_MAX_RELIEF_PIXELS + 2)];
};

// One run of pixels of a row, at most LM_RENDER_BLOCK: the first at (x, y) of the image.
struct LM_render_run {
  int32_t x, y, pixels;
};

// Fills the next row of heights, that of image row y, for the run's columns and one more on either
// side. first: nothing of the rows above is there yet.
void LM_FillHeights(const LM_render_job& job, const LM_source_view& relief,
                    const LM_render_run& run, bool first, LM_render_scratch& scratch);

// Lights a run by the plain shader. With relief, scratch holds the heights of rows y - 1 to y + 1.
void LM_LightPlainFlat(const LM_render_job& job, const LM_render_views& views,
                       const LM_render_run& run, LM_render_scratch& scratch);
void LM_LightPlainRelief(const LM_render_job& job, const LM_render_views& views,
                         const LM_render_run& run, LM_render_scratch& scratch);

// Sorts the block's lights for flat and for relief rows.
void LM_PrepareLights(LM_render_job& job);
// The lights as the row y of the image sees them. False when a number could come up in that row
// that vectors do not treat as the plain code does: too small, too large, or none.
bool LM_RowLights(const LM_render_job& job, const LM_kernel_lights& lights, int32_t y,
                  LM_kernel_lights& row);

#endif
