// From what the camera saw to a picture.
#pragma once

#include "Picture.h"
#include "Renderer.h"

namespace scenes {

// Takes the sampling noise out of the light, guided by surfaces, so that their edges and their
// texture stay.
void Denoise(Film& film);

struct Development {
  float exposure = 1;
  float contrast = 1; // 1 is soft, as an overcast day
  float saturation = 1;
  float grain = 1;       // in levels of 255
  float vignette = 0.1F; // share of light lost in the corners
};

// Film-like tones, a little sharpening and grain.
Bytes Develop(const Film& film, const Development& development);

// The heights of what the camera saw, white high, as a carver of a low relief would make them:
// slopes as seen, but steep places and steps in depth flattened. `reach` is the size in pixels of
// the largest forms that stay.
Bytes HeightMap(const Film& film, float reach);

} // namespace scenes
