#include "LM_bumps.h"

#include <algorithm>

#include "LM_globals.h"
#include "LM_height_rows.h"
#include "LM_memory.h"
#include "LM_tiles.h"

namespace {

// The delivered channel. The preview's buffer holds three pixels of margin all round, more than the
// rectangle names.
LM_source_view DeliveredPlane(const FilterRecord& record, const LM_globals& globals) {
  const CVPixelMap& preview = globals.previewMaps[LM_BUMP_PREVIEW_MAP];
  const CVRect& tile = record.inTileRect;
  LM_rect bounds = {0, 0, tile.bottom - tile.top, tile.right - tile.left};
  if (record.inPixels == preview.baseAddress && preview.baseAddress != nullptr)
    bounds = {0, 0, preview.bounds.bottom + 2 * LM_BUMP_MARGIN,
              preview.bounds.right + 2 * LM_BUMP_MARGIN};
  return {record.inPixels, record.inRowStride, 1, bounds};
}

} // namespace

bool LM_GrowHeights(LM_bump_map& map, uint64_t bytes) {
  if (map.heights != nullptr && map.capacity >= bytes)
    return true;
  LM_DisposeAndClear(map.heights);
  if (bytes <= UINT32_MAX)
    map.heights = static_cast<int32_t*>(LM_NewPtr(static_cast<size_t>(bytes)));
  map.capacity = map.heights != nullptr ? static_cast<uint32_t>(bytes) : 0;
  return map.heights != nullptr;
}

int16_t LM_StoreBumpMap(FilterRecord* record, LM_globals* globals) {
  LM_bump_map& map = globals->bumpMap;
  const CVRect32 wanted = LM_WantedBumpRect(record, globals, LM_BUMP_MARGIN);
  const int32_t columns = std::max(wanted.right - wanted.left - 2, 0);
  const int32_t rows = std::max(wanted.bottom - wanted.top - 2, 0);
  map.width = static_cast<uint32_t>(columns);
  map.rowBytes = map.width * 4;
  if (!LM_GrowHeights(map, static_cast<uint64_t>(columns) * static_cast<uint64_t>(rows) * 4))
    return 1;
  const LM_source_view plane = DeliveredPlane(*record, *globals);
  if (LM_IsEmpty(plane.bounds) || plane.pixels == nullptr) {
    // Nothing was delivered: level ground, not what an earlier tile or nobody has left there.
    std::fill_n(map.heights, static_cast<size_t>(columns) * static_cast<size_t>(rows), 0);
    return 0;
  }
  LM_row_ring<uint8_t> taps = {};
  int32_t row[LM_RENDER_BLOCK + LM_KERNEL_SLACK];
  for (int32_t x = 0; x < columns; x += LM_RENDER_BLOCK) {
    const int32_t count = std::min(columns - x, LM_RENDER_BLOCK);
    LM_height_rows heights(plane, LM_pixel_kind::Bytes, plane.bounds, x + 2, count, map.scale,
                           LM_BestKernels(), {&taps, nullptr});
    for (int32_t y = 0; y < rows; ++y) {
      heights.Make(y + 2, row);
      std::copy_n(row, count, map.heights + static_cast<size_t>(y) * map.width + x);
    }
  }
  return 0;
}
