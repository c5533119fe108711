#include "LM_vector_sums.h"

#include <algorithm>

#include "LM_kernel_lights.h"
#include "LM_light_sums.h"

namespace {

bool IsKept(const LM_light& light) {
  return light.diffuseCache != nullptr && light.specularCache != nullptr;
}
bool IsHot(const LM_light& light) {
  return IsKept(light) && light.diffuseCacheHot == 1 && light.specularCacheHot == 1;
}

} // namespace

LM_vector_sums::LM_vector_sums(const foo* params, bool flat, const LM_kernels* kernels)
    : _params(params), _kernels(kernels), _lights(), _source() {
  int* const counts[] = {&_lights.omnis, &_lights.spots, &_lights.directionals};
  const LM_light_type types[] = {LM_LIGHT_OMNI, LM_LIGHT_SPOT, LM_LIGHT_DIRECTIONAL};
  for (int group = 0; group < 3; ++group) {
    for (int j = 0; j < LM_LightCount(params); ++j) {
      if (params->lights[j].type != types[group])
        continue;
      LM_kernel_light& light = _lights.light[_lights.Count()];
      light = LM_KernelLight(params->lights[j]);
      // A light at or below a flat surface adds nothing to it.
      if (flat && light.z <= 0.0F) {
        std::fill_n(light.color, LM_PLANES, 0.0F);
        light.gray = true;
      }
      _source[_lights.Count()] = j;
      ++*counts[group];
    }
  }
  // A light of no known type.
  if (_lights.Count() != LM_LightCount(params))
    _kernels = nullptr;
}

// The lights that have to be evaluated, in the row, and where their parts go.
struct LM_vector_sums::ColdLights {
  LM_kernel_lights lights;
  LM_kernel_part parts[LM_MAX_LIGHTS];
};

bool LM_vector_sums::_FindCold(const LM_vector2f& first, const LM_vector2f& last,
                               ColdLights& cold) const {
  for (int k = 0; k < _lights.Count(); ++k) {
    const LM_light& light = _params->lights[_source[k]];
    if (IsHot(light))
      continue;
    const int count = cold.lights.Count();
    LM_kernel_light& moved = cold.lights.light[count];
    moved = _lights.light[k];
    const bool directional = k >= _lights.omnis + _lights.spots;
    if (directional ? !LM_DirectionFitsVectors(moved)
                    : !LM_MoveToRow(moved, first.y, first.x, last.x))
      return false;
    if (IsKept(light))
      cold.parts[count] = {light.diffuseCache, light.specularCache};
    ++(directional          ? cold.lights.directionals
       : k >= _lights.omnis ? cold.lights.spots
                            : cold.lights.omnis);
  }
  return true;
}

bool LM_vector_sums::Sum(int n, const LM_vector2f* positions, const LM_vector3f* normals,
                         LM_color96* diffuse, LM_color96* specular) const {
  ColdLights cold = {};
  if (_kernels == nullptr || !_FindCold(positions[0], positions[n - 1], cold))
    return false;
  LM_ClearSums(diffuse, n);
  LM_ClearSums(specular, n);
  for (int j = 0; j < LM_LightCount(_params); ++j) {
    const LM_light& light = _params->lights[j];
    if (!IsHot(light))
      continue;
    LM_AddSums(light.diffuseCache, n, diffuse);
    LM_AddSums(light.specularCache, n, specular);
  }
  if (cold.lights.Count() > 0)
    _kernels->sum(cold.lights, cold.parts, {positions, normals, n, diffuse, specular});
  return true;
}
