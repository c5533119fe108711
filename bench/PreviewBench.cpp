// The cost of a change in the dialog: LM_ShadePreview on a 256 x 256 preview, with the caches as
// the change leaves them. The dialog's screen is left out. A frame at 60 Hz is 16.7 ms.
#include "LM_parameters.h"
#include "LM_preview.h"
#include "LM_tiles.h"
#include "MacMemory.h"

#include <benchmark/benchmark.h>
#include <cstdlib>

namespace {

uint8_t NeverCancel() {
  return 0;
}

// A collected preview of noise, and lights of every kind.
class PreviewScene {
public:
  PreviewScene(int lights, bool relief) : globals(LM_NewGlobals()) {
    record.testCancel = NeverCancel;
    record.colorMode = CV_MODE_RGB;
    record.filterArea = {0, 0, 256, 256};
    record.savedParams = LM_NewParameters();
    globals->record = &record;
    Rect preview = {12, 12, 268, 268};
    if (LM_SetUpPreview(&record, globals, {0, 0, 280, 280}, &preview) != CV_RESULT_OK)
      std::abort();
    FillWithNoise(globals->previewMaps[LM_PREVIEW_MAP], globals->previewHeight);
    FillWithNoise(globals->previewMaps[LM_BUMP_PREVIEW_MAP],
                  globals->previewHeight + 2 * LM_BUMP_MARGIN);
    globals->Default();
    while (globals->numLights < lights)
      globals->CreateNewLight(140, 140);
    for (int i = 0; i < lights; ++i) {
      globals->lights[i].type = i % 3;
      globals->lights[i].radius = 80;
      globals->lights[i].handle1 = {90, 40};
      globals->lights[i].handle2 = {-40, 90};
    }
    globals->SetBumpChannel(relief ? 1 : 0);
  }
  ~PreviewScene() {
    LM_FreeRunBuffers(globals);
    LM_DestroyGlobals(globals);
    DisposeHandle(record.savedParams);
  }
  PreviewScene(const PreviewScene&) = delete;
  PreviewScene& operator=(const PreviewScene&) = delete;

  LM_globals* globals;
  FilterRecord record = {};

private:
  static void FillWithNoise(const CVPixelMap& map, int32_t rows) {
    uint32_t noise = 1;
    for (int32_t i = 0; i < map.rowBytes * rows; ++i)
      map.baseAddress[i] = static_cast<uint8_t>((noise = noise * 1664525U + 1013904223U) >> 24);
  }
};

// change: what the user did, as the dialog leaves the caches.
void Render(benchmark::State& state, void (*change)(LM_globals&)) {
  PreviewScene scene(static_cast<int>(state.range(0)), state.range(1) != 0);
  LM_ShadePreview(scene.globals);
  while (state.KeepRunning()) {
    change(*scene.globals);
    LM_ShadePreview(scene.globals);
  }
}

void Cold(benchmark::State& state) {
  Render(state, [](LM_globals& g) { g.InvalidateCaches(); });
}
void MoveOneLight(benchmark::State& state) {
  Render(state, [](LM_globals& g) { g.lights[0].InvalidateCaches(); });
}
void ChangeExposure(benchmark::State& state) {
  Render(state, [](LM_globals& g) { g.exposure ^= 1; });
}

#define PREVIEW_CASES(name)                                                                        \
  BENCHMARK(name)                                                                                  \
      ->ArgNames({"lights", "relief"})                                                             \
      ->Args({4, 0})                                                                               \
      ->Args({16, 0})                                                                              \
      ->Args({4, 1})                                                                               \
      ->Args({16, 1})                                                                              \
      ->Unit(benchmark::kMillisecond)
PREVIEW_CASES(Cold);
PREVIEW_CASES(MoveOneLight);
PREVIEW_CASES(ChangeExposure);

} // namespace
