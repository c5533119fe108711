#include "Reference.h"

#include <algorithm>
#include <cmath>

namespace {

// A 32-bit sum that wraps.
int32_t Wrap(int64_t value) {
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

void Add(std::array<int32_t, 3>& sums, const std::array<int32_t, 3>& color, float factor) {
  for (int k = 0; k < 3; ++k) {
    const float product = static_cast<float>(color[k]) * factor;
    sums[k] = Wrap(int64_t{sums[k]} + ReferenceTruncate(product));
  }
}

float InverseLength(const ReferenceVector& v) {
  const float squares = v.x * v.x + v.y * v.y + v.z * v.z;
  return static_cast<float>(1.0 / std::sqrt(static_cast<double>(squares)));
}

ReferenceVector ToLight(const ReferenceRealLight& light, float x, float y) {
  if (light.type == REFERENCE_DIRECTIONAL)
    return light.direction;
  return {light.position.x - x, light.position.y - y, light.position.z};
}

// Cosine between a spot's axis and the ray from the light to the sample.
float ConeCosine(const ReferenceRealLight& light, const ReferenceVector& l, float inverse) {
  return -((light.direction.x * l.x + light.direction.y * l.y) + light.direction.z * l.z) * inverse;
}

float Falloff(const ReferenceRealLight& light, float cosine) {
  const int32_t index = ReferenceTruncate((cosine - light.spreadMinCos) * light.spreadScale);
  const auto last = static_cast<int32_t>(light.spreadTable.size()) - 1;
  return light.spreadTable[static_cast<size_t>(std::clamp(index, 0, last))];
}

void AddFlat(ReferenceSums& sums, const ReferenceRealLight& light, float x, float y) {
  const ReferenceVector l = ToLight(light, x, y);
  const float inverse = InverseLength(l);
  float s = 1.0F;
  if (light.type == REFERENCE_SPOT) {
    const float cosine = ConeCosine(light, l, inverse);
    if (!(cosine > light.cosCutoff))
      return;
    s = Falloff(light, cosine);
  }
  if (!(l.z > 0.0F))
    return;
  float t = l.z;
  float e = (l.z * l.z) * inverse;
  if (light.type == REFERENCE_SPOT) {
    t = l.z * s;
    e = e * s;
  }
  Add(sums.diffuse, light.color, t * inverse);
  Add(sums.specular, light.color, e);
}

void AddRelief(ReferenceSums& sums, const ReferenceRealLight& light, float x, float y,
               const ReferenceVector& n) {
  const ReferenceVector l = ToLight(light, x, y);
  const float inverse = InverseLength(l);
  float f = 1.0F;
  if (light.type == REFERENCE_SPOT) {
    const float cosine = ConeCosine(light, l, inverse);
    if (!(cosine > light.cosCutoff))
      return;
    f = Falloff(light, cosine);
  }
  const float d = n.x * l.x + n.y * l.y + n.z * l.z;
  if (!(d > 0.0F))
    return;
  Add(sums.diffuse, light.color, (d * f) * inverse);

  // How far the reflected view direction points to the light.
  const float t = 2.0F * n.z;
  const float across = t * n.x * l.x + t * n.y * l.y;
  const double up = static_cast<double>(t * n.z) - 1.0;
  const float r = static_cast<float>(across + up * l.z);
  if (!(r > 0.0F))
    return;
  Add(sums.specular, light.color, r * r * inverse * f);
}

// No product here exceeds 64 bits, and wrapping once at the end equals wrapping at every step.
uint8_t Combine(const ReferenceParameters& p, int k, const ReferenceSums& sums, int src) {
  const int64_t lit = int64_t{p.ambient[k]} + sums.diffuse[k];
  const int64_t shine = sums.specular[k] >> 8;
  const int64_t g = p.gloss;
  const int64_t m = p.material;
  int64_t wide = 0;
  if (m < 1)
    wide = lit * src + shine * (g * 255);
  else if (m > 255)
    wide = (lit + shine * g) * src;
  else
    wide = lit * src + (shine * g) * ((src * m + (256 - m) * 255) >> 8);
  const int32_t sum = Wrap(wide);
  const int32_t value = Wrap(int64_t{sum >> 8} * p.exposure) >> 15;
  return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

// Place of a pixel's centre in shading units, the middle of the area being 0.
float Place(int offset, int size, float unitsPerPixel) {
  return static_cast<float>(((offset - size * 0.5) + 0.5) * static_cast<double>(unitsPerPixel));
}

std::array<uint8_t, 3> Pixel(const ReferenceParameters& parameters, float x, float y,
                             const std::vector<ReferenceFacet>& facets, const uint8_t* source) {
  std::array<int, 3> total{};
  for (const ReferenceFacet& facet : facets) {
    const auto color = ReferenceSample(parameters, x, y, &facet.normal, source);
    for (int k = 0; k < 3; ++k)
      total[k] += facet.weight * color[k];
  }
  std::array<uint8_t, 3> out{};
  for (int k = 0; k < 3; ++k)
    out[k] = static_cast<uint8_t>(total[k] >> 4);
  return out;
}

// Renders width x height pixels. source(row, column) is a pixel's bytes; channel may be empty.
template <typename Source, typename Store>
void RenderAll(const ReferenceParameters& parameters, const ReferenceChannel& channel, int width,
               int height, Source source, Store store) {
  const float unitsPerPixel = parameters.worldScale / static_cast<float>(width);
  for (int row = 0; row < height; ++row) {
    const float y = Place(row, height, unitsPerPixel);
    for (int column = 0; column < width; ++column) {
      const float x = Place(column, width, unitsPerPixel);
      const uint8_t* bytes = source(row, column);
      if (!channel) {
        store(row, column, ReferenceSample(parameters, x, y, nullptr, bytes));
        continue;
      }
      const auto facets = ReferenceFacets(channel, column, row, parameters.heightScale);
      store(row, column, Pixel(parameters, x, y, facets, bytes));
    }
  }
}

// The channel seen from the area's corner in steps of `scale` pixels; edges go on for ever.
ReferenceChannel ChannelOf(const ReferenceImage& image, const ReferencePlane& heights,
                           const ReferenceArea& area, int scale) {
  if (!heights.bytes)
    return {};
  return [=](int x, int y) {
    const int column = std::clamp(area.left + x * scale, 0, image.width - 1);
    const int row = std::clamp(area.top + y * scale, 0, image.height - 1);
    return int{heights.bytes[row * heights.rowStride + column * heights.pixelStride]};
  };
}

} // namespace

void ReferenceAddLight(ReferenceSums& sums, const ReferenceRealLight& light, float x, float y,
                       const ReferenceVector* normal) {
  if (normal)
    AddRelief(sums, light, x, y, *normal);
  else
    AddFlat(sums, light, x, y);
}

std::array<uint8_t, 3> ReferenceSample(const ReferenceParameters& parameters, float x, float y,
                                       const ReferenceVector* normal, const uint8_t* source) {
  ReferenceSums sums;
  for (const ReferenceRealLight& light : parameters.lights)
    ReferenceAddLight(sums, light, x, y, normal);
  std::array<uint8_t, 3> out{};
  for (int k = 0; k < 3; ++k)
    out[k] = Combine(parameters, k, sums, source[k]);
  return out;
}

void ReferenceRender(const ReferenceSettings& settings, const ReferenceGeometry& geometry,
                     const ReferenceImage& image, const ReferencePlane& heights,
                     const ReferenceArea& area, uint8_t* out, int outRowStride) {
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  if (width < 1 || height < 1)
    return;
  const auto source = [&](int row, int column) {
    return image.pixels + (area.top + row) * image.rowStride + (area.left + column) * 3;
  };
  const auto store = [&](int row, int column, std::array<uint8_t, 3> color) {
    std::copy(color.begin(), color.end(),
              out + (area.top + row) * outRowStride + (area.left + column) * 3);
  };
  RenderAll(ReferencePrepare(settings, geometry, REFERENCE_TABLE),
            ChannelOf(image, heights, area, 1), width, height, source, store);
}

std::vector<uint8_t> ReferenceRenderPreview(const ReferenceSettings& settings,
                                            const ReferenceGeometry& geometry,
                                            const ReferenceImage& image,
                                            const ReferencePlane& heights,
                                            const ReferenceArea& area, int scale) {
  if (scale < 1 || area.right <= area.left || area.bottom <= area.top)
    return {};
  const int width = (area.right - area.left + scale - 1) / scale;
  const int height = (area.bottom - area.top + scale - 1) / scale;
  ReferenceParameters parameters = ReferencePrepare(settings, geometry, REFERENCE_PREVIEW_TABLE);
  parameters.heightScale /= 2 * scale;
  std::vector<uint8_t> out(static_cast<size_t>(width) * static_cast<size_t>(height) * 3);
  const auto source = [&](int row, int column) {
    return image.pixels + (area.top + row * scale) * image.rowStride +
           (area.left + column * scale) * 3;
  };
  const auto store = [&](int row, int column, std::array<uint8_t, 3> color) {
    std::copy(color.begin(), color.end(), out.begin() + (row * width + column) * 3);
  };
  RenderAll(parameters, ChannelOf(image, heights, area, scale), width, height, source, store);
  return out;
}
