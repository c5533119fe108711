#include "LM_deep_pixels.h"

#include <algorithm>
#include <cfloat>
#include <cstring>

#include "LM_arithmetic.h"
#include "LM_heights.h"
#include "LM_light_shader.h"

namespace {

constexpr float WHITE = 255.0F;
constexpr float WORD_UNIT = 257.0F; // 65535 / 255

template <class Component> Component Read(const uint8_t* bytes) {
  Component component;
  std::memcpy(&component, bytes, sizeof component);
  return component;
}

float FromWord(uint16_t word) {
  return static_cast<float>(word) / WORD_UNIT;
}
float FromFloat(float value) {
  const float scaled = value * WHITE;
  return scaled == scaled ? std::min(std::max(scaled, -FLT_MAX), FLT_MAX) : 0.0F;
}

uint16_t ToWord(float value) {
  return LM_RoundWord(value * WORD_UNIT);
}
float ToFloat(float value) {
  return value == value ? value / WHITE : 0.0F;
}

template <class Component, class From>
void Load(const uint8_t* pixels, ptrdiff_t step, int n, const LM_deep_planes& planes, From from) {
  for (int i = 0; i < n; ++i, pixels += step)
    for (int plane = 0; plane < LM_PLANES; ++plane)
      planes.plane[plane][i] =
          from(Read<Component>(pixels + static_cast<size_t>(plane) * sizeof(Component)));
}

template <class To>
void Store(const LM_deep_planes& planes, int n, uint8_t* pixels, ptrdiff_t step, To to) {
  for (int i = 0; i < n; ++i, pixels += step)
    for (int plane = 0; plane < LM_PLANES; ++plane) {
      const auto component = to(planes.plane[plane][i]);
      std::memcpy(pixels + static_cast<size_t>(plane) * sizeof component, &component,
                  sizeof component);
    }
}

float Combine(const foo& params, int plane, float diffuse, float specular, float source) {
  const float light = static_cast<float>(params.ambient.component[plane]) + diffuse;
  const float shine = (specular * 0x1p-8F) * static_cast<float>(params.gloss);
  const auto material = static_cast<float>(params.material);
  float sum = 0.0F;
  if (params.material < 1)
    sum = light * source + shine * WHITE;
  else if (params.material > 255)
    sum = (light + shine) * source;
  else
    sum =
        light * source +
        shine * ((source * material + static_cast<float>((256 - params.material) * 255)) * 0x1p-8F);
  return (sum * static_cast<float>(params.exposure)) * 0x1p-23F;
}

// The normals of a pixel's four quads, clockwise from the top left.
void MakeNormals(const int32_t* const* heights, int i, LM_vector3f (&normals)[4]) {
  constexpr int QUADS[4][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}}; // row and column of the corner a
  for (int quad = 0; quad < 4; ++quad) {
    const int32_t* const above = heights[QUADS[quad][0]] + i + QUADS[quad][1];
    const int32_t* const below = heights[QUADS[quad][0] + 1] + i + QUADS[quad][1];
    int32_t gradX, gradY, weight;
    int32_t *endX = &gradX, *endY = &gradY, *endWeight = &weight;
    uint32_t count = 0;
    LM_GeneratePreviewBumpSample(above[0], above[1], below[1], below[0], &gradX, &gradY, &weight,
                                 &endX, &endY, &endWeight, count);
    normals[quad] = LM_FacetNormal(gradX, gradY);
  }
}

void LightFlatPixel(const foo& params, const LM_vector2f& place, int i,
                    const LM_deep_planes& planes) {
  LM_deep_color diffuse = {};
  LM_deep_color specular = {};
  for (int j = 0; j < LM_LightCount(&params); ++j)
    LM_ShadeDeepLight(params.lights[j], place, diffuse, specular);
  for (int plane = 0; plane < LM_PLANES; ++plane)
    planes.plane[plane][i] = Combine(params, plane, diffuse.component[plane],
                                     specular.component[plane], planes.plane[plane][i]);
}

void LightReliefPixel(const foo& params, const LM_vector2f& place, int i,
                      const int32_t* const* heights, const LM_deep_planes& planes) {
  LM_vector3f normals[4];
  MakeNormals(heights, i, normals);
  LM_deep_color diffuse[4] = {};
  LM_deep_color specular[4] = {};
  for (int j = 0; j < LM_LightCount(&params); ++j)
    LM_ShadeDeepFacets(params.lights[j], place, normals, diffuse, specular);
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    float out[4];
    for (int facet = 0; facet < 4; ++facet)
      out[facet] = Combine(params, plane, diffuse[facet].component[plane],
                           specular[facet].component[plane], planes.plane[plane][i]);
    planes.plane[plane][i] = ((out[0] + out[1]) + (out[2] + out[3])) * 0.25F;
  }
}

} // namespace

void LM_LoadDeep(const uint8_t* pixels, ptrdiff_t step, LM_pixel_kind kind, int n,
                 const LM_deep_planes& planes) {
  if (kind == LM_pixel_kind::Words)
    Load<uint16_t>(pixels, step, n, planes, FromWord);
  else
    Load<float>(pixels, step, n, planes, FromFloat);
}

void LM_StoreDeep(const LM_deep_planes& planes, int n, LM_pixel_kind kind, uint8_t* pixels,
                  ptrdiff_t step) {
  if (kind == LM_pixel_kind::Words)
    Store(planes, n, pixels, step, ToWord);
  else
    Store(planes, n, pixels, step, ToFloat);
}

void LM_LightDeepPixels(const foo& params, const float* columns, float y, int n,
                        const int32_t* const* heights, const LM_deep_planes& planes) {
  for (int i = 0; i < n; ++i) {
    if (heights == nullptr)
      LightFlatPixel(params, {columns[i], y}, i, planes);
    else
      LightReliefPixel(params, {columns[i], y}, i, heights, planes);
  }
}
