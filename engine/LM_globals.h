// The settings-and-state object: all that the filter remembers between calls and runs.
#pragma once

#include <cstddef>

#include "LM_bumps.h"
#include "LM_export.h"
#include "LM_light_UI.h"
#include "LM_parameters.h"
#include "LM_sample_store.h"

struct GrafPort;
class LM_style_istream;
class LM_style_ostream;

// The three pixel maps of the preview.
enum LM_preview_map {
  LM_FRAME_MAP = 0,   // what the dialog shows: the preview inside its frame
  LM_PREVIEW_MAP = 1, // the reduced image
  LM_BUMP_PREVIEW_MAP =
      2 // the reduced bump channel, one byte a pixel, three pixels of margin all round
};

constexpr int LM_ELLIPSE_STEPS = 40;

// One shading cache of the preview: a buffer that LM_globals owns, or null, and whether it holds
// valid results.
struct LM_cache {
  void* buffer;
  LM_bool hot;
};

// One block, allocated through LM_NewPtr. Its address is kept in the host's data slot. Used from
// the host's thread only.
class LM_globals {
public:
  LM_color48 ambientColor;
  int16_t material; // sliders' values as they are
  int16_t gloss;
  int16_t exposure;
  int16_t ambientBrightness; // slider value minus 127
  int16_t bumpAmplitude;
  LM_bool whiteIsHigh;
  LM_bool dialogPending;   // the run is interactive and its dialog has not ended
  LM_bool previewComplete; // all preview tiles are collected
  LM_bool previewOn;       // the preview is shown lit
  int16_t previewScale;    // image pixels per preview pixel
  int16_t previewOffsetX;  // the preview image inside the frame
  int16_t previewOffsetY;
  int16_t previewWidth; // in preview pixels
  int16_t previewHeight;
  CVPixelMap previewMaps[3]; // by LM_preview_map; buffers owned
  uint16_t tileSize;         // tile edge of the present walk
  FilterRecord* record;      // of the present run
  uint16_t numLights;        // at most LM_MAX_LIGHTS
  uint16_t curLight;         // the selected one, below LM_MAX_LIGHTS
  // Of the preview frame, in the dialog's coordinates: where lights have their origin.
  int16_t frameCenterX;
  int16_t frameCenterY;
  int16_t frameOriginX; // its top-left
  int16_t frameOriginY;
  uint16_t tilesTotal; // progress of the real walk
  uint16_t tilesDone;
  float ellipseCos[LM_ELLIPSE_STEPS]; // the unit circle
  float ellipseSin[LM_ELLIPSE_STEPS];
  Handle dialogResource; // while the dialog exists
  GrafPort* dialog;
  LM_light_UI lights[LM_MAX_LIGHTS]; // the first numLights count
  LM_scratch_rows scratch;
  LM_bool bumpTilePending; // the tile's heights are stored, its image is what comes next
  LM_bump_map bumpMap;
  int16_t bumpChannel; // 1-based, 0 for none
  int32_t tileWalkFlag;
  LM_cache posCache;         // LM_vector2f a sample
  LM_cache normCache;        // LM_vector3f a sample
  LM_cache weightCache;      // weights, a 0 after each pixel's
  LM_cache baseCache;        // 3 bytes a sample
  LM_cache sampleCountCache; // samples of each run of a row
  LM_cache diffuseSumCache;  // LM_color96 a sample
  LM_cache specularSumCache;
  LM_bool useCurrentSettings; // a run has finished: the next dialog starts from these settings
  int16_t styleIndex;         // chosen entry of the style menu, 1-based, 0 for none
  LM_bool walkHasRelief;      // the present real walk reads a bump channel
  LM_bool answering;          // a call of the host is being answered

  LM_globals();
  LM_globals(const LM_globals&) = delete;
  LM_globals& operator=(const LM_globals&) = delete;
  ~LM_globals() = default; // buffers are released by FreeCaches and the end of the run
  static void* operator new(size_t, void* place) { return place; }
  static void operator delete(void*, void*) {}
  static void operator delete(void* object, size_t size);

  // Back to one default spotlight and the default surface; the bump channel stays.
  LM_EXPORT void Default();
  // Copies settings, geometry and lights; the copy shares no cache with `other`. Always 0.
  int16_t CopySettingsFrom(const LM_globals& other);
  // Fills the block but for its header. preview 1: with the preview's falloff tables.
  void ConvertToParameters(foo* params, LM_bool preview) const;
  void GenerateEllipseCoords();

  LM_light_UI& CurrentLight() { return lights[curLight]; }
  const LM_light_UI& CurrentLight() const { return lights[curLight]; }
  // Each adds a light at the dialog point (h, v) and selects it; with sixteen lights nothing
  // happens.
  void CreateNewOmniLight(int16_t h, int16_t v);
  void CreateNewSpotlight(int16_t h, int16_t v);       // shaped like the light selected before
  LM_EXPORT void CopyNewLight(int16_t h, int16_t v);   // a copy of it
  LM_EXPORT void CreateNewLight(int16_t h, int16_t v); // a fresh white spotlight
  // Removes the selected light and selects light 0. 0 when it is the last one: nothing changes
  // then.
  LM_EXPORT LM_bool DeleteCurrentLight();
  // The lights' figures on the preview, the selected one on top: defined with the user interface.
  void DrawLights();
  void DrawInactiveLights();

  // Allocates the caches that are not there for height rows of width pixels, four samples a pixel
  // when bumps is 1. What cannot be had stays absent, and shading does without. Never resizes: the
  // caller frees the caches when the sizes change.
  void AllocateCaches(unsigned long width, unsigned long height, LM_bool bumps);
  LM_EXPORT void FreeCaches();
  LM_EXPORT void InvalidateCaches();

  // For each cache: is its buffer there; the buffer; does it hold valid results; set that, which a
  // missing cache ignores.
  LM_bool UsePosCache() const { return posCache.buffer != nullptr; }
  LM_vector2f* PosCache() const { return static_cast<LM_vector2f*>(posCache.buffer); }
  LM_bool PosCacheHot() const { return posCache.hot; }
  void PosCacheHot(LM_bool hot) { _SetHot(posCache, hot); }
  LM_bool UseNormCache() const { return normCache.buffer != nullptr; }
  LM_vector3f* NormCache() const { return static_cast<LM_vector3f*>(normCache.buffer); }
  LM_bool NormCacheHot() const { return normCache.hot; }
  void NormCacheHot(LM_bool hot) { _SetHot(normCache, hot); }
  LM_bool UseWeightCache() const { return weightCache.buffer != nullptr; }
  int32_t* WeightCache() const { return static_cast<int32_t*>(weightCache.buffer); }
  LM_bool WeightCacheHot() const { return weightCache.hot; }
  void WeightCacheHot(LM_bool hot) { _SetHot(weightCache, hot); }
  LM_bool UseBaseCache() const { return baseCache.buffer != nullptr; }
  uint8_t* BaseCache() const { return static_cast<uint8_t*>(baseCache.buffer); }
  LM_bool BaseCacheHot() const { return baseCache.hot; }
  void BaseCacheHot(LM_bool hot) { _SetHot(baseCache, hot); }
  LM_bool UseSampleCountCache() const { return sampleCountCache.buffer != nullptr; }
  uint32_t* SampleCountCache() const { return static_cast<uint32_t*>(sampleCountCache.buffer); }
  LM_bool SampleCountCacheHot() const { return sampleCountCache.hot; }
  void SampleCountCacheHot(LM_bool hot) { _SetHot(sampleCountCache, hot); }
  LM_bool UseDiffuseSumCache() const { return diffuseSumCache.buffer != nullptr; }
  LM_color96* DiffuseSumCache() const { return static_cast<LM_color96*>(diffuseSumCache.buffer); }
  LM_bool DiffuseSumCacheHot() const { return diffuseSumCache.hot; }
  void DiffuseSumCacheHot(LM_bool hot) { _SetHot(diffuseSumCache, hot); }
  LM_bool UseSpecularSumCache() const { return specularSumCache.buffer != nullptr; }
  LM_color96* SpecularSumCache() const { return static_cast<LM_color96*>(specularSumCache.buffer); }
  LM_bool SpecularSumCacheHot() const { return specularSumCache.hot; }
  void SpecularSumCacheHot(LM_bool hot) { _SetHot(specularSumCache, hot); }

  // Settings whose change makes caches stale. Values are not clamped.
  LM_EXPORT void SetBumpAmplitude(int16_t amplitude);
  int16_t BumpAmplitude() const { return bumpAmplitude; }
  LM_EXPORT void SetWhiteIsHigh(LM_bool high);
  LM_bool WhiteIsHigh() const { return whiteIsHigh; }
  // To or from no channel frees the caches, since flat and relief samples differ in number.
  LM_EXPORT void SetBumpChannel(int16_t channel);
  int16_t BumpChannel() const { return bumpChannel; }
  LM_bool UseCurrentSettings() const { return useCurrentSettings; }
  void SetUseCurrentSettings(LM_bool use) { useCurrentSettings = use; }
  int16_t StyleIndex() const { return styleIndex; }
  void SetStyleIndex(int16_t index) { styleIndex = index; }

  // The settings to and from a style file: defined with the styles.
  LM_bool Write(LM_style_ostream& stream) const;
  LM_bool Read(LM_style_istream& stream);

private:
  static void _SetHot(LM_cache& cache, LM_bool hot) {
    if (cache.buffer != nullptr)
      cache.hot = hot;
  }
  void _DefaultSurface();
  LM_light_UI* _AddLight(int16_t h, int16_t v);
  void _ShapeDefaultSpot(LM_light_UI& light);
};

// Allocates and constructs a settings object, or returns null when memory is short.
LM_globals* LM_NewGlobals();

// Releases everything the object owns, and the object.
void LM_DestroyGlobals(LM_globals* globals);

// Releases the pixel maps' buffers, the frame map's mask and the height buffer, as far as they are
// there.
void LM_FreeRunBuffers(LM_globals* globals);
