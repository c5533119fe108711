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

size_t BufferBytes(const CVPixelMap& map, int32_t rows) {
  return static_cast<size_t>(map.rowBytes) * static_cast<size_t>(rows);
}

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
  const size_t bytes = BufferBytes(map, rows);
  map.baseAddress = static_cast<uint8_t*>(LM_NewPtr(bytes));
  if (map.baseAddress != nullptr)
    std::memset(map.baseAddress, WHITE, bytes);
  return map.baseAddress != nullptr;
}

bool AllocateHeights(LM_bump_map& map, int32_t width, int32_t height) {
  LM_DisposeAndClear(map.heights);
  map.capacity = 0;
  const uint64_t bytes =
      (static_cast<uint64_t>(height) + 2) * (static_cast<uint64_t>(width) + 2) * 4;
  if (bytes > UINT32_MAX)
    return false;
  map.heights = static_cast<int32_t*>(LM_NewPtr(static_cast<size_t>(bytes)));
  if (map.heights == nullptr)
    return false;
  std::memset(map.heights, WHITE, static_cast<size_t>(bytes));
  map.capacity = static_cast<uint32_t>(bytes);
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

// Reduction of one delivered tile: from its first sampled pixel on, every step-th of every step-th
// row.
struct Reduction {
  const uint8_t* source;
  int32_t sourceRowBytes;
  int32_t rows, columns;             // delivered
  int32_t wantedRows, wantedColumns; // beyond what is delivered its last row and column go on
  int32_t pixelBytes;
  int32_t step;
};

// Where the reduced pixels go; what would fall outside is dropped.
struct Destination {
  uint8_t* pixels;
  int32_t rowBytes;
  int32_t rows, columns; // room, in pixels
  int32_t row, column;   // of the first reduced pixel
};

void Reduce(const Reduction& from, int32_t firstRow, const Destination& to) {
  if (from.rows < 1 || from.columns < 1)
    return;
  int32_t outRow = to.row;
  for (int32_t row = firstRow; row < from.wantedRows && outRow < to.rows;
       row += from.step, ++outRow) {
    const uint8_t* in =
        from.source + static_cast<ptrdiff_t>(std::min(row, from.rows - 1)) * from.sourceRowBytes;
    int32_t outColumn = to.column;
    for (int32_t column = 0; column < from.wantedColumns && outColumn < to.columns;
         column += from.step, ++outColumn) {
      if (outRow < 0 || outColumn < 0)
        continue;
      std::memcpy(to.pixels + static_cast<ptrdiff_t>(outRow) * to.rowBytes +
                      static_cast<ptrdiff_t>(outColumn) * from.pixelBytes,
                  in + static_cast<ptrdiff_t>(std::min(column, from.columns - 1)) * from.pixelBytes,
                  static_cast<size_t>(from.pixelBytes));
    }
  }
}

// The first row of a tile that falls on the sampling grid, which starts at the filter area's top.
int32_t FirstSampledRow(int32_t dy, int32_t step) {
  const int32_t first = (dy / step + 1) * step - dy;
  return first == step ? 0 : first;
}

int32_t PreviewStep(const LM_globals* g) {
  return std::max<int32_t>(g->previewScale, 1);
}

Reduction Delivered(const uint8_t* source, int32_t rowBytes, const CVRect& tile, int32_t pixelBytes,
                    const LM_globals* g) {
  const int32_t rows = tile.bottom - tile.top;
  const int32_t columns = tile.right - tile.left;
  return {source, rowBytes, rows, columns, rows, columns, pixelBytes, PreviewStep(g)};
}

// Tiles that a walk visits between two sides.
int64_t TilesAlong(int32_t first, int32_t last, int32_t edge) {
  return std::max<int64_t>((int64_t{last} - first + edge - 1) / edge, 1);
}

int64_t TilesOf(const CVRect& area, int32_t edge) {
  return TilesAlong(area.left, area.right, edge) * TilesAlong(area.top, area.bottom, edge);
}

void ReduceMask(const FilterRecord* record, const LM_globals* g, int32_t row, int32_t column,
                int32_t firstRow) {
  const CVPixelMap& frame = g->previewMaps[LM_FRAME_MAP];
  if (!HostHasMask(record) || record->maskPixels == nullptr || frame.mask == nullptr)
    return;
  Reduce(Delivered(record->maskPixels, record->maskRowStride, record->maskTileRect, 1, g), firstRow,
         {frame.mask->maskData, frame.mask->rowBytes, frame.bounds.bottom, frame.bounds.right,
          g->previewOffsetY + row, g->previewOffsetX + column});
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
  const CVPixelMap& map = globals->previewMaps[LM_PREVIEW_MAP];
  if (map.baseAddress == nullptr || record->inPixels == nullptr)
    return;
  const int32_t step = PreviewStep(globals);
  const CVRect& tile = record->inTileRect;
  const int32_t dy = tile.top - record->filterArea.top;
  const int32_t dx = tile.left - record->filterArea.left;
  const int32_t firstRow = FirstSampledRow(dy, step);
  Reduce(
      Delivered(record->inPixels, record->inRowStride, tile, LM_PLANES, globals), firstRow,
      {map.baseAddress, map.rowBytes, map.bounds.bottom, map.bounds.right, dy / step, dx / step});
  ReduceMask(record, globals, dy / step, dx / step, firstRow);
}

void LM_CalcTileBumpPreview(FilterRecord* record, LM_globals* globals) {
  const CVPixelMap& map = globals->previewMaps[LM_BUMP_PREVIEW_MAP];
  if (map.baseAddress == nullptr || record->inPixels == nullptr)
    return;
  const int32_t step = PreviewStep(globals);
  const CVRect& tile = record->inTileRect;
  const int32_t dy = tile.top - record->filterArea.top;
  const int32_t dx = tile.left - record->filterArea.left;
  // dy and dx start at the margin's -3 preview pixels, which is row and column 0 of the buffer.
  const CVRect32 wanted = LM_WantedBumpRect(record, globals, LM_PreviewMargin(globals));
  Reduction from = Delivered(record->inPixels, record->inRowStride, tile, 1, globals);
  from.wantedRows = wanted.bottom - wanted.top;
  from.wantedColumns = wanted.right - wanted.left;
  Reduce(from, FirstSampledRow(dy, step),
         {map.baseAddress, map.rowBytes, map.bounds.bottom + 2 * LM_BUMP_MARGIN,
          map.bounds.right + 2 * LM_BUMP_MARGIN, dy / step + LM_BUMP_MARGIN,
          dx / step + LM_BUMP_MARGIN});
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
