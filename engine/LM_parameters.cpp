#include "LM_parameters.h"

#include <cstring>

#include "MacMemory.h"

void LM_InitParameters(foo* params) {
  std::memset(params, 0, sizeof *params);
  params->magic = LM_PARAMS_MAGIC;
  params->version = LM_PARAMS_VERSION;
}

CVHandle LM_NewParameters() {
  CVHandle handle = NewHandle(static_cast<Size>(sizeof(foo)));
  if (handle != nullptr)
    LM_InitParameters(reinterpret_cast<foo*>(*handle));
  return handle;
}

foo* LM_Parameters(const FilterRecord* record) {
  CVHandle handle = record->savedParams;
  if (handle == nullptr || *handle == nullptr ||
      GetHandleSize(handle) < static_cast<Size>(sizeof(foo)))
    return nullptr;
  foo* params = reinterpret_cast<foo*>(*handle);
  return params->magic == LM_PARAMS_MAGIC ? params : nullptr;
}

void LM_DetachParameterCaches(foo* params) {
  for (LM_light& light : params->lights) {
    light.diffuseCache = nullptr;
    light.diffuseCacheHot = 0;
    light.specularCache = nullptr;
    light.specularCacheHot = 0;
  }
}
