// A plaque of fired clay with folds as of a hung cloth, and a printed pattern that knows nothing of
// them.

#include "Noise.h"
#include "Scenes.h"
#include "Slab.h"

namespace scenes {

namespace {

// A crest along a bent line that comes from the top, dying away towards the bottom.
float Fold(Vec2 p, float top, float slant, float width, float depth) {
  const float way = p.x - top - slant * (4 - p.y) - 0.35F * Noise({0.6F * p.y, top, 2});
  const float side = way > 0 ? 1.6F * way : way;
  return depth * SmoothStep(-4.2F, 1.5F, p.y + top) * Bell(side, width * (1.3F - 0.1F * (p.y + 4)));
}

float FoldedHeight(Vec2 p) {
  float height = 0.25F * Noise({0.35F * p.x, 0.35F * p.y, 1}) + 0.02F * Fractal({p.x, p.y, 4}, 4);
  height += Fold(p, -3.4F, 0.05F, 0.30F, 0.34F) + Fold(p, -2.1F, 0.12F, 0.22F, 0.26F);
  height += Fold(p, -0.7F, -0.08F, 0.36F, 0.40F) + Fold(p, 0.9F, 0.10F, 0.20F, 0.30F);
  height += Fold(p, 2.0F, -0.14F, 0.28F, 0.33F) + Fold(p, 3.3F, -0.02F, 0.24F, 0.28F);
  return height;
}

// Rings and diagonal bands in slip, blotched by the kiln.
Surface Printed(Vec3 p) {
  const Vec3 at = {p.x, p.y, 7};
  const Vec2 cell = {p.x - 2 * std::floor(0.5F * p.x) - 1, p.y - 2 * std::floor(0.5F * p.y) - 1};
  const float ring = SmoothStep(0.03F, 0.0F, std::abs(Length(cell) - 0.62F) - 0.12F);
  const float across = p.x + 0.8F * p.y;
  const float band =
      SmoothStep(0.04F, 0.0F, std::abs(across - 3 * std::floor(across / 3) - 1.5F) - 0.35F);
  Vec3 colour = Vec3{0.52F, 0.40F, 0.28F} * (1 + 0.15F * Fractal(at * 1.1F, 5, 0.6F));
  colour = Mix(colour, {0.10F, 0.20F, 0.34F}, 0.8F * band);
  colour = Mix(colour, {0.68F, 0.64F, 0.52F}, 0.85F * ring);
  return {colour * (1 + 0.06F * Noise(at * 20)), 0, 1};
}

// Overcast, brightest on the upper right.
Vec3 Sky(Vec3 direction) {
  const float glow = SmoothStep(0.3F, 1.0F, Dot(direction, Normalized({0.6F, 0.5F, 0.62F})));
  return Vec3{0.55F, 0.56F, 0.58F} + Vec3{1.7F, 1.66F, 1.6F} * glow;
}

} // namespace

Scene Plaque() {
  return SceneOf({8, 0.01F, -1, 1.3F, FoldedHeight, Printed,
                  [](Vec3 p) { return 0.006F * Fractal(p * 10, 4, 0.6F); }, Sky});
}

} // namespace scenes
