// A light as people edit it, and its conversion into the light that shading reads.
#pragma once

#include "LM_block.h"

// Lengths are pixels of the preview, y growing downwards; fractions are allowed. Centre: from the
// preview's centre. Handles: from the light's own.
struct LM_light_figure {
  int32_t type; // LM_light_type; other codes light nothing
  LM_vector2f center;
  LM_vector2f handle1; // directional: the direction; spot: first axis, which carries the aim
  LM_vector2f handle2; // spot: second axis, perpendicular to the first
  float radius;        // omni
  LM_color48 color;
  int16_t intensity; // 127 is full; negative for dark light
  int16_t spread;    // spot: focus, 128 for the even fall of a lamp without a lens
};

// Fills all of the light but its caches, which are left alone. pixelsPerUnit: preview pixels per
// shading unit. forPreview 1 builds the short falloff table.
void LM_ConvertLight(const LM_light_figure& figure, float pixelsPerUnit, LM_bool forPreview,
                     LM_light* out);
// Two of its steps: all that only a spot has, and that one's falloff table.
void LM_ConvertSpotLight(const LM_light_figure& figure, float pixelsPerUnit, LM_bool forPreview,
                         LM_light* out);
void LM_BuildSpreadTable(int16_t spread, LM_bool forPreview, LM_light* out);

// What people set beside the lights.
struct LM_surface_figure {
  LM_color48 ambientColor;
  int16_t ambience; // 64 leaves a white surface as it is; negative takes light away
  int16_t gloss, material, exposure; // sliders' values as they are
  int16_t bumpChannel;               // 1-based, 0 for none
  int16_t bumpAmplitude;
  bool whiteIsHigh;
  int16_t previewWidth;   // preview pixels across the filter area
  uint16_t pixelsPerUnit; // and across a shading unit
};

// Fills all of the block but its header and its lights.
void LM_ConvertSurface(const LM_surface_figure& figure, foo* params);

// The angle of (x, y) in radians. (0, 0) has the angle of straight up.
double LM_ATan2(double y, double x);
