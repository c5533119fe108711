// A bed of pebbles, each of its own stone, some of them with veins.

#include "Noise.h"
#include "Scenes.h"
#include "Slab.h"

namespace scenes {

namespace {

// Two layers: large pebbles, and between and below them small ones.
CellDistances Large(Vec2 p) {
  const Vec3 bent = {p.x + 0.25F * Noise({p.x, p.y, 1}), p.y + 0.25F * Noise({p.x, p.y, 5}), 0};
  return Cells({0.62F * bent.x, 0.8F * bent.y, 0.5F});
}
CellDistances Small(Vec2 p) {
  return Cells({2.3F * p.x + 40, 2.0F * p.y, 0.5F});
}

float Dome(const CellDistances& cell, float height) {
  const float inside = Clamp01(1.6F * (cell.second - cell.first));
  return height * std::sqrt(inside * (2 - inside));
}

float LargeHeight(Vec2 p) {
  const CellDistances cell = Large(p);
  return Dome(cell, 0.45F + 0.25F * UnitFloat(Hash(cell.id)));
}

float BedHeight(Vec2 p) {
  return std::max(LargeHeight(p), 0.12F + Dome(Small(p), 0.16F)) +
         0.015F * Fractal({2 * p.x, 2 * p.y, 3}, 4, 0.6F);
}

Surface Stone(Vec3 p) {
  const Vec2 at = {p.x, p.y};
  const bool isLarge = LargeHeight(at) > 0.12F + Dome(Small(at), 0.16F);
  const uint32_t id = isLarge ? Large(at).id : Small(at).id;
  const float tone = UnitFloat(Hash(id + 9)), warmth = UnitFloat(Hash(id + 10));
  const Vec3 seed = {p.x, p.y, static_cast<float>(id % 64U)};
  Vec3 colour = Mix(Vec3{0.16F, 0.17F, 0.19F}, {0.62F, 0.58F, 0.52F}, tone * tone);
  colour = Mix(colour, colour * Vec3{1.15F, 0.85F, 0.65F}, warmth);
  colour = colour * (1 + 0.35F * Fractal(seed * 2.5F, 5, 0.65F));
  const float vein = Bell(Noise(seed * 0.9F), 0.05F) * SmoothStep(0.5F, 0.8F, warmth);
  return {Mix(colour, {0.70F, 0.68F, 0.64F}, 0.7F * vein), 0, 1};
}

// Overcast, a little brighter above.
Vec3 Sky(Vec3 direction) {
  return Vec3{0.95F, 0.98F, 1.02F} * (1 + 0.5F * direction.y);
}

} // namespace

Scene Pebbles() {
  return SceneOf({9, 0.01F, -0.5F, 1, BedHeight, Stone,
                  [](Vec3 p) { return 0.004F * Fractal(p * 14, 4, 0.6F); }, Sky});
}

} // namespace scenes
