#include "LM_shader.h"

#include "LM_light_sums.h"

void LM_Shade(const foo* params, unsigned short n, const LM_vector2f* positions,
              const uint8_t* source, LM_color96* diffuseSum, LM_color96* specularSum,
              LM_bool sumsHot, uint8_t* output, LM_globals* globals) {
  if (n > LM_MAX_RUN)
    return;
  if (sumsHot == 0) {
    LM_SumLights(params, n, diffuseSum, specularSum,
                 [&](const LM_light& light, LM_color96* diffuse, LM_color96* specular) {
                   LM_ShadeLight(light, n, positions, diffuse, specular);
                 });
  }
  LM_Combine(params, n, source, diffuseSum, specularSum, globals->scratch.sums.combined, output);
}

void LM_ShadeBumps(const foo* params, unsigned short count, const LM_vector2f* positions,
                   const LM_vector3f* normals, const uint8_t* colors, LM_color96* diffuseSums,
                   LM_color96* specularSums, LM_bool sumsHot, uint8_t* out, LM_globals* globals,
                   const int32_t* weights) {
  if (count > LM_MAX_RUN)
    return;
  if (sumsHot == 0) {
    LM_SumLights(params, count, diffuseSums, specularSums,
                 [&](const LM_light& light, LM_color96* diffuse, LM_color96* specular) {
                   LM_ShadeLightBumps(light, count, positions, normals, diffuse, specular, weights);
                 });
  }
  LM_Combine(params, count, colors, diffuseSums, specularSums, globals->scratch.sums.combined, out);
}
