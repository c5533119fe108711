// The colours of glowing bodies.
#pragma once

#include "LM_vectors.h"

namespace editor {

constexpr int LOWEST_KELVIN = 2000, HIGHEST_KELVIN = 10000, KELVIN_STEP = 100;

// What a black body of that temperature looks like on a screen, its strongest component full.
LM_color48 ColorOfTemperature(int kelvin);
// The temperature in steps whose colour is nearest to one.
int NearestTemperature(const LM_color48& color);

} // namespace editor
