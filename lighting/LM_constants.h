// Program-wide values that the entry point sets again on every call, so that they never depend on
// how the module was loaded. They start out with the same values for programs that use the engine
// directly.
#pragma once

#include <cstdint>

// Tangent of 30 degrees: the height of an omni light over its radius.
extern float LM_TAN_30;
// Divides colour times intensity, so that full white at intensity 127 is 260092.
extern int32_t LM_LIGHT_INTENSITY_SCALE;
// Reserved for merging nearly equal facets; 0 merges equal flat ones only.
extern int32_t LM_BUMP_TOLERANCE;

void LM_SetConstants();
