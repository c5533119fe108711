#include "LM_kernel_lights.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>

#include "LM_light_sums.h"

namespace {

// Squared lengths between which the kernels' reciprocal root is proven.
constexpr float LEAST_SQUARE = 0x1p-96F;
constexpr float MOST_SQUARE = 0x1p96F;
// The largest magnitude in a falloff table, infinite or NaN when it holds such a number. Without
// their signs floats are in the order of their bits, which compilers put on vectors: a tile of a
// real run asks this for each of its spots.
float GreatestMagnitude(const float (&table)[LM_SPREAD_ENTRIES]) {
  int32_t greatest = 0;
  for (const float& entry : table) {
    int32_t bits;
    std::memcpy(&bits, &entry, sizeof bits);
    greatest = std::max(greatest, bits & INT32_MAX);
  }
  float magnitude;
  std::memcpy(&magnitude, &greatest, sizeof magnitude);
  return magnitude;
}

bool IsNumber(const LM_vector3f& vector) {
  return !std::isnan(vector.x) && !std::isnan(vector.y) && !std::isnan(vector.z);
}

// Not where all its products are 0: black, or with NaN in what decides where it shines.
bool GivesLight(const LM_light& light) {
  if (light.color.component[0] == 0 && light.color.component[1] == 0 &&
      light.color.component[2] == 0)
    return false;
  switch (light.type) {
  case LM_LIGHT_OMNI:
    return IsNumber(light.position);
  case LM_LIGHT_DIRECTIONAL:
    return IsNumber(light.direction);
  default:
    return IsNumber(light.position) && IsNumber(light.direction) && !std::isnan(light.cosCutoff);
  }
}

float StrongestLight(const LM_light& light) {
  float strongest = 1.0F;
  if (light.type == LM_LIGHT_SPOT) {
    if (!std::isfinite(light.spreadScale) || !std::isfinite(light.spreadMinCos))
      return NAN;
    const float falloff = GreatestMagnitude(light.spreadTable);
    if (!std::isfinite(falloff))
      return INFINITY;
    strongest = std::max(strongest, falloff);
  }
  float color = 0.0F;
  for (int plane = 0; plane < LM_PLANES; ++plane)
    color = std::max(color, std::fabs(static_cast<float>(light.color.component[plane])));
  return color * strongest;
}

// The cutoff, less what roundings may do to a cosine.
double ReachCosine(const LM_light& light) {
  const auto [x, y, z] = light.direction;
  const double length =
      std::hypot(static_cast<double>(x), static_cast<double>(y), static_cast<double>(z));
  return static_cast<double>(light.cosCutoff) - 0x1p-19 * std::max(length, 1.0);
}

// Both squared lengths between which the way to a light stays, apart from its height.
struct SquaredWay {
  float least, most;
};

// From `from` to samples between `first` and `last`, which subtraction and squaring keep in order.
SquaredWay WayAlong(float from, float first, float last) {
  const float begin = from - first;
  const float end = from - last;
  const float most = std::max(begin * begin, end * end);
  if (!(begin > 0.0F && end > 0.0F) && !(begin < 0.0F && end < 0.0F))
    return {0.0F, most};
  return {std::min(begin * begin, end * end), most};
}

LM_kernel_light KernelLight(const LM_light& light) {
  LM_kernel_light out = {};
  for (int plane = 0; plane < LM_PLANES; ++plane)
    out.color[plane] = static_cast<float>(light.color.component[plane]);
  out.gray = out.color[0] == out.color[1] && out.color[0] == out.color[2];
  const bool directional = light.type == LM_LIGHT_DIRECTIONAL;
  const LM_vector3f& place = directional ? light.direction : light.position;
  out.x = place.x;
  out.y = place.y;
  out.z = place.z;
  out.zWide = static_cast<double>(place.z);
  out.ySquare = place.y * place.y;
  out.zSquare = place.z * place.z;
  if (directional)
    out.inverse = LM_InverseLength(place.x, place.y, place.z);
  out.axisX = light.direction.x;
  out.axisY = light.direction.y;
  out.axisZ = light.direction.z * place.z;
  out.cosCutoff = light.cosCutoff;
  out.spreadMinCos = light.spreadMinCos;
  out.spreadScale = light.spreadScale;
  out.spreadTable = light.spreadTable;
  out.reachCosine = ReachCosine(light);
  out.strongest = StrongestLight(light);
  return out;
}

bool IsWhite(const LM_light& light) {
  const int32_t* const color = light.color.component;
  return color[0] == color[1] && color[0] == color[2];
}

// Those of a type of which `takes` says so.
template <class Takes>
void AddLights(LM_sorted_lights& sorted, const foo& params, LM_light_type type, bool flat,
               int& count, Takes takes) {
  for (int j = 0; j < LM_LightCount(&params); ++j) {
    const LM_light& light = params.lights[j];
    if (light.type != type || !takes(light) || !GivesLight(light) ||
        (flat && !LM_IsAboveSurface(light)))
      continue;
    const int k = sorted.kernel.Count();
    sorted.kernel.light[k] = KernelLight(light);
    sorted.source[k] = j;
    sorted.listed |= 1U << j;
    ++count;
  }
}

void Order(LM_sorted_lights& sorted) {
  uint8_t* const ordered = sorted.kernel.ordered;
  const int count = sorted.kernel.Count();
  std::iota(ordered, ordered + count, uint8_t{0});
  std::sort(ordered, ordered + count,
            [&](uint8_t a, uint8_t b) { return sorted.source[a] < sorted.source[b]; });
}

} // namespace

LM_sorted_lights LM_SortLights(const foo& params, bool flat) {
  LM_sorted_lights sorted = {};
  std::copy_n(params.ambient.component, LM_PLANES, sorted.kernel.diffuse);
  const auto any = [](const LM_light&) { return true; };
  int& omnis = sorted.kernel.omnis;
  AddLights(sorted, params, LM_LIGHT_OMNI, flat, omnis, IsWhite);
  AddLights(sorted, params, LM_LIGHT_OMNI, flat, omnis,
            [](const LM_light& light) { return !IsWhite(light); });
  AddLights(sorted, params, LM_LIGHT_SPOT, flat, sorted.kernel.spots, any);
  AddLights(sorted, params, LM_LIGHT_DIRECTIONAL, flat, sorted.kernel.directionals, any);
  Order(sorted);
  return sorted;
}

bool LM_FitsVectors(LM_kernel_light& light, bool directional, const LM_extent& extent) {
  SquaredWay x = {light.x * light.x, light.x * light.x};
  SquaredWay y = {light.ySquare, light.ySquare};
  if (!directional) {
    x = WayAlong(light.x, extent.left, extent.right);
    y = WayAlong(light.y, extent.top, extent.bottom);
  }
  const float least = x.least + y.least + light.zSquare;
  const float most = x.most + y.most + light.zSquare;
  const double longest = std::max(1.0, std::sqrt(static_cast<double>(most)));
  light.strong =
      light.strong || !(static_cast<double>(light.strongest) * longest < LM_MOST_PRODUCT);
  return least >= LEAST_SQUARE && most <= MOST_SQUARE && !std::isnan(light.strongest);
}

bool LM_FitVectors(LM_kernel_lights& lights, const LM_extent& extent) {
  const int local = lights.omnis + lights.spots;
  bool fit = true;
  for (int k = 0; k < lights.Count(); ++k)
    fit = LM_FitsVectors(lights.light[k], k >= local, extent) && fit;
  return fit;
}
