// The cost of shading alone, in nanoseconds on one thread: tile by tile as in a real run, and
// the whole-image driver with each set of kernels.
#include "LM_bumps.h"
#include "LM_height_rows.h"
#include "LM_memory.h"
#include "LM_render.h"
#include "LM_shader.h"
#include "LM_tiles.h"
#include "MacMemory.h"

#include <benchmark/benchmark.h>
#include <utility>
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
  for ([[maybe_unused]] auto _ : state)
    LM_ShadeTile(&scene.record, scene.globals);
  Report(state, static_cast<double>(state.range(1)));
}

void Relief(benchmark::State& state) {
  TileScene scene(static_cast<int32_t>(state.range(0)), static_cast<int>(state.range(1)), true);
  for ([[maybe_unused]] auto _ : state)
    LM_ShadeTileWithBumps(&scene.record, &scene.globals->bumpMap, scene.globals);
  Report(state, static_cast<double>(state.range(1)));
}

void Heights(benchmark::State& state) {
  TileScene scene(LM_LIGHT_OMNI, 1, true);
  for ([[maybe_unused]] auto _ : state)
    scene.StoreHeights();
  Report(state, 1.0);
}

// A part of a large picture, lit by the driver.
constexpr int COLUMNS = 2000;
constexpr int ROWS = 48;

class DriverScene {
public:
  DriverScene(int32_t type, int lights, bool relief, const LM_kernels* kernels)
      : _tile(type, lights, false), _image(COLUMNS * ROWS * 3), _heights(COLUMNS * ROWS),
        _out(_image.size()), _relief(relief), _scratch(LM_NewRenderScratch()) {
    uint32_t noise = 1;
    for (uint8_t& byte : _image)
      byte = static_cast<uint8_t>((noise = noise * 1664525U + 1013904223U) >> 24);
    for (uint8_t& byte : _heights)
      byte = static_cast<uint8_t>((noise = noise * 1664525U + 1013904223U) >> 24);
    foo* params = LM_Parameters(&_tile.record);
    params->numLights = static_cast<uint16_t>(lights);
    params->bumpHeight = 256;
    LM_PrepareRender(*params, {0, 0, ROWS, COLUMNS}, COLUMNS, ROWS, kernels, _job);
  }
  void Light() {
    const LM_rect all = {0, 0, ROWS, COLUMNS};
    const LM_source_view heights = {_relief ? _heights.data() : nullptr, COLUMNS, 1, all};
    LM_RenderRect(
        _job, {{_image.data(), COLUMNS * 3, 3, all}, {_out.data(), COLUMNS * 3, 3, all}, heights},
        all, *_scratch);
    benchmark::DoNotOptimize(_out.data());
  }
  // The heights alone.
  void FillHeights() {
    const LM_rect all = {0, 0, ROWS, COLUMNS};
    static LM_row_ring<uint8_t> taps;
    static LM_row_ring<int32_t> heights;
    LM_height_rows rows({_heights.data(), COLUMNS, 1, all}, LM_pixel_kind::Bytes, all, -1,
                        LM_RENDER_BLOCK + 2, _job.params.bumpHeight, _job.kernels,
                        {&taps, nullptr});
    for (int32_t y = 0; y < ROWS; ++y)
      rows.Make(y, heights.At(y));
  }
  // The kernels must give what the plain code gives before their time counts.
  bool EqualsPlain() {
    Light();
    const std::vector<uint8_t> vectors = _out;
    const LM_kernels* kernels = std::exchange(_job.kernels, nullptr);
    Light();
    _job.kernels = kernels;
    return _out == vectors;
  }

private:
  TileScene _tile;
  std::vector<uint8_t> _image, _heights, _out;
  bool _relief;
  LM_render_job _job;
  LM_render_scratch_pointer _scratch;
};

// The kernels of this machine, the best first; after them null, for the plain rows.
std::vector<const LM_kernels*> AllKernels() {
  std::vector<const LM_kernels*> all(16);
  all.resize(static_cast<size_t>(LM_ListKernels(all.data(), 16)));
  all.push_back(nullptr);
  return all;
}
const LM_kernels* KernelsOf(benchmark::State& state) {
  const LM_kernels* kernels = AllKernels().at(static_cast<size_t>(state.range(0)));
  state.SetLabel(kernels != nullptr ? kernels->name : "plain");
  return kernels;
}

void ReportPixels(benchmark::State& state, const char* what, double pixels) {
  state.counters[what] = benchmark::Counter(pixels, benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}

void Drive(benchmark::State& state, bool relief) {
  const int lights = static_cast<int>(state.range(2));
  DriverScene scene(static_cast<int32_t>(state.range(1)), lights, relief, KernelsOf(state));
  if (!scene.EqualsPlain()) {
    state.SkipWithError("not the plain code's bytes");
    return;
  }
  for ([[maybe_unused]] auto _ : state)
    scene.Light();
  ReportPixels(state, "per pixel", 1.0 * COLUMNS * ROWS);
  if (lights > 0)
    ReportPixels(state, "per pixel and light", 1.0 * COLUMNS * ROWS * lights);
}
void DriveFlat(benchmark::State& state) {
  Drive(state, false);
}
void DriveRelief(benchmark::State& state) {
  Drive(state, true);
}

void DriveHeights(benchmark::State& state) {
  DriverScene scene(LM_LIGHT_OMNI, 1, true, KernelsOf(state));
  for ([[maybe_unused]] auto _ : state)
    scene.FillHeights();
  ReportPixels(state, "per pixel", 1.0 * LM_RENDER_BLOCK * ROWS);
}

const std::vector<std::vector<int64_t>> LIGHTS = {
    {LM_LIGHT_OMNI, LM_LIGHT_DIRECTIONAL, LM_LIGHT_SPOT}, {1, 4, 16}};
BENCHMARK(Flat)->ArgNames({"type", "lights"})->ArgsProduct(LIGHTS);
BENCHMARK(Relief)->ArgNames({"type", "lights"})->ArgsProduct(LIGHTS);
BENCHMARK(Heights);

std::vector<int64_t> EachKernels() {
  return benchmark::CreateDenseRange(0, static_cast<int64_t>(AllKernels().size()) - 1, 1);
}
// No light at all shows what the pixels cost by themselves.
void EachDrive(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"kernels", "type", "lights"});
  for (const int64_t kernels : EachKernels())
    bench->Args({kernels, LM_LIGHT_OMNI, 0})->ArgsProduct({{kernels}, LIGHTS[0], LIGHTS[1]});
}
BENCHMARK(DriveFlat)->Apply(EachDrive);
BENCHMARK(DriveRelief)->Apply(EachDrive);
BENCHMARK(DriveHeights)->ArgNames({"kernels"})->ArgsProduct({EachKernels()});

} // namespace
