// Setting the preview up, and collecting the reduced image and bump channel.
#include <algorithm>
#include <cstring>

#include "LM_memory.h"
#include "LM_preview.h"
#include "LM_preview_geometry.h"
#include "LM_tiles.h"
#include "MacMemory.h"

namespace {

constexpr uint8_t WHITE = 0xFF;

CVPixelMap ColorMap(int32_t width, int32_t height, int32_t mode) {
  CVPixelMap map = {};
  map.bounds = {0, 0, height, width};
  map.imageMode = mode;
  map.rowBytes = (LM_PLANES * width + 3) & ~3;
  map.columnBytes = LM_PLANES;
  map.planeBytes = 1;
  return map;
}

CVPixelMap BumpMap(int32_t width, int32_t height) {
  CVPixelMap map = ColorMap(width, height, CV_MODE_GRAY);
  map.rowBytes = (width + 2 * LM_BUMP_MARGIN + 3) & ~3;
  map.columnBytes = 1;
  return map;
}

bool AllocateWhite(CVPixelMap& map, int32_t rows) {
  const size_t bytes = static_cast<size_t>(map.rowBytes) * static_cast<size_t>(rows);
  map.baseAddress = static_cast<uint8_t*>(LM_NewPtr(bytes));
  if (map.baseAddress != nullptr)
    std::memset(map.baseAddress, WHITE, bytes);
  return map.baseAddress != nullptr;
}

bool AllocateHeights(LM_bump_map& map, int32_t width, int32_t height) {
  LM_DisposeAndClear(map.heights);
  const uint64_t bytes =
      (static_cast<uint64_t>(height) + 2) * (static_cast<uint64_t>(width) + 2) * 4;
  if (!LM_GrowHeights(map, bytes))
    return false;
  std::memset(map.heights, WHITE, static_cast<size_t>(bytes));
  return true;
}

bool HostHasMask(const FilterRecord* record) {
  return record->maskUsable != 0 && record->maskPresent > 0;
}

// The mask is host-sized and short-lived: it comes from the Memory Manager, without the reserve.
bool AttachMask(CVPixelMap& frame) {
  frame.mask = reinterpret_cast<CVPixelMask*>(NewPtrClear(static_cast<Size>(sizeof(CVPixelMask))));
  if (frame.mask == nullptr)
    return false;
  frame.version = 1;
  frame.mask->rowBytes = ((frame.bounds.right + 3) / 4) * 4;
  frame.mask->columnBytes = 1;
  const size_t bytes =
      static_cast<size_t>(frame.mask->rowBytes) * static_cast<size_t>(frame.bounds.bottom);
  frame.mask->maskData = reinterpret_cast<uint8_t*>(NewPtr(static_cast<Size>(bytes)));
  if (frame.mask->maskData == nullptr)
    return false;
  std::memset(frame.mask->maskData, WHITE, bytes);
  return true;
}

bool AllocateBuffers(const FilterRecord* record, LM_globals* g, const Rect& frameBox) {
  CVPixelMap* maps = g->previewMaps;
  const int32_t frameWidth = std::max(frameBox.right - frameBox.left, 1);
  const int32_t frameHeight = std::max(frameBox.bottom - frameBox.top, 1);
  maps[LM_FRAME_MAP] = ColorMap(frameWidth, frameHeight, record->colorMode);
  maps[LM_PREVIEW_MAP] = ColorMap(g->previewWidth, g->previewHeight, record->colorMode);
  maps[LM_BUMP_PREVIEW_MAP] = BumpMap(g->previewWidth, g->previewHeight);
  return AllocateWhite(maps[LM_FRAME_MAP], frameHeight) &&
         AllocateWhite(maps[LM_PREVIEW_MAP], g->previewHeight) &&
         AllocateWhite(maps[LM_BUMP_PREVIEW_MAP], g->previewHeight + 2 * LM_BUMP_MARGIN) &&
         AllocateHeights(g->bumpMap, g->previewWidth, g->previewHeight) &&
         (!HostHasMask(record) || AttachMask(maps[LM_FRAME_MAP]));
}

// A delivered tile. Beyond what was delivered its last row and column go on, as far as is wanted.
struct Delivery {
  const uint8_t* pixels;
  int32_t rowBytes;
  CVRect tile;
  int32_t wantedRows, wantedColumns;
};

// Where the reduced pixels go; what would fall outside is dropped.
struct Destination {
  uint8_t* pixels;
  int32_t rowBytes;
  int32_t pixelBytes;
  int32_t rows, columns; // room, in pixels
  int32_t row, column;   // of the filter area's first pixel
};

// The first row of a tile that falls on the sampling grid, which starts at the filter area's top.
int32_t FirstSampledRow(int32_t dy, int32_t step) {
  const int32_t first = (dy / step + 1) * step - dy;
  return first == step ? 0 : first;
}

// Reduces what is delivered for the record's input rectangle: from its first sampled pixel on,
// every step-th of every step-th row.
void Reduce(const FilterRecord* record, const LM_globals* g, const Delivery& from,
            const Destination& to) {
  const int32_t lastRow = from.tile.bottom - from.tile.top - 1;
  const int32_t lastColumn = from.tile.right - from.tile.left - 1;
  if (lastRow < 0 || lastColumn < 0)
    return;
  const int32_t step = LM_PreviewStep(g);
  const int32_t dy = record->inTileRect.top - record->filterArea.top;
  const int32_t dx = record->inTileRect.left - record->filterArea.left;
  int32_t outRow = to.row + dy / step;
  for (int32_t row = FirstSampledRow(dy, step); row < from.wantedRows && outRow < to.rows;
       row += step, ++outRow) {
    const uint8_t* in =
        from.pixels + static_cast<ptrdiff_t>(std::min(row, lastRow)) * from.rowBytes;
    int32_t outColumn = to.column + dx / step;
    for (int32_t column = 0; column < from.wantedColumns && outColumn < to.columns;
         column += step, ++outColumn) {
      if (outRow < 0 || outColumn < 0)
        continue;
      std::memcpy(to.pixels + static_cast<ptrdiff_t>(outRow) * to.rowBytes +
                      static_cast<ptrdiff_t>(outColumn) * to.pixelBytes,
                  in + static_cast<ptrdiff_t>(std::min(column, lastColumn)) * to.pixelBytes,
                  static_cast<size_t>(to.pixelBytes));
    }
  }
}

// Reduces the delivered input into a map whose buffer has so many pixels of margin all round, which
// are asked for too.
void ReduceInput(const FilterRecord* record, const LM_globals* g, const CVPixelMap& map,
                 int32_t margin) {
  if (map.baseAddress == nullptr || record->inPixels == nullptr)
    return;
  const CVRect32 wanted = LM_WantedBumpRect(record, g, margin * LM_PreviewStep(g));
  Reduce(record, g,
         {record->inPixels, record->inRowStride, record->inTileRect, wanted.bottom - wanted.top,
          wanted.right - wanted.left},
         {map.baseAddress, map.rowBytes, map.columnBytes, map.bounds.bottom + 2 * margin,
          map.bounds.right + 2 * margin, margin, margin});
}

void ReduceMask(const FilterRecord* record, const LM_globals* g) {
  const CVPixelMap& frame = g->previewMaps[LM_FRAME_MAP];
  if (!HostHasMask(record) || record->maskPixels == nullptr || frame.mask == nullptr)
    return;
  const CVRect& tile = record->maskTileRect;
  Reduce(record, g,
         {record->maskPixels, record->maskRowStride, tile, tile.bottom - tile.top,
          tile.right - tile.left},
         {frame.mask->maskData, frame.mask->rowBytes, 1, frame.bounds.bottom, frame.bounds.right,
          g->previewOffsetY, g->previewOffsetX});
}

// Tiles that a walk visits between two sides.
int64_t TilesAlong(int32_t first, int32_t last, int32_t edge) {
  return std::max<int64_t>((int64_t{last} - first + edge - 1) / edge, 1);
}

int64_t TilesOf(const CVRect& area, int32_t edge) {
  return TilesAlong(area.left, area.right, edge) * TilesAlong(area.top, area.bottom, edge);
}

} // namespace

int16_t LM_SetUpPreview(FilterRecord* record, LM_globals* globals, const Rect& frame,
                        Rect* preview) {
  const CVRect& area = record->filterArea;
  const LM_preview_geometry geometry =
      LM_FitPreview(area.right - area.left, area.bottom - area.top, frame, *preview);
  *preview = geometry.previewBox;
  LM_UsePreviewGeometry(geometry, globals);
  for (CVPixelMap& map : globals->previewMaps)
    LM_DisposeAndClear(map.baseAddress);
  if (AllocateBuffers(record, globals, frame))
    return CV_RESULT_OK;
  LM_FreeRunBuffers(globals);
  return CV_RESULT_NO_MEMORY;
}

void LM_CalcTilePreview(FilterRecord* record, LM_globals* globals) {
  ReduceInput(record, globals, globals->previewMaps[LM_PREVIEW_MAP], 0);
  ReduceMask(record, globals);
}

void LM_CalcTileBumpPreview(FilterRecord* record, LM_globals* globals) {
  ReduceInput(record, globals, globals->previewMaps[LM_BUMP_PREVIEW_MAP], LM_BUMP_MARGIN);
}

int16_t LM_GetPreviewBumpPixelMap(LM_globals* globals) {
  FilterRecord* record = globals->record;
  if (record->nextTile == nullptr)
    return CV_RESULT_NO_SERVICE;
  const CVRect area = record->filterArea;
  LM_SetFirstPreviewTileRects(record, globals);
  globals->previewComplete = 0;
  // Counted, since a host that writes other rectangles could keep the walk from its end.
  for (int64_t left = TilesOf(area, globals->tileSize); left > 0; --left) {
    LM_PreviewToBumpRects(record, globals);
    const int16_t result = record->nextTile();
    if (result != CV_RESULT_OK) {
      globals->previewComplete = 1;
      return result;
    }
    LM_CalcTileBumpPreview(record, globals);
    LM_BumpToPreviewRects(record, globals);
    LM_SetNextPreviewTileRects(record, globals);
    if (globals->previewComplete == 1)
      break;
  }
  globals->previewComplete = 1;
  record->filterArea = area;
  return CV_RESULT_OK;
}
