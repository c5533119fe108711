#include "LM_light_UI.h"

#include "LM_globals.h"
#include "LM_handles.h"
#include "LM_memory.h"

namespace {

void AllocateCache(LM_color96*& cache, unsigned long samples) {
  if (cache == nullptr)
    cache = static_cast<LM_color96*>(LM_NewPtr(samples * sizeof(LM_color96)));
}

} // namespace

LM_light_figure LM_light_UI::Figure() const {
  return {type,
          center.Floats(),
          handle1.Floats(),
          handle2.Floats(),
          static_cast<float>(radius),
          color,
          intensity,
          spread};
}

void LM_light_UI::ConvertToRealLight(LM_light* out, unsigned short scale,
                                     LM_bool forPreview) const {
  LM_ConvertLight(Figure(), static_cast<float>(scale), forPreview, out);
  out->diffuseCache = diffuseCache;
  out->diffuseCacheHot = diffuseCacheHot;
  out->specularCache = specularCache;
  out->specularCacheHot = specularCacheHot;
}

void LM_light_UI::_ConvertSpotLight(LM_light* out, float scale, LM_bool forPreview) const {
  LM_ConvertSpotLight(Figure(), scale, forPreview, out);
}

void LM_light_UI::_BuildSpreadTable(LM_light* out, LM_bool forPreview) const {
  LM_BuildSpreadTable(spread, forPreview, out);
}

void LM_light_UI::Validate() {
  if (type != LM_LIGHT_SPOT)
    return;
  const LM_vector2f second =
      LM_SecondAxis(handle1.Floats(), handle2.Floats(), LM_handle_grid::Whole);
  handle2 = {static_cast<int16_t>(second.x), static_cast<int16_t>(second.y)};
}

void LM_light_UI::AllocateCaches(unsigned long samples) {
  if (on == 0)
    return;
  AllocateCache(diffuseCache, samples);
  AllocateCache(specularCache, samples);
}

void LM_light_UI::DetachCaches() {
  diffuseCache = nullptr;
  diffuseCacheHot = 0;
  specularCache = nullptr;
  specularCacheHot = 0;
}

void LM_light_UI::FreeCaches() {
  LM_DisposePtr(diffuseCache);
  LM_DisposePtr(specularCache);
  DetachCaches();
}

void LM_light_UI::InvalidateCaches() {
  diffuseCacheHot = 0;
  specularCacheHot = 0;
  if (globals != nullptr) {
    globals->DiffuseSumCacheHot(0);
    globals->SpecularSumCacheHot(0);
  }
}

void LM_light_UI::DiffuseCacheHot(LM_bool hot) {
  if (diffuseCache != nullptr)
    diffuseCacheHot = hot;
}

void LM_light_UI::SpecularCacheHot(LM_bool hot) {
  if (specularCache != nullptr)
    specularCacheHot = hot;
}
