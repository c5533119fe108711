#include "LM_preview_geometry.h"

#include <algorithm>
#include <cstring>

#include "LM_globals.h"

namespace {

int32_t ReducedLength(int32_t length, int32_t scale) {
  return (length + scale - 1) / scale;
}

void FillBlack(const CVPixelMap& map, int32_t top, int32_t left, int32_t bottom, int32_t right) {
  left = std::max(left, 0);
  right = std::min(right, map.bounds.right);
  bottom = std::min(bottom, map.bounds.bottom);
  for (int32_t row = std::max(top, 0); row < bottom && left < right; ++row)
    std::memset(map.baseAddress + static_cast<ptrdiff_t>(row) * map.rowBytes +
                    static_cast<ptrdiff_t>(left) * map.columnBytes,
                0, static_cast<size_t>(right - left) * static_cast<size_t>(map.columnBytes));
}

// Draws the border of a rectangle, inside it.
void FrameBlack(const CVPixelMap& map, int32_t top, int32_t left, int32_t bottom, int32_t right) {
  FillBlack(map, top, left, top + 1, right);
  FillBlack(map, top, left, bottom, left + 1);
  FillBlack(map, bottom - 1, left, bottom, right);
  FillBlack(map, top, right - 1, bottom, right);
}

} // namespace

LM_preview_geometry LM_FitPreview(int32_t areaWidth, int32_t areaHeight, const Rect& frame,
                                  const Rect& available) {
  areaWidth = std::max(areaWidth, 0);
  areaHeight = std::max(areaHeight, 0);
  // Never more room than the frame has, since the preview is drawn into the frame's own pixel map.
  const int32_t roomWidth =
      std::max(std::min(available.right - available.left, frame.right - frame.left), 1);
  const int32_t roomHeight =
      std::max(std::min(available.bottom - available.top, frame.bottom - frame.top), 1);
  int32_t scale = std::max({areaWidth / roomWidth, areaHeight / roomHeight, 1});
  if (ReducedLength(areaWidth, scale) > roomWidth || ReducedLength(areaHeight, scale) > roomHeight)
    ++scale;
  const int32_t width = std::max(ReducedLength(areaWidth, scale), 1);
  const int32_t height = std::max(ReducedLength(areaHeight, scale), 1);
  const int32_t centerX = frame.left + (frame.right - frame.left) / 2;
  const int32_t centerY = frame.top + (frame.bottom - frame.top) / 2;
  const int32_t left = centerX - width / 2;
  const int32_t top = centerY - height / 2;
  LM_preview_geometry geometry = {};
  geometry.scale = LM_Saturate16(scale);
  geometry.previewBox = {LM_Saturate16(top), LM_Saturate16(left), LM_Saturate16(top + height),
                         LM_Saturate16(left + width)};
  geometry.width = LM_Saturate16(width);
  geometry.height = LM_Saturate16(height);
  geometry.frameCenterX = LM_Saturate16(centerX);
  geometry.frameCenterY = LM_Saturate16(centerY);
  geometry.frameOriginX = frame.left;
  geometry.frameOriginY = frame.top;
  return geometry;
}

LM_preview_geometry LM_FitPreviewInFrame(int32_t areaWidth, int32_t areaHeight) {
  constexpr int16_t INSET = (LM_FRAME_SIZE - LM_PREVIEW_AREA_SIZE) / 2;
  const Rect frame = {0, 0, LM_FRAME_SIZE, LM_FRAME_SIZE};
  const Rect available = {INSET, INSET, LM_FRAME_SIZE - INSET, LM_FRAME_SIZE - INSET};
  return LM_FitPreview(areaWidth, areaHeight, frame, available);
}

void LM_DrawPreviewOutlines(const CVPixelMap& frame, int32_t left, int32_t top, int32_t width,
                            int32_t height) {
  FrameBlack(frame, top - 1, left - 1, top + height + 1, left + width + 1);
  FrameBlack(frame, 0, 0, frame.bounds.bottom, frame.bounds.right);
}

void LM_UsePreviewGeometry(const LM_preview_geometry& geometry, LM_globals* globals) {
  globals->previewScale = geometry.scale;
  globals->previewOffsetX = LM_Cut16(geometry.previewBox.left - geometry.frameOriginX);
  globals->previewOffsetY = LM_Cut16(geometry.previewBox.top - geometry.frameOriginY);
  globals->previewWidth = geometry.width;
  globals->previewHeight = geometry.height;
  globals->frameCenterX = geometry.frameCenterX;
  globals->frameCenterY = geometry.frameCenterY;
  globals->frameOriginX = geometry.frameOriginX;
  globals->frameOriginY = geometry.frameOriginY;
}
