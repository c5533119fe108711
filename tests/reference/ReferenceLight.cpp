#include "Reference.h"

#include <cmath>

namespace {

constexpr float TAN_30 = 0.57735026F;
constexpr float PI_FLOAT = 3.1415927410125732F;
constexpr float HALF_PI = 1.5707963705062866F;
constexpr float QUARTER_PI = 0.7853981852531433F;

float Root(float value) {
  return static_cast<float>(std::sqrt(static_cast<double>(value)));
}

float Magnitude(ReferencePoint point) {
  const float h = point.h;
  const float v = point.v;
  return Root(h * h + v * v);
}

ReferenceVector Directional(ReferencePoint handle) {
  const float x = handle.h;
  const float y = handle.v;
  float z = static_cast<float>(100.0 - static_cast<double>(Magnitude(handle)));
  if (z < 1.0F)
    z = 1.0F;
  const float length = Root(x * x + y * y + z * z);
  return {x / length, y / length, z / length};
}

void ConvertSpot(ReferenceRealLight& out, const ReferenceLight& light, float s) {
  const float ax = static_cast<float>(light.handle1.h) / s;
  const float ay = -static_cast<float>(light.handle1.v) / s;
  const float bx = static_cast<float>(light.handle2.h) / s;
  const float by = -static_cast<float>(light.handle2.v) / s;

  const float alpha = static_cast<float>(ReferenceATan2(ay, ax));
  const float length1 = Root(ax * ax + ay * ay);
  const float squares = ax * ax + ay * ay + bx * bx + by * by;
  float q = static_cast<float>((std::sqrt(2.0) / 2.0) *
                               (std::sqrt(static_cast<double>(squares)) / length1));
  if (q < 0.0F)
    q = 0.0F;
  if (q > 1.0F)
    q = 1.0F;

  const float tilt =
      static_cast<float>(2 * (std::asin(static_cast<double>(q)) - static_cast<double>(QUARTER_PI)));
  const double tiltWide = tilt;
  const float reach = static_cast<float>(length1 * std::cos(tiltWide));
  const float height = static_cast<float>(length1 * std::sin(tiltWide));

  const float cosAlpha = static_cast<float>(std::cos(static_cast<double>(alpha)));
  const float sinAlpha = static_cast<float>(std::sin(static_cast<double>(alpha)));
  out.position.x = reach * cosAlpha + static_cast<float>(light.center.h) / s;
  out.position.y = -(reach * sinAlpha) + static_cast<float>(light.center.v) / s;
  out.position.z = height;

  const float beta = tilt / 2.0F + QUARTER_PI;
  const float cosBeta = static_cast<float>(std::cos(static_cast<double>(beta)));
  const float sinBeta = static_cast<float>(std::sin(static_cast<double>(beta)));
  out.direction = {-cosBeta * cosAlpha, cosBeta * sinAlpha, -sinBeta};
  out.cosCutoff = 0.707F;
}

// Half away from zero; `up` says which way that is, so that it need not be asked of a product
// that may be zero.
int16_t RoundHalf(float product, bool up) {
  const double wide = product;
  return static_cast<int16_t>(ReferenceTruncate(up ? wide + 0.5 : wide - 0.5));
}

} // namespace

double ReferenceATan2(double y, double x) {
  const double pi = PI_FLOAT;
  const double halfPi = HALF_PI;
  if (x == 0)
    return y >= 0 ? halfPi : -halfPi;
  if (y == 0)
    return x > 0 ? 0 : pi;
  if (x > 0)
    return std::atan(y / x);
  if (y >= 0)
    return pi - std::atan(y / -x);
  return std::atan(y / x) - pi;
}

int32_t ReferenceTruncate(double value) {
  if (std::isnan(value))
    return 0;
  if (value >= 2147483647.0)
    return INT32_MAX;
  if (value <= -2147483648.0)
    return INT32_MIN;
  return static_cast<int32_t>(value);
}

ReferenceLight ReferenceValidate(ReferenceLight light) {
  if (light.type != REFERENCE_SPOT)
    return light;
  float k = Magnitude(light.handle2) / Magnitude(light.handle1);
  if (k >= 1.0F)
    k = 1.0F;
  const ReferencePoint first = light.handle1;
  light.handle2.h = RoundHalf(-k * static_cast<float>(first.v), first.v < 0);
  light.handle2.v = RoundHalf(k * static_cast<float>(first.h), first.h >= 0);
  return light;
}

void ReferenceSpread(ReferenceRealLight& light, int16_t spread, int entries) {
  const float f = spread;
  const float g = ((f - 128.0F) * 0.75F + 128.0F) / 128.0F;
  const float e = f / 64.0F + 1.0F;
  const float power = static_cast<float>(std::pow(static_cast<double>(g), static_cast<double>(e)));

  const double root2 = std::sqrt(2.0);
  const double steps = 2.0 * (entries - 1);
  const float step = static_cast<float>((2.0 - root2) / steps);
  light.spreadScale = static_cast<float>(steps / (2.0 - root2));
  light.spreadMinCos = static_cast<float>(root2 / 2.0);

  light.spreadTable.clear();
  for (int i = 0; i < entries; ++i) {
    const float along = step * static_cast<float>(i);
    const float c = static_cast<float>(root2 / 2.0 + static_cast<double>(along));
    const float angle = static_cast<float>(2.0 * std::acos(static_cast<double>(c)));
    const float u = angle / HALF_PI;
    const float bent =
        static_cast<float>(std::pow(static_cast<double>(u), static_cast<double>(power)));
    const float bentAngle = bent * HALF_PI;
    light.spreadTable.push_back(static_cast<float>(std::cos(static_cast<double>(bentAngle))));
  }
}

ReferenceRealLight ReferenceConvert(const ReferenceLight& light, uint16_t pixelsPerUnit,
                                    int entries) {
  ReferenceRealLight out;
  out.type = light.type;
  for (int k = 0; k < 3; ++k)
    out.color[k] = int32_t{light.color[k]} * int32_t{light.intensity} / 32;

  const float s = pixelsPerUnit;
  if (light.type == REFERENCE_DIRECTIONAL)
    out.direction = Directional(light.handle1);
  if (light.type == REFERENCE_OMNI) {
    out.position.x = static_cast<float>(light.center.h) / s;
    out.position.y = static_cast<float>(light.center.v) / s;
    out.position.z = (static_cast<float>(light.radius) / s) * TAN_30;
  }
  if (light.type == REFERENCE_SPOT) {
    ReferenceSpread(out, light.spread, entries);
    ConvertSpot(out, light, s);
  }
  return out;
}

ReferenceParameters ReferencePrepare(const ReferenceSettings& settings,
                                     const ReferenceGeometry& geometry, int entries) {
  ReferenceParameters out;
  out.gloss = settings.gloss;
  out.material = settings.material;
  out.exposure = settings.exposure;
  const auto pixelsPerUnit = static_cast<uint16_t>(geometry.frameCenterX - geometry.frameOriginX);
  out.worldScale = static_cast<float>(geometry.previewWidth) / static_cast<float>(pixelsPerUnit);
  out.heightScale = 2 * settings.bumpAmplitude;
  if (!settings.whiteIsHigh)
    out.heightScale = -out.heightScale;
  for (int k = 0; k < 3; ++k)
    out.ambient[k] = int32_t{settings.ambientColor[k]} * int32_t{settings.ambience} / 64;
  for (const ReferenceLight& light : settings.lights)
    if (light.on)
      out.lights.push_back(ReferenceConvert(light, pixelsPerUnit, entries));
  return out;
}
