// Where the reduced image lies in the dialog's preview frame, and how far it is reduced. Style
// files hold coordinates in preview pixels, so this decides where their lights fall on an image.
#pragma once

#include "LM_arithmetic.h"
#include "LM_types.h"

class LM_globals;

// The dialog's frame, item 6, and inside it the largest area the preview may take, item 8.
constexpr int16_t LM_FRAME_SIZE = 280;
constexpr int16_t LM_PREVIEW_AREA_SIZE = 256;

struct LM_preview_geometry {
  int16_t scale;   // image pixels per preview pixel, at least 1
  Rect previewBox; // the preview image, in the dialog's coordinates, centred on the frame
  int16_t width;   // its size in preview pixels, at least 1
  int16_t height;
  int16_t frameCenterX; // in the dialog's coordinates
  int16_t frameCenterY;
  int16_t frameOriginX;
  int16_t frameOriginY;

  // Half the width of the frame, in preview pixels: what a shading unit is.
  int16_t WorldUnit() const { return LM_Cut16(frameCenterX - frameOriginX); }
};

// Chooses the reduction for a filter area of areaWidth x areaHeight image pixels.
// frame, available: items 6 and 8, in the dialog's coordinates.
LM_preview_geometry LM_FitPreview(int32_t areaWidth, int32_t areaHeight, const Rect& frame,
                                  const Rect& available);

// The same with the frame and area as the dialog has them, its frame at the origin: for programs
// that light an image as the dialog would, without showing it.
LM_preview_geometry LM_FitPreviewInFrame(int32_t areaWidth, int32_t areaHeight);

// The relief's height in a preview that is reduced by `scale`: the block's, over twice the scale.
constexpr int32_t LM_PreviewHeight(int32_t bumpHeight, int32_t scale) {
  return bumpHeight / (2 * (scale < 1 ? 1 : scale));
}

// Draws black outlines into a frame map: around the preview image, whose top-left pixel is at
// (left, top), and along the map's border. What would fall outside is left out.
void LM_DrawPreviewOutlines(const CVPixelMap& frame, int32_t left, int32_t top, int32_t width,
                            int32_t height);

// Stores the geometry in the settings.
void LM_UsePreviewGeometry(const LM_preview_geometry& geometry, LM_globals* globals);
