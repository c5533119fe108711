// The preview's shading caches and the buffers of a run, as LM_globals owns them.
#include <array>

#include "LM_globals.h"
#include "LM_memory.h"
#include "MacMemory.h"

namespace {

void Allocate(LM_cache& cache, size_t bytes) {
  if (cache.buffer == nullptr)
    cache.buffer = LM_NewPtr(bytes);
}

bool HasBothCaches(const LM_light_UI& light) {
  return light.UseDiffuseCache() == 1 && light.UseSpecularCache() == 1;
}

// For what is done to all of them alike.
std::array<LM_cache*, 7> AllCaches(LM_globals& g) {
  return {&g.posCache,         &g.normCache,       &g.weightCache,     &g.baseCache,
          &g.sampleCountCache, &g.diffuseSumCache, &g.specularSumCache};
}

} // namespace

void LM_globals::AllocateCaches(unsigned long width, unsigned long height, LM_bool bumps) {
  const size_t pixels = static_cast<size_t>(width) * height;
  const size_t samples = bumps == 1 ? 4 * pixels : pixels;
  Allocate(posCache, sizeof(LM_vector2f) * samples);
  if (bumps == 1) {
    const size_t runsPerRow = (width + LM_MAX_RELIEF_PIXELS - 1) / LM_MAX_RELIEF_PIXELS;
    Allocate(normCache, sizeof(LM_vector3f) * samples);
    Allocate(weightCache, sizeof(int32_t) * (samples + pixels));
    Allocate(baseCache, static_cast<size_t>(LM_PLANES) * samples);
    Allocate(sampleCountCache, sizeof(uint32_t) * height * runsPerRow);
  }
  Allocate(diffuseSumCache, sizeof(LM_color96) * samples);
  Allocate(specularSumCache, sizeof(LM_color96) * samples);
  for (int i = 0; i < numLights; ++i) {
    const bool hadBoth = HasBothCaches(lights[i]);
    lights[i].AllocateCaches(static_cast<unsigned long>(samples));
    // Sums that are there without the light's own caches would never fill them.
    if (!hadBoth && HasBothCaches(lights[i])) {
      DiffuseSumCacheHot(0);
      SpecularSumCacheHot(0);
    }
  }
}

void LM_globals::FreeCaches() {
  for (LM_light_UI& light : lights)
    light.FreeCaches();
  for (LM_cache* cache : AllCaches(*this)) {
    LM_DisposeAndClear(cache->buffer);
    cache->hot = 0;
  }
}

void LM_globals::InvalidateCaches() {
  for (LM_light_UI& light : lights)
    light.InvalidateCaches();
  for (LM_cache* cache : AllCaches(*this))
    cache->hot = 0;
}

void LM_FreeRunBuffers(LM_globals* globals) {
  for (CVPixelMap& map : globals->previewMaps)
    LM_DisposeAndClear(map.baseAddress);
  LM_DisposeAndClear(globals->bumpMap.heights);
  CVPixelMap& frame = globals->previewMaps[LM_FRAME_MAP];
  if (frame.version != 1 || frame.mask == nullptr)
    return;
  if (frame.mask->maskData != nullptr)
    DisposePtr(reinterpret_cast<Ptr>(frame.mask->maskData));
  DisposePtr(reinterpret_cast<Ptr>(frame.mask));
  frame.mask = nullptr;
}
