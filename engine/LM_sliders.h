// The ranges of the dialog's sliders, all from 0.
#pragma once

constexpr int LM_SLIDER_MAX = 255;          // gloss, exposure, spread, bump amplitude
constexpr int LM_MATERIAL_SLIDER_MAX = 256; // above 255 highlights take the surface's colour
constexpr int LM_CENTERED_SLIDER_MAX = 254; // ambience and intensity, which are stored as ...
constexpr int LM_SLIDER_CENTER = 127;       // ... the slider's value minus this
