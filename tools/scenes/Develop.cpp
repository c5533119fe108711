#include "Darkroom.h"

#include "Noise.h"

namespace scenes {

namespace {

// Linear up to the mid-tones, then a long shoulder; white is reached at about 6 times middle grey.
float Shoulder(float x) {
  const float white = 2.4F;
  return x * (1 + x / (white * white)) / (1 + 0.62F * x);
}

float Encoded(float x) {
  x = Clamp01(x);
  return x <= 0.0031308F ? 12.92F * x : 1.055F * std::pow(x, 1 / 2.4F) - 0.055F;
}

// A bell-shaped grain that is a little wider than a pixel.
float Grain(int x, int y) {
  float sum = 0;
  for (int i = 0; i < 9; ++i) {
    const float weight = i == 4 ? 1.0F : i % 2 == 1 ? 0.4F : 0.2F;
    const uint32_t h = Hash(x + i % 3, y + i / 3, 77);
    sum += weight * (UnitFloat(h) + UnitFloat(Hash(h)) - 1);
  }
  return sum * 1.7F;
}

} // namespace

Bytes Develop(const Film& film, const Development& development) {
  const int width = film.light.width, height = film.light.height;
  Bytes picture = {width, height, 3, {}};
  picture.values.reserve(film.light.values.size() * 3);
  const Vec2 centre = {0.5F * static_cast<float>(width), 0.5F * static_cast<float>(height)};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Vec2 away = Vec2{static_cast<float>(x), static_cast<float>(y)} - centre;
      const float corner = Dot(away, away) / Dot(centre, centre);
      Vec3 c = film.light.At(x, y) * (development.exposure * (1 - development.vignette * corner));
      const float grey = Luminance(c);
      c = Mix({grey, grey, grey}, c, development.saturation);
      const float grain = development.grain * Grain(x, y);
      for (const float channel : {c.x, c.y, c.z}) {
        float tone = Encoded(Shoulder(std::max(0.0F, channel)));
        tone = Mix(tone, SmoothStep(0, 1, tone), development.contrast - 1);
        const float level = 255 * tone + grain * 4 * tone * (1 - tone) + 0.5F;
        picture.values.push_back(static_cast<uint8_t>(std::clamp(level, 0.0F, 255.0F)));
      }
    }
  }
  return picture;
}

} // namespace scenes
