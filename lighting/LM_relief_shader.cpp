// Lighting of a run of facets: the formulas of a flat surface with each facet's own normal.
#include "LM_light_shader.h"
#include "LM_light_sums.h"

namespace {

// What the light is to one pixel: the vector to it and what follows from its length.
struct PixelLight {
  float x, y, z;
  float inverse;
  float falloff;
  bool reached;
};

// sums: of the kind that the light is added to.
template <class Color>
PixelLight DirectionalAt(const LM_light& light, const LM_vector2f&, const Color*) {
  const LM_vector3f& d = light.direction;
  return {d.x, d.y, d.z, LM_InverseLength(d.x, d.y, d.z), 1.0F, true};
}

template <class Color>
PixelLight OmniAt(const LM_light& light, const LM_vector2f& position, const Color*) {
  const float x = light.position.x - position.x;
  const float y = light.position.y - position.y;
  const float z = light.position.z;
  return {x, y, z, LM_InverseLength(x, y, z), 1.0F, true};
}

template <class Color>
PixelLight SpotAt(const LM_light& light, const LM_vector2f& position, const Color* sums) {
  PixelLight at = OmniAt(light, position, sums);
  const float cosine = LM_SpotCosine(light, at.x, at.y, at.z, at.inverse);
  at.reached = cosine > light.cosCutoff;
  if (at.reached)
    at.falloff = LM_FalloffAt(light, cosine, sums);
  return at;
}

template <class Color>
void ShadeFacet(const LM_light& light, const PixelLight& at, const LM_vector3f& normal,
                Color& diffuse, Color& specular) {
  const float facing = normal.x * at.x + normal.y * at.y + normal.z * at.z;
  if (!(facing > 0.0F))
    return;
  LM_AddLight(diffuse, light.color, (facing * at.falloff) * at.inverse);
  // The view direction (0, 0, 1) mirrored at the facet, against the light.
  const float twice = 2.0F * normal.z;
  const float sideways = (twice * normal.x) * at.x + (twice * normal.y) * at.y;
  const double upwards = (static_cast<double>(twice * normal.z) - 1.0) * static_cast<double>(at.z);
  const float mirrored = static_cast<float>(static_cast<double>(sideways) + upwards);
  if (mirrored > 0.0F)
    LM_AddLight(specular, light.color, ((mirrored * mirrored) * at.inverse) * at.falloff);
}

template <class Color, class LightAt>
void ShadeFacets(const LM_light& light, uint32_t count, const LM_vector2f* positions,
                 const LM_vector3f* normals, Color* diffuse, Color* specular,
                 const int32_t* weights, LightAt lightAt) {
  uint32_t i = 0;
  while (i < count) {
    const PixelLight at = lightAt(light, positions[i], diffuse);
    do {
      if (at.reached)
        ShadeFacet(light, at, normals[i], diffuse[i], specular[i]);
      ++i;
    } while (*++weights != 0 && i < count);
    ++weights;
  }
}

template <class Color>
void ShadeBumps(const LM_light& light, uint32_t count, const LM_vector2f* positions,
                const LM_vector3f* normals, Color* diffuse, Color* specular,
                const int32_t* weights) {
  switch (light.type) {
  case LM_LIGHT_DIRECTIONAL:
    ShadeFacets(light, count, positions, normals, diffuse, specular, weights, DirectionalAt<Color>);
    break;
  case LM_LIGHT_OMNI:
    ShadeFacets(light, count, positions, normals, diffuse, specular, weights, OmniAt<Color>);
    break;
  case LM_LIGHT_SPOT:
    ShadeFacets(light, count, positions, normals, diffuse, specular, weights, SpotAt<Color>);
    break;
  default:
    break;
  }
}

} // namespace

void LM_ShadeLightBumps(const LM_light& light, uint32_t count, const LM_vector2f* positions,
                        const LM_vector3f* normals, LM_color96* diffuse, LM_color96* specular,
                        const int32_t* weights) {
  ShadeBumps(light, count, positions, normals, diffuse, specular, weights);
}

void LM_ShadeDeepFacets(const LM_light& light, const LM_vector2f& position,
                        const LM_vector3f (&normals)[4], LM_deep_color (&diffuse)[4],
                        LM_deep_color (&specular)[4]) {
  const LM_vector2f positions[4] = {position, position, position, position};
  const int32_t weights[] = {4, 4, 4, 4, 0};
  ShadeBumps(light, 4, positions, normals, diffuse, specular, weights);
}
