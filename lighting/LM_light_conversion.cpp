// From the light as edited to the light as shaded. Lengths are shading units, z grows towards the
// viewer.
//
// A directional light comes from (x, y, z) with its handle as (x, y) and z = 100 - |handle|, at
// least 1: in preview pixels, since a direction has no scale. Without a handle it stands overhead.
//
// An omni of radius r hangs z = r tan 30 above its centre. At the distance r light falls in with
// the cosine z / sqrt(z z + r r) = sin 30: the circle that is drawn is where half is left.
//
// A spot is a cone of 45 degrees around its axis, and the ellipse that is drawn, with half axes
// a >= b, is where it cuts the picture. So it stands at the distance a from the ellipse's centre,
// in the direction of the first axis and raised by the tilt t: at (a cos t, a sin t). Its axis
// points down by t / 2 + 45 degrees, one side of the cone by t / 2 and the other by t / 2 + 90, and
// these meet the picture at
//   a cos t - a sin t / tan(t / 2) = -a   and   a cos t + a sin t tan(t / 2) = a.
// The end of the second axis, sqrt(a a + b b) from the lamp, is 45 degrees off the axis too when
//   sqrt(a a + b b) sqrt(1/2) = a cos(t / 2 - 45) = a sin(t / 2 + 45),
// which gives t = 2 (asin(sqrt((a a + b b) / 2) / a) - 45): 90 for a circle, 0 for a line.
//
// Within the cone its light falls as cos(u^P 90), u going from 0 on the axis to 1 at the edge: one
// and zero there whatever P is. P = (1/4 + 3/4 s)^(1 + 2 s) with s = spread / 128 is 1 for 128, the
// even fall of a lamp without a lens; below, all but the middle is dim, above, all but the edge is
// bright. The table holds it by the angle's cosine, which is what shading has at hand.
//
// No light is weaker from further away. A lamp's size in the picture then says where its light goes
// and its intensity how much that is, and the one can be changed without correcting the other.
#include <cmath>

#include "LM_constants.h"
#include "LM_light_figure.h"

namespace {

constexpr float QUARTER_PI = 0.7853981852531433F;
constexpr float HALF_PI = 1.5707963705062866F;
constexpr float PI = 3.1415927410125732F;
// Slightly below the square root of 1/2, so that samples just outside the table's first entry still
// count.
constexpr float SPOT_CUTOFF = 0.707F;

// A handle in shading units, y turned to grow upwards.
LM_vector2f AxisOf(const LM_vector2f& handle, float scale) {
  return {handle.x / scale, -handle.y / scale};
}

// The tilt of a spot's axis, from the footprint's shape: pi/2, straight down, for a circle, 0 for a
// line.
float SpotTilt(const LM_vector2f& first, const LM_vector2f& second, float firstLength) {
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

float Length(const LM_vector2f& vector) {
  return static_cast<float>(
      std::sqrt(static_cast<double>(vector.x * vector.x + vector.y * vector.y)));
}

void ConvertDirectionalLight(const LM_light_figure& figure, LM_light* out) {
  const auto [x, y] = figure.handle1;
  float z = static_cast<float>(100.0 - static_cast<double>(Length(figure.handle1)));
  if (z < 1.0F)
    z = 1.0F;
  const float length = static_cast<float>(std::sqrt(static_cast<double>(x * x + y * y + z * z)));
  out->direction = {x / length, y / length, z / length};
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

void LM_ConvertLight(const LM_light_figure& figure, float pixelsPerUnit, LM_bool forPreview,
                     LM_light* out) {
  out->type = figure.type;
  for (int plane = 0; plane < LM_PLANES; ++plane)
    out->color.component[plane] =
        (figure.color.component[plane] * figure.intensity) / LM_LIGHT_INTENSITY_SCALE;
  switch (figure.type) {
  case LM_LIGHT_DIRECTIONAL:
    ConvertDirectionalLight(figure, out);
    break;
  case LM_LIGHT_OMNI:
    // It hovers at the height at which a 30 degree cone reaches its radius.
    out->position = {figure.center.x / pixelsPerUnit, figure.center.y / pixelsPerUnit,
                     (figure.radius / pixelsPerUnit) * LM_TAN_30};
    break;
  case LM_LIGHT_SPOT:
    LM_ConvertSpotLight(figure, pixelsPerUnit, forPreview, out);
    break;
  default:
    break;
  }
}

void LM_ConvertSpotLight(const LM_light_figure& figure, float pixelsPerUnit, LM_bool forPreview,
                         LM_light* out) {
  LM_BuildSpreadTable(figure.spread, forPreview, out);
  const LM_vector2f first = AxisOf(figure.handle1, pixelsPerUnit);
  const LM_vector2f second = AxisOf(figure.handle2, pixelsPerUnit);
  const float compass =
      static_cast<float>(LM_ATan2(static_cast<double>(first.y), static_cast<double>(first.x)));
  const float length = Length(first);
  const float tilt = SpotTilt(first, second, length);
  const float reach =
      static_cast<float>(static_cast<double>(length) * std::cos(static_cast<double>(tilt)));
  const float height =
      static_cast<float>(static_cast<double>(length) * std::sin(static_cast<double>(tilt)));
  const float compassCos = RoundedCos(compass);
  const float compassSin = RoundedSin(compass);
  out->position = {reach * compassCos + figure.center.x / pixelsPerUnit,
                   -(reach * compassSin) + figure.center.y / pixelsPerUnit, height};
  const float fall = tilt / 2.0F + QUARTER_PI;
  const float fallCos = RoundedCos(fall);
  out->direction = {-(fallCos * compassCos), fallCos * compassSin, -RoundedSin(fall)};
  out->cosCutoff = SPOT_CUTOFF;
}

void LM_BuildSpreadTable(int16_t spread, LM_bool forPreview, LM_light* out) {
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
