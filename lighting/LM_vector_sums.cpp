#include "LM_vector_sums.h"

#include "LM_light_sums.h"

namespace {

bool IsKept(const LM_light& light) {
  return light.diffuseCache != nullptr && light.specularCache != nullptr;
}
bool IsHot(const LM_light& light) {
  return IsKept(light) && light.diffuseCacheHot == 1 && light.specularCacheHot == 1;
}

} // namespace

// The lights that have to be evaluated, in the row, and where their parts go.
struct LM_vector_sums::ColdLights {
  LM_kernel_lights lights;
  LM_kernel_part parts[LM_MAX_LIGHTS];
};

bool LM_vector_sums::_FindCold(const LM_extent& extent, ColdLights& cold) const {
  const LM_kernel_lights& lights = _sorted.kernel;
  const int local = lights.omnis + lights.spots;
  for (int k = 0; k < lights.Count(); ++k) {
    const LM_light& light = _params->lights[_sorted.source[k]];
    if (IsHot(light))
      continue;
    LM_kernel_light& own = cold.lights.light[cold.lights.Count()];
    own = lights.light[k];
    if (!LM_FitsVectors(own, k >= local, extent))
      return false;
    if (k < local)
      LM_MoveToRow(own, extent.top, own);
    if (IsKept(light))
      cold.parts[cold.lights.Count()] = {light.diffuseCache, light.specularCache};
    ++(k >= local          ? cold.lights.directionals
       : k >= lights.omnis ? cold.lights.spots
                           : cold.lights.omnis);
  }
  return true;
}

bool LM_vector_sums::Sum(int n, const LM_vector2f* positions, const LM_vector3f* normals,
                         LM_color96* diffuse, LM_color96* specular) const {
  if (_kernels == nullptr)
    return false;
  ColdLights cold = {};
  const LM_vector2f& first = positions[0];
  if (!_FindCold({first.x, positions[n - 1].x, first.y, first.y}, cold))
    return false;
  LM_ClearSums(diffuse, n);
  LM_ClearSums(specular, n);
  for (int j = 0; j < LM_LightCount(_params); ++j) {
    const LM_light& light = _params->lights[j];
    if (IsHot(light)) {
      LM_AddSums(light.diffuseCache, n, diffuse);
      LM_AddSums(light.specularCache, n, specular);
    } else if (IsKept(light) && (_sorted.listed >> j & 1) == 0) {
      // It gives nothing, which is what its caches are to hold.
      LM_ClearSums(light.diffuseCache, n);
      LM_ClearSums(light.specularCache, n);
    }
  }
  if (cold.lights.Count() > 0)
    _kernels->sum(cold.lights, cold.parts, {positions, normals, n, diffuse, specular});
  return true;
}
