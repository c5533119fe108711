#include "LM_tiles.h"

#include <algorithm>

#include "LM_arithmetic.h"
#include "LM_globals.h"
#include "LM_parameters.h"

namespace {

int16_t TileEnd(int16_t start, uint16_t edge, int16_t areaEnd) {
  return static_cast<int16_t>(std::min<int32_t>(start + edge, areaEnd));
}

CVRect FirstTile(const CVRect& area, uint16_t edge) {
  return {area.top, area.left, TileEnd(area.top, edge, area.bottom),
          TileEnd(area.left, edge, area.right)};
}

// Steps to the next tile; false, and an empty rectangle at the bottom right, when there is none.
bool NextTile(CVRect& tile, const CVRect& area, uint16_t edge) {
  if (tile.right != area.right) {
    tile.left = tile.right;
    tile.right = TileEnd(tile.left, edge, area.right);
    return true;
  }
  if (tile.bottom != area.bottom) {
    tile.left = area.left;
    tile.top = tile.bottom;
    tile.right = TileEnd(tile.left, edge, area.right);
    tile.bottom = TileEnd(tile.top, edge, area.bottom);
    return true;
  }
  tile.top = tile.bottom;
  tile.left = tile.right;
  return false;
}

void RequestPreviewOutput(FilterRecord* record) {
  record->outTileRect = record->inTileRect;
  record->maskTileRect = record->inTileRect;
  record->outTileRect.bottom = LM_Saturate16(record->outTileRect.top + 1);
  record->maskSampleStep = record->inSampleStep;
}

void GrowToBump(FilterRecord* record, int32_t margin, int16_t channel) {
  CVRect& in = record->inTileRect;
  record->outTileRect.bottom = record->outTileRect.top;
  record->outTileRect.right = record->outTileRect.left;
  in = {LM_Saturate16(in.top - margin), LM_Saturate16(in.left - margin),
        LM_Saturate16(in.bottom + margin), LM_Saturate16(in.right + margin)};
  record->inEdgeMode = CV_EDGE_REPLICATE;
  record->absolutePlanesWanted = 1;
  record->inFirstPlane = LM_Saturate16(channel - 1);
  record->inLastPlane = record->inFirstPlane;
}

// A side at the end of 16 bits may have been cut: the tile's own end is then the walk's.
int32_t WantedEnd(int16_t side, int32_t start, int32_t margin, uint16_t edge, int16_t areaEnd) {
  if (side != INT16_MAX)
    return side;
  return std::min<int32_t>(start + margin + edge, areaEnd) + margin;
}

void ShrinkFromBump(FilterRecord* record, const LM_globals* globals, int32_t margin) {
  const CVRect32 wanted = LM_WantedBumpRect(record, globals, margin);
  record->inTileRect = {LM_Saturate16(wanted.top + margin), LM_Saturate16(wanted.left + margin),
                        LM_Saturate16(wanted.bottom - margin),
                        LM_Saturate16(wanted.right - margin)};
  record->outTileRect = record->inTileRect;
  LM_RequestImagePlanes(record);
}

} // namespace

int32_t LM_PreviewStep(const LM_globals* globals) {
  return std::max<int32_t>(globals->previewScale, 1);
}

int32_t LM_PreviewMargin(const LM_globals* globals) {
  return LM_BUMP_MARGIN * LM_PreviewStep(globals);
}

void LM_RequestImagePlanes(FilterRecord* record) {
  record->inFirstPlane = 0;
  record->inLastPlane = LM_PLANES - 1;
  record->outFirstPlane = 0;
  record->outLastPlane = LM_PLANES - 1;
  record->inEdgeMode = CV_EDGE_NONE;
  record->absolutePlanesWanted = 0;
}

int32_t LM_NumTilesNeeded(const FilterRecord* record) {
  const CVRect& area = record->filterArea;
  return ((area.right - area.left) / LM_TILE_EDGE + 1) *
         ((area.bottom - area.top) / LM_TILE_EDGE + 1);
}

void LM_SetFirstRealTileRects(FilterRecord* record, LM_globals* globals) {
  globals->tileSize = LM_TILE_EDGE;
  globals->tilesTotal = static_cast<uint16_t>(LM_NumTilesNeeded(record));
  globals->tilesDone = 0;
  record->inTileRect = FirstTile(record->filterArea, globals->tileSize);
  record->maskTileRect = {0, 0, 0, 0};
  record->outTileRect = record->inTileRect;
}

void LM_SetNextRealTileRects(FilterRecord* record, LM_globals* globals) {
  NextTile(record->inTileRect, record->filterArea, globals->tileSize);
  record->outTileRect = record->inTileRect;
}

void LM_SetFirstPreviewTileRects(FilterRecord* record, LM_globals* globals) {
  // Above a scale of 64 a tile is one preview pixel wide; it must never be zero.
  const int32_t scale = LM_PreviewStep(globals);
  globals->tileSize = static_cast<uint16_t>(std::max(LM_TILE_EDGE / scale, 1) * scale);
  record->inTileRect = FirstTile(record->filterArea, globals->tileSize);
  RequestPreviewOutput(record);
}

void LM_SetNextPreviewTileRects(FilterRecord* record, LM_globals* globals) {
  if (NextTile(record->inTileRect, record->filterArea, globals->tileSize))
    RequestPreviewOutput(record);
  else
    globals->previewComplete = 1;
}

void LM_RealToBumpRects(FilterRecord* record, [[maybe_unused]] LM_globals* globals) {
  const foo* params = LM_Parameters(record);
  GrowToBump(record, LM_BUMP_MARGIN, params != nullptr ? params->bumpChannel : int16_t{1});
}

void LM_BumpToRealRects(FilterRecord* record, LM_globals* globals) {
  ShrinkFromBump(record, globals, LM_BUMP_MARGIN);
}

void LM_PreviewToBumpRects(FilterRecord* record, LM_globals* globals) {
  GrowToBump(record, LM_PreviewMargin(globals), globals->BumpChannel());
}

void LM_BumpToPreviewRects(FilterRecord* record, LM_globals* globals) {
  ShrinkFromBump(record, globals, LM_PreviewMargin(globals));
}

CVRect32 LM_WantedBumpRect(const FilterRecord* record, const LM_globals* globals, int32_t margin) {
  const CVRect& in = record->inTileRect;
  const CVRect& area = record->filterArea;
  const uint16_t edge = globals->tileSize;
  return {in.top, in.left, WantedEnd(in.bottom, in.top, margin, edge, area.bottom),
          WantedEnd(in.right, in.left, margin, edge, area.right)};
}
