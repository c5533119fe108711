// From the light as edited to the light as shaded.
#include <cmath>

#include "LM_constants.h"
#include "LM_light_UI.h"

namespace {

constexpr float QUARTER_PI = 0.7853981852531433F;
constexpr float HALF_PI = 1.5707963705062866F;
constexpr float PI = 3.1415927410125732F;
// Slightly below the square root of 1/2, so that samples just outside the table's first entry still
// count.
constexpr float SPOT_CUTOFF = 0.707F;

struct Axis {
  float x, y;
};

// A handle in shading units, y turned to grow upwards.
Axis AxisOf(const LM_vectori2& handle, float scale) {
  return {static_cast<float>(handle.h) / scale, -static_cast<float>(handle.v) / scale};
}

// The tilt of a spot's axis, from the footprint's shape: pi/2, straight down, for a circle, 0 for a
// line.
float SpotTilt(const Axis& first, const Axis& second, float firstLength) {
  const float squares =
      first.x * first.x + first.y * first.y + second.x * second.x + second.y * second.y;
  float sine =
      static_cast<float>((std::sqrt(2.0) / 2.0) * (std::sqrt(static_cast<double>(squares)) /
                                                   static_cast<double>(firstLength)));
  if (sine < 0.0F)
    sine = 0.0F;
  if (sine > 1.0F)
    sine = 1.0F;
  return static_cast<float>(
      2.0 * (std::asin(static_cast<double>(sine)) - static_cast<double>(QUARTER_PI)));
}

float RoundedCos(float angle) {
  return static_cast<float>(std::cos(static_cast<double>(angle)));
}
float RoundedSin(float angle) {
  return static_cast<float>(std::sin(static_cast<double>(angle)));
}

} // namespace

double LM_ATan2(double y, double x) {
  if (x == 0.0)
    return y >= 0.0 ? static_cast<double>(HALF_PI) : -static_cast<double>(HALF_PI);
  if (y == 0.0)
    return x > 0.0 ? 0.0 : static_cast<double>(PI);
  if (x > 0.0)
    return std::atan(y / x);
  if (y >= 0.0)
    return static_cast<double>(PI) - std::atan(y / -x);
  return std::atan(y / x) - static_cast<double>(PI);
}

void LM_light_UI::ConvertToRealLight(LM_light* out, unsigned short scale,
                                     LM_bool forPreview) const {
  out->type = type;
  for (int plane = 0; plane < LM_PLANES; ++plane)
    out->color.component[plane] = (color.component[plane] * intensity) / LM_LIGHT_INTENSITY_SCALE;
  const float pixels = static_cast<float>(scale);
  switch (type) {
  case LM_LIGHT_DIRECTIONAL:
    _ConvertDirectionalLight(out);
    break;
  case LM_LIGHT_OMNI:
    // It hovers at the height at which a 30 degree cone reaches its radius.
    out->position = {static_cast<float>(center.h) / pixels, static_cast<float>(center.v) / pixels,
                     (static_cast<float>(radius) / pixels) * LM_TAN_30};
    break;
  case LM_LIGHT_SPOT:
    _ConvertSpotLight(out, pixels, forPreview);
    break;
  default:
    break;
  }
  out->diffuseCache = diffuseCache;
  out->diffuseCacheHot = diffuseCacheHot;
  out->specularCache = specularCache;
  out->specularCacheHot = specularCacheHot;
}

void LM_light_UI::_ConvertDirectionalLight(LM_light* out) const {
  const float x = static_cast<float>(handle1.h);
  const float y = static_cast<float>(handle1.v);
  float z = static_cast<float>(100.0 - static_cast<double>(handle1.Magnitude()));
  if (z < 1.0F)
    z = 1.0F;
  const float length = static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y + z * z)));
  out->direction = {x / length, y / length, z / length};
}

void LM_light_UI::_ConvertSpotLight(LM_light* out, float scale, LM_bool forPreview) const {
  _BuildSpreadTable(out, forPreview);
  const Axis first = AxisOf(handle1, scale);
  const Axis second = AxisOf(handle2, scale);
  const float compass =
      static_cast<float>(LM_ATan2(static_cast<double>(first.y), static_cast<double>(first.x)));
  const float length =
      static_cast<float>(std::sqrt(static_cast<double>(first.x * first.x + first.y * first.y)));
  const float tilt = SpotTilt(first, second, length);
  const float reach =
      static_cast<float>(static_cast<double>(length) * std::cos(static_cast<double>(tilt)));
  const float height =
      static_cast<float>(static_cast<double>(length) * std::sin(static_cast<double>(tilt)));
  const float compassCos = RoundedCos(compass);
  const float compassSin = RoundedSin(compass);
  out->position = {reach * compassCos + static_cast<float>(center.h) / scale,
                   -(reach * compassSin) + static_cast<float>(center.v) / scale, height};
  const float fall = tilt / 2.0F + QUARTER_PI;
  const float fallCos = RoundedCos(fall);
  out->direction = {-(fallCos * compassCos), fallCos * compassSin, -RoundedSin(fall)};
  out->cosCutoff = SPOT_CUTOFF;
}

void LM_light_UI::_BuildSpreadTable(LM_light* out, LM_bool forPreview) const {
  const float focus = static_cast<float>(spread);
  const float base = ((focus - 128.0F) * 0.75F + 128.0F) / 128.0F;
  const float exponent = focus / 64.0F + 1.0F;
  const double power = static_cast<double>(
      static_cast<float>(std::pow(static_cast<double>(base), static_cast<double>(exponent))));
  const int entries = forPreview == 1 ? LM_PREVIEW_SPREAD_ENTRIES : LM_SPREAD_ENTRIES;
  const double root = std::sqrt(2.0);
  const float step = static_cast<float>((2.0 - root) / (2.0 * (entries - 1)));
  out->spreadScale = static_cast<float>((2.0 * (entries - 1)) / (2.0 - root));
  out->spreadMinCos = static_cast<float>(root / 2.0);
  for (int i = 0; i < entries; ++i) {
    const float cosine =
        static_cast<float>(root / 2.0 + static_cast<double>(step * static_cast<float>(i)));
    const float angle = static_cast<float>(2.0 * std::acos(static_cast<double>(cosine))) / HALF_PI;
    const float shaped = static_cast<float>(std::pow(static_cast<double>(angle), power));
    out->spreadTable[i] = static_cast<float>(std::cos(static_cast<double>(shaped * HALF_PI)));
  }
}
