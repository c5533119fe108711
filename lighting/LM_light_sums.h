// Pieces that flat and relief shading have in common.
#pragma once

#include <cmath>

#include "LM_arithmetic.h"
#include "LM_block.h"
#include "LM_image.h"

// The inverse length of a vector: squares summed in single precision, root and division in double.
inline float LM_InverseLength(float x, float y, float z) {
  return static_cast<float>(1.0 / std::sqrt(static_cast<double>(x * x + y * y + z * z)));
}

// The cosine between a spot's axis and the ray to a sample; (x, y, z) points from the sample to the
// light.
inline float LM_SpotCosine(const LM_light& light, float x, float y, float z, float inverse) {
  return -(light.direction.x * x + light.direction.y * y + light.direction.z * z) * inverse;
}

// A spot's falloff at that cosine. The index stays in the table whatever the cosine.
inline float LM_SpreadAt(const LM_light& light, float cosine) {
  const int32_t index = LM_Truncate((cosine - light.spreadMinCos) * light.spreadScale);
  return light.spreadTable[index < 0                   ? 0
                           : index < LM_SPREAD_ENTRIES ? index
                                                       : LM_SPREAD_ENTRIES - 1];
}

// Whether the light rises above a flat surface; one that does not gives it nothing. NaN is no
// height.
inline bool LM_IsAboveSurface(const LM_light& light) {
  return (light.type == LM_LIGHT_DIRECTIONAL ? light.direction.z : light.position.z) > 0.0F;
}

// Adds a light's colour times `factor` to a sum, each product truncated. A factor that is NaN
// adds 0.
inline void LM_AddLight(LM_color96& sum, const LM_color96& color, float factor) {
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    const int32_t part = LM_Truncate(static_cast<float>(color.component[plane]) * factor);
    sum.component[plane] = LM_WrapAdd(sum.component[plane], part);
  }
}

inline void LM_AddSum(LM_color96& sum, const LM_color96& part) {
  for (int plane = 0; plane < LM_PLANES; ++plane)
    sum.component[plane] = LM_WrapAdd(sum.component[plane], part.component[plane]);
}

// A deep sum takes the product as it is; NaN adds 0 here too.
inline void LM_AddLight(LM_deep_color& sum, const LM_color96& color, float factor) {
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    const float part = static_cast<float>(color.component[plane]) * factor;
    sum.component[plane] += part == part ? part : 0.0F;
  }
}

inline void LM_AddSum(LM_deep_color& sum, const LM_deep_color& part) {
  for (int plane = 0; plane < LM_PLANES; ++plane)
    sum.component[plane] += part.component[plane];
}

// A spot's falloff for the sums at hand. A deep picture would show the table's steps, so the
// falloff goes on linearly from entry to entry; the last one stands for itself.
inline float LM_FalloffAt(const LM_light& light, float cosine, const LM_color96*) {
  return LM_SpreadAt(light, cosine);
}
inline float LM_FalloffAt(const LM_light& light, float cosine, const LM_deep_color*) {
  constexpr int LAST = LM_SPREAD_ENTRIES - 1;
  const float place = (cosine - light.spreadMinCos) * light.spreadScale;
  const float entry =
      place > 0.0F ? (place < static_cast<float>(LAST) ? place : static_cast<float>(LAST)) : 0.0F;
  const int index = static_cast<int>(entry);
  const float here = light.spreadTable[index];
  const float next = light.spreadTable[index < LAST ? index + 1 : LAST];
  return here + (next - here) * (entry - static_cast<float>(index));
}

void LM_ClearSums(LM_color96* sums, int n);
// Adds n sums to others, which must not overlap them.
void LM_AddSums(const LM_color96* part, int n, LM_color96* sums);

// Fills the sums of n samples with all lights of the block, through each light's caches where it
// has them. shade(light, diffuse, specular) adds one light.
template <class ShadeOneLight>
void LM_SumLights(const foo* params, int n, LM_color96* diffuseSum, LM_color96* specularSum,
                  ShadeOneLight shade) {
  LM_ClearSums(diffuseSum, n);
  LM_ClearSums(specularSum, n);
  for (int j = 0; j < LM_LightCount(params); ++j) {
    const LM_light& light = params->lights[j];
    if (light.diffuseCache == nullptr || light.specularCache == nullptr) {
      shade(light, diffuseSum, specularSum);
      continue;
    }
    if (light.diffuseCacheHot != 1 || light.specularCacheHot != 1) {
      LM_ClearSums(light.diffuseCache, n);
      LM_ClearSums(light.specularCache, n);
      shade(light, light.diffuseCache, light.specularCache);
    }
    LM_AddSums(light.diffuseCache, n, diffuseSum);
    LM_AddSums(light.specularCache, n, specularSum);
  }
}

// Moves the cache pointers of the block's lights on by n samples. One conversion thus serves one
// pass.
void LM_AdvanceLightCaches(foo* params, uint32_t n);

// Where samples lie, in shading units: the filter rectangle's centre is the origin, samples sit on
// pixel centres, and one factor scales both axes. Pixels are the image's.
class LM_sample_grid {
public:
  LM_sample_grid(const LM_rect& area, const foo* params)
      : _area(area), _width(static_cast<double>(area.right - area.left)),
        _height(static_cast<double>(area.bottom - area.top)),
        _factor(
            static_cast<double>(params->worldScale / static_cast<float>(area.right - area.left))) {}
  float X(int32_t x) const { return _Place(x - _area.left, _width); }
  float Y(int32_t y) const { return _Place(y - _area.top, _height); }

private:
  float _Place(int32_t pixel, double extent) const {
    return static_cast<float>(((static_cast<double>(pixel) - extent * 0.5) + 0.5) * _factor);
  }
  LM_rect _area;
  double _width, _height, _factor;
};
