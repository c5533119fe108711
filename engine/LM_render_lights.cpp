// The block's lights as the kernels read them.
#include <algorithm>
#include <cmath>

#include "LM_light_sums.h"
#include "LM_render_rows.h"
#include "LM_shader.h"

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
  out.strongest = StrongestLight(light);
  return out;
}

void AddLights(LM_kernel_lights& lights, const foo& params, int32_t type, bool flat, int& count) {
  for (int i = 0; i < LM_LightCount(&params); ++i) {
    const LM_light& light = params.lights[i];
    // A light at or below a flat surface adds nothing to it.
    if (light.type != type || (flat && !(light.position.z > 0.0F)))
      continue;
    lights.light[lights.Count()] = KernelLight(light);
    ++count;
  }
}

void StartWithAmbient(LM_kernel_lights& lights, const foo& params) {
  lights.omnis = lights.spots = lights.directionals = 0;
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    lights.diffuse[plane] = params.ambient.component[plane];
    lights.specular[plane] = 0;
  }
}

// On a flat surface a directional light is the same for all samples.
void AddEvenLight(LM_kernel_lights& lights, const LM_light& light) {
  const LM_vector2f anywhere = {};
  LM_color96 diffuse = {};
  LM_color96 specular = {};
  LM_ShadeLight(light, 1, &anywhere, &diffuse, &specular);
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    lights.diffuse[plane] = LM_WrapAdd(lights.diffuse[plane], diffuse.component[plane]);
    lights.specular[plane] = LM_WrapAdd(lights.specular[plane], specular.component[plane]);
  }
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

void LM_PrepareLights(LM_render_job& job) {
  const foo& params = job.params;
  StartWithAmbient(job.flatLights, params);
  AddLights(job.flatLights, params, LM_LIGHT_OMNI, true, job.flatLights.omnis);
  AddLights(job.flatLights, params, LM_LIGHT_SPOT, true, job.flatLights.spots);
  for (int i = 0; i < LM_LightCount(&params); ++i) {
    if (params.lights[i].type == LM_LIGHT_DIRECTIONAL)
      AddEvenLight(job.flatLights, params.lights[i]);
  }
  StartWithAmbient(job.reliefLights, params);
  AddLights(job.reliefLights, params, LM_LIGHT_OMNI, false, job.reliefLights.omnis);
  AddLights(job.reliefLights, params, LM_LIGHT_SPOT, false, job.reliefLights.spots);
  AddLights(job.reliefLights, params, LM_LIGHT_DIRECTIONAL, false, job.reliefLights.directionals);
}

bool LM_RowLights(const LM_render_job& job, const LM_kernel_lights& lights, int32_t y,
                  LM_kernel_lights& row) {
  const float place = LM_sample_grid(job.area, job.area, &job.params).Y(y - job.area.top);
  const int local = lights.omnis + lights.spots;
  row = lights;
  for (int i = 0; i < lights.Count(); ++i) {
    LM_kernel_light& light = row.light[i];
    if (i >= local) {
      const float xSquare = light.x * light.x;
      if (!FitsVectors(light, xSquare, xSquare))
        return false;
      continue;
    }
    light.y -= place;
    light.ySquare = light.y * light.y;
    light.axisY *= light.y;
    const float left = light.x - job.columns[0];
    const float right = light.x - job.columns[static_cast<size_t>(job.AreaWidth() - 1)];
    if (!FitsVectors(light, 0.0F, std::max(left * left, right * right)))
      return false;
  }
  return true;
}
