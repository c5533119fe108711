// Prints what the engine computes of lights and heights, as columns of numbers.
//
// - spread VALUE...: angle in degrees from a spot's axis, then its falloff for each spread
// - omni RADIUS...: pixels from the centre, then the light on the surface for each radius
// - directional: pixels of the handle, then elevation in degrees and light
// - spot FIRST SECOND...: for each second axis the lamp's place and axis
// - height AMPLITUDE VALUE...: number of the pixel, then its height in pixels
// - reach STYLE: lights that are worked out for each piece of some rows of 24 megapixels
//
// Pixels of lights are those of the dialog's preview; light is 1 where it falls straight down.
#include "LM_bumps.h"
#include "LM_gallery.h"
#include "LM_light_UI.h"
#include "LM_light_sums.h"
#include "LM_reach.h"
#include "LM_shader.h"
#include "LM_style_lighting.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr unsigned short PREVIEW_PIXELS = 140; // to a shading unit, as in the dialog
constexpr double DEGREES = 57.29577951308232;

LM_light_UI WhiteLight(LM_light_type type) {
  LM_light_UI light{};
  light.type = type;
  light.on = 1;
  light.handle1 = {30, 30};
  light.handle2 = {-15, 15};
  std::fill_n(light.color.component, LM_PLANES, uint16_t{65535});
  light.intensity = 127;
  return light;
}

double LightAt(const LM_light_UI& edited, int column) {
  LM_light light;
  edited.ConvertToRealLight(&light, PREVIEW_PIXELS, 0);
  const LM_vector2f position = {static_cast<float>(column) / PREVIEW_PIXELS, 0.0F};
  LM_color96 diffuse{}, specular{};
  LM_ShadeLight(light, 1, &position, &diffuse, &specular);
  return static_cast<double>(diffuse.component[0]) / light.color.component[0];
}

void PrintSpreads(const std::vector<int>& spreads) {
  std::vector<LM_light> lights(spreads.size());
  for (size_t i = 0; i < spreads.size(); ++i) {
    LM_light_UI light = WhiteLight(LM_LIGHT_SPOT);
    light.spread = static_cast<int16_t>(spreads[i]);
    light.ConvertToRealLight(&lights[i], PREVIEW_PIXELS, 0);
  }
  for (int entry = LM_SPREAD_ENTRIES - 1; entry >= 0; entry -= entry > 960 || entry < 8 ? 1 : 8) {
    const double cosine =
        lights[0].spreadMinCos + entry / static_cast<double>(lights[0].spreadScale);
    std::printf("%.3f", std::acos(std::min(1.0, cosine)) * DEGREES);
    for (const LM_light& light : lights)
      std::printf(" %.4f", static_cast<double>(light.spreadTable[entry]));
    std::printf("\n");
  }
}

void PrintOmnis(const std::vector<int>& radii) {
  LM_light_UI light = WhiteLight(LM_LIGHT_OMNI);
  for (int column = -140; column <= 140; column += 2) {
    std::printf("%d", column);
    for (const int radius : radii) {
      light.radius = static_cast<int16_t>(radius);
      std::printf(" %.4f", LightAt(light, column));
    }
    std::printf("\n");
  }
}

void PrintDirectional() {
  LM_light_UI light = WhiteLight(LM_LIGHT_DIRECTIONAL);
  for (int handle = 0; handle <= 120; handle += 2) {
    light.handle1 = {static_cast<int16_t>(handle), 0};
    LM_light converted;
    light.ConvertToRealLight(&converted, PREVIEW_PIXELS, 0);
    std::printf("%d %.3f %.4f\n", handle,
                std::asin(static_cast<double>(converted.direction.z)) * DEGREES, LightAt(light, 0));
  }
}

void PrintSpots(int first, const std::vector<int>& seconds) {
  LM_light_UI light = WhiteLight(LM_LIGHT_SPOT);
  for (const int second : seconds) {
    light.handle1 = {static_cast<int16_t>(-first), 0};
    light.handle2 = {0, static_cast<int16_t>(second)};
    LM_light converted;
    light.ConvertToRealLight(&converted, PREVIEW_PIXELS, 0);
    std::printf("%d %.3f %.3f %.4f %.4f\n", second,
                static_cast<double>(converted.position.x) * PREVIEW_PIXELS,
                static_cast<double>(converted.position.z) * PREVIEW_PIXELS,
                static_cast<double>(converted.direction.x),
                static_cast<double>(converted.direction.z));
  }
}

void PrintHeights(int amplitude, const std::vector<int>& values) {
  // Every row of the channel is the same, and its ends are repeated, as a host does.
  const size_t count = values.size();
  std::vector<uint8_t> row(count + 2);
  for (size_t i = 0; i < row.size(); ++i)
    row[i] = static_cast<uint8_t>(values[std::clamp<size_t>(i, 1, count) - 1]);
  for (size_t i = 0; i < count; ++i)
    std::printf("%zu %.4f\n", i, LM_WeighHeight(&row[i], &row[i], &row[i], 2 * amplitude) / 4096.0);
}

bool PrintReach(const char* name) {
  constexpr LM_rect AREA = {0, 0, 4000, 6000};
  constexpr int ROWS_APART = 20;
  LM_style style;
  LM_render_job job;
  if (!LM_BundledStyle(name, style) || LM_PrepareStyle(style, AREA, AREA.right, AREA.bottom,
                                                       LM_PLANES, job) != LM_render_result::Done)
    return false;
  const LM_kernel_lights& lights = LM_SortLights(job.params, false).kernel;
  const LM_sample_grid grid(AREA, &job.params);
  LM_kernel_lights row = lights;
  for (int y = 0; y < AREA.bottom; y += ROWS_APART) {
    for (int k = 0; k < lights.omnis + lights.spots; ++k)
      LM_MoveToRow(lights.light[k], grid.Y(y), row.light[k]);
    for (int x = 0; x < AREA.right; x += LM_RENDER_BLOCK) {
      const int samples = std::min<int>(LM_RENDER_BLOCK, AREA.right - x);
      const LM_row_reach reach = LM_FindReach(row, &job.columns[static_cast<size_t>(x)], samples);
      for (int piece = 0; piece < LM_ReachPieces(samples); ++piece)
        std::printf("%d ", std::popcount(reach.lights[piece]));
    }
    std::printf("\n");
  }
  return true;
}

} // namespace

int main(int count, char** words) {
  const char* what = count > 1 ? words[1] : "";
  std::vector<int> numbers;
  for (int i = 2; i < count; ++i)
    numbers.push_back(std::atoi(words[i]));
  if (std::strcmp(what, "spread") == 0 && !numbers.empty())
    PrintSpreads(numbers);
  else if (std::strcmp(what, "omni") == 0 && !numbers.empty())
    PrintOmnis(numbers);
  else if (std::strcmp(what, "directional") == 0)
    PrintDirectional();
  else if (std::strcmp(what, "spot") == 0 && numbers.size() > 1)
    PrintSpots(numbers[0], {numbers.begin() + 1, numbers.end()});
  else if (std::strcmp(what, "height") == 0 && numbers.size() > 1)
    PrintHeights(numbers[0], {numbers.begin() + 1, numbers.end()});
  else if (std::strcmp(what, "reach") != 0 || count != 3 || !PrintReach(words[2])) {
    std::fprintf(stderr,
                 "usage: limn_tables spread|omni|directional|spot|height NUMBER...|reach STYLE\n");
    return 2;
  }
  return 0;
}
