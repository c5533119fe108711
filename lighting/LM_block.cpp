#include "LM_block.h"

#include <cstring>

#include "LM_light_figure.h"

void LM_InitParameters(foo* params) {
  std::memset(params, 0, sizeof *params);
  params->magic = LM_PARAMS_MAGIC;
  params->version = LM_PARAMS_VERSION;
}

void LM_DetachParameterCaches(foo* params) {
  for (LM_light& light : params->lights) {
    light.diffuseCache = nullptr;
    light.diffuseCacheHot = 0;
    light.specularCache = nullptr;
    light.specularCacheHot = 0;
  }
}

void LM_ConvertSurface(const LM_surface_figure& figure, foo* params) {
  params->gloss = figure.gloss;
  params->material = figure.material;
  params->exposure = figure.exposure;
  params->worldScale =
      static_cast<float>(figure.previewWidth) / static_cast<float>(figure.pixelsPerUnit);
  const int32_t height = 2 * figure.bumpAmplitude;
  params->bumpHeight = figure.whiteIsHigh ? height : -height;
  params->bumpChannel = figure.bumpChannel;
  for (int plane = 0; plane < LM_PLANES; ++plane)
    params->ambient.component[plane] = figure.ambientColor.component[plane] * figure.ambience / 64;
}
