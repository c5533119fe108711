// Sums of light over which other lights are worked out picture after picture. Reading them is what
// that costs, so they are packed: the sums of a few neighbouring pixels lie close together.
#pragma once

#include <memory>

#include "LM_image.h"
#include "LM_kernels.h"

// Of a rectangle. What is never used is memory that the system does not hand out: the upper halves
// where none is needed, the other planes under white light.
class LM_packed_sums {
public:
  // Not empty. False when memory is short: nothing is kept then.
  bool Start(const LM_rect& rect, int facets);
  bool IsEmpty() const { return _packs == nullptr; }
  // From a pixel of the rectangle on, `column` a multiple of LM_PACKED_PIXELS.
  LM_packed_run At(int32_t column, int32_t row) const;
  // The most that it takes.
  static uint64_t Bytes(const LM_rect& rect, int facets);

private:
  int _facets = 0;
  size_t _packsInRow = 0;
  std::unique_ptr<LM_pack[]> _packs; // null: nothing is kept
  std::unique_ptr<uint16_t[]> _low[2], _high[2];
};
