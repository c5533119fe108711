#include "LM_kernel_lights.h"

#include <algorithm>
#include <cmath>

#include "LM_light_sums.h"

namespace {

// Squared lengths between which the kernels' reciprocal root is proven.
constexpr float LEAST_SQUARE = 0x1p-96F;
constexpr float MOST_SQUARE = 0x1p96F;
// Float products below this convert to integers in every instruction set alike; a little less than
// 2^31, for the roundings on the way.
constexpr double MOST_PRODUCT = 2140000000.0;

// The largest product of colour and falloff; infinite when something is no number.
float StrongestLight(const LM_light& light) {
  float strongest = 1.0F;
  if (light.type == LM_LIGHT_SPOT) {
    if (!std::isfinite(light.spreadScale) || !std::isfinite(light.spreadMinCos))
      return INFINITY;
    for (const float falloff : light.spreadTable) {
      if (!std::isfinite(falloff))
        return INFINITY;
      strongest = std::max(strongest, std::fabs(falloff));
    }
  }
  float color = 0.0F;
  for (int plane = 0; plane < LM_PLANES; ++plane)
    color = std::max(color, std::fabs(static_cast<float>(light.color.component[plane])));
  return color * strongest;
}

// xSquares: the least and the greatest x * x in the row.
bool FitsVectors(const LM_kernel_light& light, float leastXSquare, float mostXSquare) {
  const float least = leastXSquare + light.ySquare + light.zSquare;
  const float most = mostXSquare + light.ySquare + light.zSquare;
  if (!(least >= LEAST_SQUARE && most <= MOST_SQUARE))
    return false;
  const double longest = std::max(1.0, std::sqrt(static_cast<double>(most)));
  return static_cast<double>(light.strongest) * longest < MOST_PRODUCT;
}

} // namespace

LM_kernel_light LM_KernelLight(const LM_light& light) {
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
  out.strongest = StrongestLight(light);
  return out;
}

bool LM_DirectionFitsVectors(const LM_kernel_light& light) {
  const float xSquare = light.x * light.x;
  return FitsVectors(light, xSquare, xSquare);
}

bool LM_MoveToRow(LM_kernel_light& light, float place, float first, float last) {
  light.y -= place;
  light.ySquare = light.y * light.y;
  light.axisY *= light.y;
  const float left = light.x - first;
  const float right = light.x - last;
  return FitsVectors(light, 0.0F, std::max(left * left, right * right));
}
