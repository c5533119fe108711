// The cost of shading alone: nanoseconds per pixel and light on one thread, tile by tile as in a
// real run.
#include "LM_bumps.h"
#include "LM_memory.h"
#include "LM_shader.h"
#include "LM_tiles.h"
#include "MacMemory.h"

#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr int EDGE = LM_TILE_EDGE;
constexpr int MARGIN_EDGE = EDGE + 2 * LM_BUMP_MARGIN;

uint8_t NeverCancel() {
  return 0;
}

// One tile in the middle of a large filter area, with its relief channel, and the settings to light
// it.
class TileScene {
public:
  TileScene(int32_t type, int lights, bool relief)
      : globals(LM_NewGlobals()), _image(EDGE * EDGE * 3), _channel(MARGIN_EDGE * MARGIN_EDGE),
        _out(EDGE * EDGE * 3) {
    uint32_t noise = 1;
    const auto fill = [&](std::vector<uint8_t>& bytes) {
      for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>((noise = noise * 1664525U + 1013904223U) >> 24);
    };
    fill(_image);
    fill(_channel);
    SetLights(type, lights);
    record.testCancel = NeverCancel;
    record.filterArea = {0, 0, 3000, 4000};
    record.savedParams = LM_NewParameters();
    globals->ConvertToParameters(LM_Parameters(&record), 0);
    if (relief)
      StoreHeights();
    AimAtImage();
  }
  ~TileScene() {
    LM_FreeRunBuffers(globals);
    LM_DestroyGlobals(globals);
    DisposeHandle(record.savedParams);
  }
  TileScene(const TileScene&) = delete;
  TileScene& operator=(const TileScene&) = delete;

  void StoreHeights() {
    record.inTileRect = {1500 - LM_BUMP_MARGIN, 2000 - LM_BUMP_MARGIN, 1500 + EDGE + LM_BUMP_MARGIN,
                         2000 + EDGE + LM_BUMP_MARGIN};
    record.inPixels = _channel.data();
    record.inRowStride = MARGIN_EDGE;
    globals->bumpMap.scale = 256;
    LM_StoreBumpMap(&record, globals);
  }

  LM_globals* globals;
  FilterRecord record = {};

private:
  void AimAtImage() {
    record.inTileRect = {1500, 2000, 1500 + EDGE, 2000 + EDGE};
    record.inPixels = _image.data();
    record.outPixels = _out.data();
    record.inRowStride = record.outRowStride = EDGE * 3;
  }
  void SetLights(int32_t type, int lights) {
    globals->frameCenterX = globals->frameCenterY = 140;
    globals->previewWidth = 256;
    globals->Default();
    while (globals->numLights < lights)
      globals->CreateNewLight(140, 140);
    for (int i = 0; i < lights; ++i) {
      globals->lights[i].type = type;
      globals->lights[i].handle1 = {60, 20};
      globals->lights[i].handle2 = {-20, 60};
      globals->lights[i].radius = 80;
    }
  }

  std::vector<uint8_t> _image, _channel, _out;
};

// Shows the time per pixel and light.
void Report(benchmark::State& state, double lights) {
  state.counters["per pixel and light"] =
      benchmark::Counter(lights * EDGE * EDGE, benchmark::Counter::kIsIterationInvariantRate |
                                                   benchmark::Counter::kInvert);
}

void Flat(benchmark::State& state) {
  TileScene scene(static_cast<int32_t>(state.range(0)), static_cast<int>(state.range(1)), false);
  for (auto _ : state)
    LM_ShadeTile(&scene.record, scene.globals);
  Report(state, static_cast<double>(state.range(1)));
}

void Relief(benchmark::State& state) {
  TileScene scene(static_cast<int32_t>(state.range(0)), static_cast<int>(state.range(1)), true);
  for (auto _ : state)
    LM_ShadeTileWithBumps(&scene.record, &scene.globals->bumpMap, scene.globals);
  Report(state, static_cast<double>(state.range(1)));
}

void Heights(benchmark::State& state) {
  TileScene scene(LM_LIGHT_OMNI, 1, true);
  for (auto _ : state)
    scene.StoreHeights();
  Report(state, 1.0);
}

const std::vector<std::vector<int64_t>> LIGHTS = {
    {LM_LIGHT_OMNI, LM_LIGHT_DIRECTIONAL, LM_LIGHT_SPOT}, {1, 4, 16}};
BENCHMARK(Flat)->ArgNames({"type", "lights"})->ArgsProduct(LIGHTS);
BENCHMARK(Relief)->ArgNames({"type", "lights"})->ArgsProduct(LIGHTS);
BENCHMARK(Heights);

} // namespace
