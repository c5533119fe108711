// A light made ready for shading.
#pragma once

#include "LM_vectors.h"

enum LM_light_type : int32_t {
  LM_LIGHT_OMNI = 0,        // radiates in all directions, hovering above its centre
  LM_LIGHT_DIRECTIONAL = 1, // from infinitely far away, along one direction
  LM_LIGHT_SPOT = 2         // a cone whose footprint on the image is an ellipse
};

// Entries of a spot's falloff table: for a real run, and for a preview render.
constexpr int LM_SPREAD_ENTRIES = 1024;
constexpr int LM_PREVIEW_SPREAD_ENTRIES = 256;

// Positions and directions are in shading units. Rebuilt from an LM_light_figure at every
// conversion.
struct LM_light {
  int32_t type;
  LM_color96 color;     // colour times intensity; negative takes light away
  LM_vector3f position; // omni and spot
  // Directional: unit vector from the surface to the light. Spot: unit vector along the axis, from
  // the light to the surface.
  LM_vector3f direction;
  float cosCutoff;                      // spot: cosine of the cone's half angle
  float spreadTable[LM_SPREAD_ENTRIES]; // spot: falloff by cosine; a preview fills the first 256
  float spreadScale;                    // spot: table entries per unit of cosine
  float spreadMinCos;                   // spot: the cosine of entry 0
  // The editable light's buffers, as they were at conversion: one sum per sample of the tile, moved
  // on row by row. Not owned. The hot flags say that they hold the light's sums already.
  LM_color96* diffuseCache;
  LM_bool diffuseCacheHot;
  LM_color96* specularCache;
  LM_bool specularCacheHot;
};

#if UINTPTR_MAX == 0xffffffffu
static_assert(sizeof(LM_light) == 4168);
#endif
