#include "Darkroom.h"

namespace scenes {

namespace {

constexpr int PASSES = 4;
constexpr float ALBEDO_FLOOR = 0.02F;

// One pass of a widening filter: neighbours `step` apart count by how alike their surfaces are
// and by how well the noise explains the difference of their light.
void Smooth(const Film& film, const Plane<Vec3>& light, const Plane<float>& variance, int step,
            Plane<Vec3>& outLight, Plane<float>& outVariance) {
  static constexpr float KERNEL[3] = {0.375F, 0.25F, 0.0625F};
  for (int y = 0; y < light.height; ++y) {
    for (int x = 0; x < light.width; ++x) {
      const Vec3 here = light.At(x, y), normal = film.normal.At(x, y),
                 albedo = film.albedo.At(x, y);
      const float depth = film.depth.At(x, y);
      // A pixel on an edge has a bit of several surfaces, so a mean normal shorter than 1; it is
      // like none of its neighbours, and takes them all.
      const float strictness = 1 / (1 + 60 * std::max(0.0F, 0.97F - Dot(normal, normal)));
      Vec3 sum;
      float weights = 0, noise = 0;
      for (int i = 0; i < 25; ++i) {
        const int dx = i % 5 - 2, dy = i / 5 - 2;
        const int nx = std::clamp(x + dx * step, 0, light.width - 1);
        const int ny = std::clamp(y + dy * step, 0, light.height - 1);
        const Vec3 turn = film.normal.At(nx, ny) - normal, tint = film.albedo.At(nx, ny) - albedo;
        const float away = std::abs(film.depth.At(nx, ny) - depth) / (0.004F * depth + 1e-4F);
        const float excess = Luminance(light.At(nx, ny)) - Luminance(here);
        const float allowed = 4 * (variance.At(x, y) + variance.At(nx, ny)) + 1e-7F;
        const float unlike = (Dot(turn, turn) * 60 + Dot(tint, tint) * 40 + away) * strictness +
                             excess * excess / allowed;
        const float weight = KERNEL[std::abs(dx)] * KERNEL[std::abs(dy)] * std::exp(-unlike);
        sum += light.At(nx, ny) * weight;
        noise += variance.At(nx, ny) * weight * weight;
        weights += weight;
      }
      outLight.At(x, y) = sum / weights;
      outVariance.At(x, y) = noise / (weights * weights);
    }
  }
}

// The noise estimate is itself noisy: averaged over its neighbours.
Plane<float> Steadied(const Plane<float>& variance) {
  Plane<float> steady(variance.width, variance.height);
  for (int y = 0; y < variance.height; ++y) {
    for (int x = 0; x < variance.width; ++x) {
      float sum = 0;
      for (int i = 0; i < 25; ++i) {
        sum += variance.Nearest(x + i % 5 - 2, y + i / 5 - 2);
      }
      steady.At(x, y) = sum / 25;
    }
  }
  return steady;
}

} // namespace

void Denoise(Film& film) {
  Plane<Vec3> light = film.light, nextLight(light.width, light.height);
  for (size_t i = 0; i < light.values.size(); ++i) {
    const Vec3 albedo = film.albedo.values[i];
    light.values[i] = {light.values[i].x / (albedo.x + ALBEDO_FLOOR),
                       light.values[i].y / (albedo.y + ALBEDO_FLOOR),
                       light.values[i].z / (albedo.z + ALBEDO_FLOOR)};
  }
  Plane<float> variance = Steadied(film.variance), nextVariance(light.width, light.height);
  for (int pass = 0; pass < PASSES; ++pass) {
    Smooth(film, light, variance, 1 << pass, nextLight, nextVariance);
    std::swap(light, nextLight);
    std::swap(variance, nextVariance);
  }
  for (size_t i = 0; i < light.values.size(); ++i) {
    const Vec3 floor = {ALBEDO_FLOOR, ALBEDO_FLOOR, ALBEDO_FLOOR};
    film.light.values[i] = light.values[i] * (film.albedo.values[i] + floor);
  }
}

} // namespace scenes
