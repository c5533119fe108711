#include "LM_light_sums.h"

void LM_ClearSums(LM_color96* sums, int n) {
  for (int i = 0; i < n; ++i)
    sums[i] = {};
}

void LM_AddSums(const LM_color96* part, int n, LM_color96* sums) {
  for (int i = 0; i < n; ++i) {
    for (int plane = 0; plane < LM_PLANES; ++plane)
      sums[i].component[plane] = LM_WrapAdd(sums[i].component[plane], part[i].component[plane]);
    // Added like the others, so that a sum is one vector.
    sums[i].unused = LM_WrapAdd(sums[i].unused, part[i].unused);
  }
}

void LM_AdvanceLightCaches(foo* params, uint32_t n) {
  for (int j = 0; j < LM_LightCount(params); ++j) {
    LM_light& light = params->lights[j];
    if (light.diffuseCache != nullptr)
      light.diffuseCache += n;
    if (light.specularCache != nullptr)
      light.specularCache += n;
  }
}
