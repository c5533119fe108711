#include "LM_bumps.h"

#include <algorithm>

#include "LM_globals.h"
#include "LM_memory.h"
#include "LM_tiles.h"

namespace {

// What the filter may read: `columns` x `rows` bytes from `first`, a row every `rowBytes`, which
// may run upwards.
struct ChannelView {
  const uint8_t* first;
  ptrdiff_t rowBytes;
  int32_t columns, rows;
};

// Taps of height (x, y) reach from (x + 1, y + 1) to (x + 3, y + 3).
constexpr int32_t LAST_TAP = 3;

// A height near the edge of a rectangle that 16-bit sides could not express whole: what is missing
// lies outside the image, where the last delivered row and column go on.
int32_t HeightAtEdge(const ChannelView& view, int32_t x, int32_t y, int32_t scale) {
  uint8_t taps[3][3];
  for (int r = 0; r < 3; ++r) {
    const int32_t row = std::min(y + 1 + r, view.rows - 1);
    for (int c = 0; c < 3; ++c)
      taps[r][c] = view.first[row * view.rowBytes + std::min(x + 1 + c, view.columns - 1)];
  }
  return LM_WeighHeight(taps[0], taps[1], taps[2], scale);
}

bool GrowHeights(LM_bump_map& map, uint64_t needed) {
  if (map.heights != nullptr && map.capacity >= needed)
    return true;
  LM_DisposeAndClear(map.heights);
  if (needed > UINT32_MAX)
    return false;
  map.heights = static_cast<int32_t*>(LM_NewPtr(static_cast<size_t>(needed)));
  if (map.heights == nullptr)
    return false;
  map.capacity = static_cast<uint32_t>(needed);
  return true;
}

// The preview's channel buffer holds three pixels of margin all round, more than the rectangle
// names.
ChannelView DeliveredView(const FilterRecord& record, const LM_globals& globals) {
  const CVPixelMap& preview = globals.previewMaps[LM_BUMP_PREVIEW_MAP];
  const CVRect& tile = record.inTileRect;
  ChannelView view = {record.inPixels, record.inRowStride, tile.right - tile.left,
                      tile.bottom - tile.top};
  if (record.inPixels == preview.baseAddress && preview.baseAddress != nullptr) {
    view.columns = preview.bounds.right + 2 * LM_BUMP_MARGIN;
    view.rows = preview.bounds.bottom + 2 * LM_BUMP_MARGIN;
  }
  return view;
}

} // namespace

int16_t LM_StoreBumpMap(FilterRecord* record, LM_globals* globals) {
  LM_bump_map& map = globals->bumpMap;
  const CVRect32 wanted = LM_WantedBumpRect(record, globals, LM_BUMP_MARGIN);
  const int32_t columns = std::max(wanted.right - wanted.left - 2, 0);
  const int32_t rows = std::max(wanted.bottom - wanted.top - 2, 0);
  map.width = static_cast<uint32_t>(columns);
  map.rowBytes = map.width * 4;
  if (!GrowHeights(map, static_cast<uint64_t>(columns) * static_cast<uint64_t>(rows) * 4))
    return 1;
  const ChannelView view = DeliveredView(*record, *globals);
  if (view.columns < 1 || view.rows < 1 || view.first == nullptr) {
    // Nothing was delivered: level ground, not what an earlier tile or nobody has left there.
    std::fill_n(map.heights, static_cast<size_t>(columns) * static_cast<size_t>(rows), 0);
    return 0;
  }
  const bool cutShort =
      wanted.right != record->inTileRect.right || wanted.bottom != record->inTileRect.bottom;
  for (int32_t y = 0; y < rows; ++y) {
    int32_t* out = map.heights + static_cast<size_t>(y) * map.width;
    const int32_t whole = y + LAST_TAP < view.rows ? std::min(columns, view.columns - LAST_TAP) : 0;
    const uint8_t* source = whole > 0 ? view.first + (y + 1) * view.rowBytes + 1 : nullptr;
    int32_t x = 0;
    for (; x < whole; ++x)
      out[x] = LM_WeighHeight(source + x, source + x + view.rowBytes,
                              source + x + 2 * view.rowBytes, map.scale);
    for (; x < columns; ++x)
      out[x] = cutShort ? HeightAtEdge(view, x, y, map.scale) : 0;
  }
  return 0;
}
