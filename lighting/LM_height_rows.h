// Rows of heights, filtered from a plane of any kind of pixel from the top down.
#pragma once

#include "LM_image.h"
#include "LM_kernels.h"

// Pixels that are worked on together: their rows stay in the first-level cache.
constexpr int LM_RENDER_BLOCK = 1024;

// The last rows of those that go down an image one by one: row y is at At(y). Sized so that no two
// rows lie a multiple of 4096 bytes apart, where stores would hold up loads.
template <class Element, int ROWS = 3> struct LM_row_ring {
  static constexpr int LENGTH = LM_RENDER_BLOCK + 4 + LM_KERNEL_SLACK;
  alignas(64) Element row[ROWS][LENGTH];
  Element* At(int32_t y) { return row[(y + ROWS) % ROWS]; } // y from -ROWS
};

// Three rows of a plane: bytes, or words for a plane of more. Only the one is used.
struct LM_tap_rows {
  LM_row_ring<uint8_t>* bytes;
  LM_row_ring<uint16_t>* words;
};

// Of `count` columns from `first` on, LM_RENDER_BLOCK + 2 at most. Beyond the edges, which lie in
// the plane's bounds, what is at the edge goes on. A float counts from 0 to 1, rounded to 16 bits.
// The plane and the rings outlive it.
class LM_height_rows {
public:
  LM_height_rows(const LM_source_view& plane, LM_pixel_kind kind, const LM_rect& edges,
                 int32_t first, int count, int32_t scale, const LM_kernels* kernels,
                 const LM_tap_rows& taps)
      : _plane(plane), _kind(kind), _edges(edges), _first(first), _count(count), _scale(scale),
        _kernels(kernels), _taps(taps) {}

  // Makes the heights of row y. Once the first row is made, the one below each time, or any after
  // StartAnew. heights: room for LM_KERNEL_SLACK more.
  void Make(int32_t y, int32_t* heights);
  void StartAnew() { _hasRowsAbove = false; }

private:
  template <class Tap, class Read> void _FillTaps(int32_t y, Tap* taps, Read read);
  void _FillTaps(int32_t y);

  LM_source_view _plane;
  LM_pixel_kind _kind;
  LM_rect _edges;
  int32_t _first;
  int _count;
  int32_t _scale;
  const LM_kernels* _kernels;
  LM_tap_rows _taps;
  bool _hasRowsAbove = false;
};
