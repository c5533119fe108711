// Lighting of a run of samples of a flat surface, and the combination of what light gives with the
// surface.
//
// With N the surface's normal, here (0, 0, 1), L the way from a sample to the light, and f what a
// spot's cone lets through:
//   diffuse  = f (N . L) / |L|         the cosine at which light falls in
//   specular = f (R . L) (R . L) / |L| with R the view direction (0, 0, 1) mirrored at N
// R points to the light exactly where N is the half-way vector of light and view, and there a
// highlight is brightest. Here R is N, and both come down to the height of L: specular is that
// height times diffuse, and grows as a lamp is raised.
//
// A pixel of colour p is then, with the sums of all lights and ambient light A,
//   (A + diffuse) p + specular g c
// times exposure: a highlight, times gloss g, has the colour c of the surface's material, which
// blends from white (0) to the picture's own (256). At its ends there are shorter forms.
#include "LM_light_shader.h"
#include "LM_light_sums.h"

namespace {

// Everything about a directional light is the same for all samples.
template <class Color>
void ShadeDirectional(const LM_light& light, int n, Color* diffuse, Color* specular) {
  const LM_vector3f& toLight = light.direction;
  const float inverse = LM_InverseLength(toLight.x, toLight.y, toLight.z);
  Color diffuseLight = {};
  Color specularLight = {};
  LM_AddLight(diffuseLight, light.color, toLight.z * inverse);
  LM_AddLight(specularLight, light.color, (toLight.z * toLight.z) * inverse);
  for (int i = 0; i < n; ++i) {
    LM_AddSum(diffuse[i], diffuseLight);
    LM_AddSum(specular[i], specularLight);
  }
}

template <class Color>
void ShadeOmni(const LM_light& light, int n, const LM_vector2f* positions, Color* diffuse,
               Color* specular) {
  const float z = light.position.z;
  for (int i = 0; i < n; ++i) {
    const float x = light.position.x - positions[i].x;
    const float y = light.position.y - positions[i].y;
    const float inverse = LM_InverseLength(x, y, z);
    LM_AddLight(diffuse[i], light.color, z * inverse);
    LM_AddLight(specular[i], light.color, (z * z) * inverse);
  }
}

template <class Color>
void ShadeSpot(const LM_light& light, int n, const LM_vector2f* positions, Color* diffuse,
               Color* specular) {
  const float z = light.position.z;
  for (int i = 0; i < n; ++i) {
    const float x = light.position.x - positions[i].x;
    const float y = light.position.y - positions[i].y;
    const float inverse = LM_InverseLength(x, y, z);
    const float cosine = LM_SpotCosine(light, x, y, z, inverse);
    if (!(cosine > light.cosCutoff))
      continue;
    const float falloff = LM_FalloffAt(light, cosine, diffuse);
    LM_AddLight(diffuse[i], light.color, (z * falloff) * inverse);
    LM_AddLight(specular[i], light.color, ((z * z) * inverse) * falloff);
  }
}

template <class Color>
void Shade(const LM_light& light, int n, const LM_vector2f* positions, Color* diffuse,
           Color* specular) {
  if (!LM_IsAboveSurface(light))
    return;
  switch (light.type) {
  case LM_LIGHT_DIRECTIONAL:
    ShadeDirectional(light, n, diffuse, specular);
    break;
  case LM_LIGHT_OMNI:
    ShadeOmni(light, n, positions, diffuse, specular);
    break;
  case LM_LIGHT_SPOT:
    ShadeSpot(light, n, positions, diffuse, specular);
    break;
  default:
    break;
  }
}

// How highlights meet the surface colour.
enum class Material { White, Blend, Colored };

template <Material material>
int32_t CombineOne(int32_t light, int32_t highlight, int32_t source, int32_t gloss, int32_t blend) {
  if constexpr (material == Material::White)
    return LM_WrapAdd(LM_WrapMultiply(light, source), LM_WrapMultiply(highlight, gloss * 255));
  if constexpr (material == Material::Colored)
    return LM_WrapMultiply(LM_WrapAdd(light, LM_WrapMultiply(highlight, gloss)), source);
  return LM_WrapAdd(LM_WrapMultiply(light, source),
                    LM_WrapMultiply(LM_WrapMultiply(highlight, gloss),
                                    (source * blend + (256 - blend) * 255) >> 8));
}

template <Material material>
void CombineRun(const foo* params, int n, const uint8_t* source, const LM_color96* diffuseSum,
                const LM_color96* specularSum, int32_t* combined) {
  for (int i = 0; i < n; ++i) {
    for (int plane = 0; plane < LM_PLANES; ++plane) {
      const int32_t light =
          LM_WrapAdd(params->ambient.component[plane], diffuseSum[i].component[plane]);
      const int32_t highlight = specularSum[i].component[plane] >> 8;
      *combined++ =
          CombineOne<material>(light, highlight, *source++, params->gloss, params->material);
    }
  }
}

uint8_t OutputByte(int32_t combined, int32_t exposure) {
  const int32_t value = LM_WrapMultiply(combined >> 8, exposure) >> 15;
  return static_cast<uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

} // namespace

void LM_ShadeLight(const LM_light& light, unsigned short n, const LM_vector2f* positions,
                   LM_color96* diffuse, LM_color96* specular) {
  Shade(light, n, positions, diffuse, specular);
}

void LM_ShadeDeepLight(const LM_light& light, const LM_vector2f& position, LM_deep_color& diffuse,
                       LM_deep_color& specular) {
  Shade(light, 1, &position, &diffuse, &specular);
}

void LM_Combine(const foo* params, unsigned short n, const uint8_t* source,
                const LM_color96* diffuseSum, const LM_color96* specularSum, int32_t* combined,
                uint8_t* output) {
  if (params->material < 1)
    CombineRun<Material::White>(params, n, source, diffuseSum, specularSum, combined);
  else if (params->material > 255)
    CombineRun<Material::Colored>(params, n, source, diffuseSum, specularSum, combined);
  else
    CombineRun<Material::Blend>(params, n, source, diffuseSum, specularSum, combined);
  for (int i = 0; i < LM_PLANES * n; ++i)
    output[i] = OutputByte(combined[i], params->exposure);
}
