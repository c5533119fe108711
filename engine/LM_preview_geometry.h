// Where the reduced image lies in the dialog's preview frame, and how far it is reduced. Style
// files hold coordinates in preview pixels, so this decides where their lights fall on an image.
#ifndef LM_PREVIEW_GEOMETRY_H
#define LM_PREVIEW_GEOMETRY_H

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
};

// Chooses the reduction for a filter area of areaWidth x areaHeight image pixels.
// frame, available: items 6 and 8, in the dialog's coordinates.
LM_preview_geometry LM_FitPreview(int32_t areaWidth, int32_t areaHeight, const Rect& frame,
                                  const Rect& available);

// The same with the frame and area as the dialog has them, its frame at the origin: for programs
// that light an image as the dialog would, without showing it.
LM_preview_geometry LM_FitPreviewInFrame(int32_t areaWidth, int32_t areaHeight);

// Stores the geometry in the settings.
void LM_UsePreviewGeometry(const LM_preview_geometry& geometry, LM_globals* globals);

#endif
