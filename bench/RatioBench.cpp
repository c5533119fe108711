// What one way of lighting costs against another, the two in turn in one run: deep pixels against
// bytes, lights that reach little against those that reach everything, sums that are kept. CPU time
// of one thread, the least of many rounds. Goals are in brackets.
#include "LM_gallery.h"
#include "LM_style_fields.h"
#include "LM_style_lighting.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

namespace {

constexpr int ROUNDS = 25;
constexpr int WIDTH = 1920;
constexpr int HEIGHT = 1080;
constexpr int SOME_ROWS = 40;

double CpuSeconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

// The least time of each, in seconds, after a round that is not counted.
std::vector<double> InTurn(const std::vector<std::function<void()>>& ways, int rounds = ROUNDS) {
  std::vector<double> least(ways.size(), 1e9);
  for (int round = -1; round < rounds; ++round)
    for (size_t i = 0; i < ways.size(); ++i) {
      const double start = CpuSeconds();
      ways[i]();
      const double taken = CpuSeconds() - start;
      if (round >= 0)
        least[i] = std::min(least[i], taken);
    }
  return least;
}

LM_style StyleOf(int lights, uint16_t type) {
  LM_style style = LM_NewStyle();
  style.bumpAmplitude = 120;
  style.gloss = 120;
  style.numLights = style.lightsRead = static_cast<uint16_t>(lights);
  for (int i = 0; i < lights; ++i) {
    style.lights[i] = LM_NewStyleLight();
    style.lights[i].type = type;
    style.lights[i].center = {static_cast<float>(-90 + 12 * i), static_cast<float>(80 - 11 * i)};
    style.lights[i].radius = 70;
  }
  return style;
}

// The middle rows of a picture, of noise, lit in a style.
class Scene {
public:
  Scene(const LM_style& style, LM_pixel_kind kind, LM_pixel_kind reliefKind, bool relief,
        int rows = SOME_ROWS)
      : _rect{(HEIGHT - rows) / 2, 0, (HEIGHT + rows) / 2, WIDTH},
        _held{std::max(0, _rect.top - LM_RELIEF_REACH), 0,
              std::min(HEIGHT, _rect.bottom + LM_RELIEF_REACH), WIDTH},
        _scratch(LM_NewRenderScratch()) {
    const LM_rect whole = {0, 0, HEIGHT, WIDTH};
    if (_scratch == nullptr ||
        LM_PrepareStyle(style, whole, WIDTH, HEIGHT, 3, _job) != LM_render_result::Done)
      std::abort();
    const size_t pixels = static_cast<size_t>(_held.bottom - _held.top) * WIDTH;
    _source = Noise(kind, pixels * 3);
    _output.resize(_source.size());
    const ptrdiff_t step = ptrdiff_t{3} * LM_ComponentBytes(kind);
    _views.source = {_source.data(), WIDTH * step, step, _held};
    _views.output = {_output.data(), WIDTH * step, step, _held};
    _views.kind = kind;
    if (!relief)
      return;
    _heights = Noise(reliefKind, pixels);
    _views.relief = {_heights.data(), ptrdiff_t{WIDTH} * LM_ComponentBytes(reliefKind),
                     LM_ComponentBytes(reliefKind), _held};
    _views.reliefKind = reliefKind;
  }
  void Keep(bool tight) {
    const bool relief = _views.relief.pixels != nullptr;
    LM_StartKeeping(_job.area, relief, LM_ALL_LIGHTS, _kept,
                    tight ? LM_TightForm(_job.params, _job.area, relief) : LM_kept_form());
    _views.kept = &_kept;
  }
  void Light() {
    if (LM_RenderRect(_job, _views, _rect, *_scratch) != LM_render_result::Done)
      std::abort();
  }

private:
  static std::vector<uint8_t> Noise(LM_pixel_kind kind, size_t components) {
    std::vector<uint8_t> bytes(components * static_cast<size_t>(LM_ComponentBytes(kind)));
    uint32_t noise = 1;
    for (size_t i = 0; i < components; ++i) {
      noise = noise * 1664525U + 1013904223U;
      const auto word = static_cast<uint16_t>(noise >> 16);
      const float sample = static_cast<float>(word) / 65535.0F;
      if (kind == LM_pixel_kind::Bytes)
        bytes[i] = static_cast<uint8_t>(word >> 8);
      else if (kind == LM_pixel_kind::Words)
        std::memcpy(&bytes[i * sizeof word], &word, sizeof word);
      else
        std::memcpy(&bytes[i * sizeof sample], &sample, sizeof sample);
    }
    return bytes;
  }

  LM_rect _rect, _held;
  LM_render_job _job;
  LM_render_scratch_pointer _scratch;
  std::vector<uint8_t> _source, _output, _heights;
  LM_render_views _views = {};
  LM_kept_sums _kept = {};
};

constexpr auto BYTES = LM_pixel_kind::Bytes;
constexpr auto WORDS = LM_pixel_kind::Words;
constexpr auto FLOATS = LM_pixel_kind::Floats;

void CompareDepths() {
  for (const bool relief : {false, true})
    for (const int lights : {1, 16}) {
      const LM_style style = StyleOf(lights, LM_STYLE_OMNI);
      Scene bytes(style, BYTES, BYTES, relief), words(style, WORDS, BYTES, relief),
          floats(style, FLOATS, BYTES, relief);
      const auto times =
          InTurn({[&] { bytes.Light(); }, [&] { words.Light(); }, [&] { floats.Light(); }});
      std::printf("%-8s %2d omnis: 16 bits %.2f times (1.5), float %.2f times (1.6) 8 bits\n",
                  relief ? "relief," : "flat,", lights, times[1] / times[0], times[2] / times[0]);
    }
  const LM_style style = StyleOf(4, LM_STYLE_OMNI);
  Scene bytes(style, BYTES, BYTES, true), words(style, BYTES, WORDS, true);
  const auto times = InTurn({[&] { bytes.Light(); }, [&] { words.Light(); }});
  std::printf("heights of 16 bits: %.2f times (1.1) those of 8\n", times[1] / times[0]);
}

// The style with every cone so wide that it reaches all of the picture.
LM_style Everywhere(LM_style style) {
  for (LM_style_light& light : style.lights)
    if (light.type != LM_STYLE_DIRECTIONAL && light.type != LM_STYLE_OMNI) {
      light.center = {0, 0};
      light.handle1 = {1500, 0};
      light.handle2 = {0, 1500};
    }
  return style;
}

void CompareReach() {
  const struct {
    const char* name;
    double goal;
  } styles[] = {{"Festival Lights", 0.25}, {"Forest Dapples", 0.15}, {"Three Portholes", 0.4}};
  for (const auto& [name, goal] : styles) {
    LM_style style;
    if (!LM_BundledStyle(name, style))
      std::abort();
    LM_style dark = style;
    for (LM_style_light& light : dark.lights)
      light.on = 0;
    Scene lit(style, BYTES, BYTES, false, HEIGHT), none(dark, BYTES, BYTES, false, HEIGHT),
        all(Everywhere(style), BYTES, BYTES, false, HEIGHT);
    const auto times =
        InTurn({[&] { lit.Light(); }, [&] { none.Light(); }, [&] { all.Light(); }}, 7);
    std::printf("%s: its lights cost %.3f of what they cost if all reached everything (%.2f)\n",
                name, (times[0] - times[1]) / (times[2] - times[1]), goal);
  }
}

void CompareKept() {
  LM_style white = StyleOf(16, LM_STYLE_OMNI);
  LM_style colored = white;
  for (int i = 0; i < 16; ++i)
    colored.lights[i].color.component[i % 3] = 50000;
  LM_style few = colored;
  few.numLights = few.lightsRead = 4;
  const struct {
    const char* name;
    const LM_style& style;
  } styles[] = {{"16 white", white}, {"16 coloured", colored}, {"4 coloured", few}};
  for (const bool relief : {false, true})
    for (const auto& [name, style] : styles) {
      Scene anew(style, BYTES, BYTES, relief, HEIGHT), wide(style, BYTES, BYTES, relief, HEIGHT),
          kept(style, BYTES, BYTES, relief, HEIGHT);
      wide.Keep(false);
      kept.Keep(true);
      const auto times =
          InTurn({[&] { anew.Light(); }, [&] { wide.Light(); }, [&] { kept.Light(); }}, 9);
      std::printf("1080p, %s omnis%s: %.1f ms a frame, kept wide %.1f ms, packed %.1f ms (%d)\n",
                  name, relief ? " in relief" : "", times[0] * 1e3, times[1] * 1e3, times[2] * 1e3,
                  relief ? 5 : 4);
    }
}

} // namespace

int main() {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  CompareDepths();
  CompareReach();
  CompareKept();
}
