#include "Temperature.h"

#include <algorithm>
#include <cmath>

namespace editor {
namespace {

struct Chromaticity {
  double x, y;
};

// The Planckian locus by the cubic splines of B. Kim et al., "Design of advanced color temperature
// control system for HDTV applications", Journal of the Korean Physical Society 41 (2002), 865-871:
// good from 1 667 to 25 000 K.
Chromaticity OnLocus(double kelvin) {
  const double a = 1e9 / (kelvin * kelvin * kelvin);
  const double b = 1e6 / (kelvin * kelvin);
  const double c = 1e3 / kelvin;
  const double x = kelvin <= 4000 ? -0.2661239 * a - 0.2343589 * b + 0.8776956 * c + 0.179910
                                  : -3.0258469 * a + 2.1070379 * b + 0.2226347 * c + 0.240390;
  const auto cubic = [x](double d, double e, double f, double g) {
    return ((d * x + e) * x + f) * x + g;
  };
  const double y = kelvin <= 2222   ? cubic(-1.1063814, -1.34811020, 2.18555832, -0.20219683)
                   : kelvin <= 4000 ? cubic(-0.9549476, -1.37418593, 2.09137015, -0.16748867)
                                    : cubic(3.0817580, -5.87338670, 3.75112997, -0.37001483);
  return {x, y};
}

double Encoded(double linear) {
  return linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1 / 2.4) - 0.055;
}

} // namespace

LM_color48 ColorOfTemperature(int kelvin) {
  const Chromaticity point = OnLocus(std::clamp(kelvin, LOWEST_KELVIN, HIGHEST_KELVIN));
  const double x = point.x / point.y;
  const double z = (1 - point.x - point.y) / point.y;
  // From XYZ to linear sRGB, with Y = 1.
  const double linear[LM_PLANES] = {3.2404542 * x - 1.5371385 - 0.4985314 * z,
                                    -0.9692660 * x + 1.8760108 + 0.0415560 * z,
                                    0.0556434 * x - 0.2040259 + 1.0572252 * z};
  const double most = *std::max_element(linear, linear + LM_PLANES);
  LM_color48 color = {};
  for (int plane = 0; plane < LM_PLANES; ++plane)
    color.component[plane] = static_cast<uint16_t>(
        std::lround(65535 * std::clamp(Encoded(std::max(linear[plane], 0.0) / most), 0.0, 1.0)));
  return color;
}

int NearestTemperature(const LM_color48& color) {
  int nearest = LOWEST_KELVIN;
  double least = INFINITY;
  for (int kelvin = LOWEST_KELVIN; kelvin <= HIGHEST_KELVIN; kelvin += KELVIN_STEP) {
    const LM_color48 candidate = ColorOfTemperature(kelvin);
    double distance = 0;
    for (int plane = 0; plane < LM_PLANES; ++plane)
      distance += std::pow(candidate.component[plane] - color.component[plane], 2);
    if (distance < least) {
      least = distance;
      nearest = kelvin;
    }
  }
  return nearest;
}

} // namespace editor
