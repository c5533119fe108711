// Rendering the collected preview.
#include "LM_preview.h"

#include <cstring>

#include "LM_preview_geometry.h"
#include "LM_shader.h"

namespace {

uint8_t* PixelAt(const CVPixelMap& map, int32_t row, int32_t column) {
  return map.baseAddress + static_cast<ptrdiff_t>(row) * map.rowBytes +
         static_cast<ptrdiff_t>(column) * map.columnBytes;
}

// What a render borrows of the host's own fields, put back however it ends: a host may read them
// again after the call, when the preview's buffers may be gone.
class BorrowedFields {
public:
  explicit BorrowedFields(FilterRecord* record) : _record(record), _before(*record) {}
  BorrowedFields(const BorrowedFields&) = delete;
  BorrowedFields& operator=(const BorrowedFields&) = delete;
  ~BorrowedFields() {
    _record->filterArea = _before.filterArea;
    _record->inPixels = _before.inPixels;
    _record->inRowStride = _before.inRowStride;
    _record->outPixels = _before.outPixels;
    _record->outRowStride = _before.outRowStride;
  }

private:
  FilterRecord* _record;
  const FilterRecord _before;
};

void AimAtPreview(FilterRecord* record, const LM_globals& g, uint8_t* out, int32_t outRowBytes) {
  const CVPixelMap& preview = g.previewMaps[LM_PREVIEW_MAP];
  record->filterArea = {0, 0, g.previewHeight, g.previewWidth};
  record->inTileRect = record->filterArea;
  record->inPixels = preview.baseAddress;
  record->inRowStride = preview.rowBytes;
  record->outTileRect = record->filterArea;
  OffsetRect(&record->outTileRect, g.previewOffsetX, g.previewOffsetY);
  record->outPixels = out;
  record->outRowStride = outRowBytes;
}

int16_t StorePreviewHeights(FilterRecord* record, LM_globals* g, const foo* params) {
  const CVPixelMap& bump = g->previewMaps[LM_BUMP_PREVIEW_MAP];
  g->bumpMap.scale = LM_PreviewHeight(params->bumpHeight, g->previewScale);
  record->inTileRect = {-2, -2, static_cast<int16_t>(g->previewHeight + 2),
                        static_cast<int16_t>(g->previewWidth + 2)};
  record->inPixels = bump.baseAddress;
  record->inRowStride = bump.rowBytes;
  return LM_StoreBumpMap(record, g);
}

} // namespace

int16_t LM_ShadePreview(LM_globals* globals) {
  FilterRecord* record = globals->record;
  foo* params = LM_Parameters(record);
  const CVPixelMap& frame = globals->previewMaps[LM_FRAME_MAP];
  if (params == nullptr || frame.baseAddress == nullptr)
    return CV_RESULT_NO_MEMORY;
  const bool relief = globals->BumpChannel() != 0;
  globals->AllocateCaches(static_cast<unsigned long>(globals->previewWidth),
                          static_cast<unsigned long>(globals->previewHeight), relief ? 1 : 0);
  globals->ConvertToParameters(params, 1);
  const BorrowedFields borrowed(record);
  if (relief && StorePreviewHeights(record, globals, params) != 0)
    return CV_RESULT_NO_MEMORY;
  AimAtPreview(record, *globals, PixelAt(frame, globals->previewOffsetY, globals->previewOffsetX),
               frame.rowBytes);
  if (relief)
    LM_ShadePreviewTileWithBumps(record, &globals->bumpMap, globals);
  else
    LM_ShadeTile(record, globals);
  LM_DetachParameterCaches(params);
  return CV_RESULT_OK;
}

void LM_CopyUnshadedPreview(LM_globals* globals) {
  const CVPixelMap& frame = globals->previewMaps[LM_FRAME_MAP];
  const CVPixelMap& preview = globals->previewMaps[LM_PREVIEW_MAP];
  if (frame.baseAddress == nullptr || preview.baseAddress == nullptr)
    return;
  for (int32_t row = 0; row < globals->previewHeight; ++row)
    std::memcpy(PixelAt(frame, globals->previewOffsetY + row, globals->previewOffsetX),
                PixelAt(preview, row, 0),
                static_cast<size_t>(LM_PLANES) * static_cast<size_t>(globals->previewWidth));
}

void LM_DrawPreviewFrameToPixelMap([[maybe_unused]] GrafPort* port, LM_globals* globals) {
  const CVPixelMap& frame = globals->previewMaps[LM_FRAME_MAP];
  if (frame.baseAddress == nullptr)
    return;
  LM_DrawPreviewOutlines(frame, globals->previewOffsetX, globals->previewOffsetY,
                         globals->previewWidth, globals->previewHeight);
}
