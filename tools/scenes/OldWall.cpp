// A brick wall, straight on, from which the plaster is coming off. Lengths are in hands (10 cm).

#include "Noise.h"
#include "Scenes.h"
#include "Slab.h"
#include "Solids.h"

namespace scenes {

namespace {

constexpr float SIZE = 9.6F;
constexpr Vec2 BRICK = {2.30F, 0.77F}; // with its mortar
constexpr float MORTAR = 0.11F;

struct BrickPlace {
  Vec2 middle; // the place seen from the middle of its brick
  uint32_t id;
};

BrickPlace BrickAt(Vec2 p) {
  const float row = std::floor(p.y / BRICK.y);
  const uint32_t rowId = Hash(static_cast<int32_t>(row), 5);
  const float shift = (static_cast<int32_t>(row) % 2 == 0 ? 0.0F : 0.5F) + 0.06F * UnitFloat(rowId);
  const float column = std::floor(p.x / BRICK.x + shift);
  return {{(p.x / BRICK.x + shift - column - 0.5F) * BRICK.x, p.y - (row + 0.5F) * BRICK.y},
          Hash(static_cast<int32_t>(column), static_cast<int32_t>(row), 11)};
}

// How far inside a brick a place is; below 0 in the mortar.
float InsideBrick(Vec2 p) {
  const BrickPlace brick = BrickAt(p);
  const Vec3 q = {p.x * 2.1F, p.y * 2.1F, 0};
  const float wobble = 0.045F * Fractal(q, 3) + 0.02F * Noise(q * 4);
  const Vec2 half = Vec2{BRICK.x - MORTAR, BRICK.y - MORTAR} * 0.5F;
  return -RoundRectangle(brick.middle, half, 0.06F) + wobble;
}

float BrickHeight(Vec2 p) {
  const BrickPlace brick = BrickAt(p);
  const float inside = InsideBrick(p), chance = UnitFloat(brick.id);
  const Vec3 q = {p.x, p.y, 3 * chance};
  const float tilt = (UnitFloat(Hash(brick.id)) - 0.5F) * 0.06F * brick.middle.x +
                     (UnitFloat(Hash(brick.id + 1)) - 0.5F) * 0.10F * brick.middle.y;
  const float spalled =
      0.10F * SmoothStep(0.25F, 0.5F, Fractal(q * 1.7F, 4)) * SmoothStep(0.4F, 0.8F, chance);
  const float face = 0.10F * (chance - 0.5F) + tilt - spalled + 0.020F * Fractal(q * 4.5F, 5, 0.6F);
  const float pits = 0.05F * SmoothStep(0.22F, 0.08F, Cells(q * 3.3F).first);
  const float mortar = -0.15F + 0.035F * Fractal(q * 5, 5, 0.65F);
  return Mix(mortar, face - pits, SmoothStep(-0.02F, 0.07F, inside));
}

// Above 0 where the plaster still holds; its size is about the distance to the edge.
float PlasterHold(Vec2 p) {
  const Vec3 q = {p.x, p.y, 0};
  const float lie = 0.55F * (p.y - 0.35F) - 0.42F * (p.x + 0.3F);
  return lie + 1.55F * Fractal(q * 0.33F + Vec3{5.2F, 1.1F, 0}, 3) +
         0.22F * Fractal(q * 1.7F, 5, 0.62F);
}

float CrackDepth(Vec2 p) {
  const Vec3 q = {p.x, p.y, 2};
  const Vec3 bent = q + Vec3{0.5F * Fractal(q * 0.8F, 5, 0.6F),
                             0.5F * Fractal(q * 0.8F + Vec3{9, 9, 9}, 5, 0.6F), 0};
  const CellDistances cell = Cells({bent.x * 0.36F, bent.y * 0.36F, 0.5F});
  const float near = SmoothStep(4.2F, 0.3F, PlasterHold(p));
  const float width = 0.012F * near * SmoothStep(-0.35F, 0.3F, Noise(q * 0.6F));
  return width > 0.0005F ? Bell(cell.second - cell.first, width) : 0;
}

float PlasterHeight(Vec2 p) {
  const Vec3 q = {p.x, p.y, 1};
  const float trowel = 0.05F * Fractal(q * Vec3{0.5F, 0.9F, 1}, 3) +
                       0.016F * Fractal(q * Vec3{2.2F, 4.5F, 1}, 4, 0.6F);
  const float lifted = 0.07F * SmoothStep(0.9F, 0.0F, PlasterHold(p));
  const float blisters = 0.03F * SmoothStep(0.35F, 0.6F, Fractal(q * 2.6F + Vec3{3, 0, 0}, 4));
  return 0.20F + trowel + lifted - blisters - 0.09F * CrackDepth(p);
}

float WallHeight(Vec2 p) {
  const float hold = PlasterHold(p) + 0.012F * Noise({p.x * 9, p.y * 9, 0});
  const float undercoat =
      BrickHeight(p) +
      0.16F * SmoothStep(-0.35F, -0.20F, hold + 0.08F * Noise({p.x * 2.3F, p.y * 2.3F, 7}));
  return Mix(undercoat, std::max(PlasterHeight(p), 0.1F), SmoothStep(-0.02F, 0.02F, hold));
}

Vec3 BrickColour(Vec2 p) {
  static constexpr Vec3 TINTS[5] = {{0.33F, 0.125F, 0.075F},
                                    {0.40F, 0.175F, 0.10F},
                                    {0.27F, 0.10F, 0.07F},
                                    {0.43F, 0.235F, 0.135F},
                                    {0.30F, 0.155F, 0.115F}};
  const BrickPlace brick = BrickAt(p);
  const Vec3 q = {p.x, p.y, static_cast<float>(brick.id % 64U)};
  Vec3 colour = TINTS[brick.id % 5U] * (1 + 0.35F * Fractal(q * 1.8F, 5, 0.6F));
  colour = Mix(colour, {0.13F, 0.09F, 0.08F}, 0.7F * SmoothStep(0.3F, 0.55F, Fractal(q * 0.9F, 3)));
  const float lime = SmoothStep(0.10F, 0.45F, Fractal({p.x * 1.3F, p.y * 1.3F, 4}, 5, 0.62F));
  colour = Mix(colour, {0.46F, 0.42F, 0.37F}, 0.55F * lime);
  const Vec3 mortar = Vec3{0.40F, 0.365F, 0.31F} * (1 + 0.25F * Fractal(q * 7, 4));
  return Mix(mortar, colour, SmoothStep(-0.02F, 0.03F, InsideBrick(p)));
}

Vec3 PlasterColour(Vec2 p) {
  const Vec3 q = {p.x, p.y, 6};
  Vec3 colour = Mix({0.46F, 0.36F, 0.215F}, {0.60F, 0.51F, 0.36F},
                    SmoothStep(-0.6F, 0.6F, Fractal(q * 0.5F, 6, 0.6F)));
  const float streaks = SmoothStep(0.0F, 0.7F, Fractal(q * Vec3{1.3F, 0.16F, 1}, 4, 0.6F));
  colour = Mix(colour, {0.30F, 0.26F, 0.20F}, 0.5F * streaks);
  const float bleached = SmoothStep(0.15F, 0.5F, Fractal(q * 0.8F + Vec3{0, 7, 0}, 5, 0.6F));
  colour = Mix(colour, {0.66F, 0.61F, 0.52F}, 0.6F * bleached);
  const float broken = SmoothStep(0.09F, 0.02F, PlasterHold(p));
  colour = Mix(colour, {0.58F, 0.54F, 0.47F}, 0.8F * broken);
  return colour * ((1 + 0.07F * Fractal(q * 9, 3)) * (1 - 0.55F * CrackDepth(p)));
}

Surface Material(Vec3 p) {
  const Vec2 at = {p.x, p.y};
  const float hold = PlasterHold(at);
  const Vec3 sand = Vec3{0.47F, 0.42F, 0.34F} * (1 + 0.2F * Fractal(p * 6, 4));
  const float undercoat =
      SmoothStep(-0.35F, -0.20F, hold + 0.08F * Noise({p.x * 2.3F, p.y * 2.3F, 7}));
  const Vec3 below = Mix(BrickColour(at), sand, 0.75F * undercoat);
  return {Mix(below, PlasterColour(at), SmoothStep(-0.02F, 0.02F, hold)), 0, 1};
}

Vec3 Sky(Vec3 direction) {
  const Vec3 window = Normalized({-0.55F, 0.60F, 0.58F});
  const float glow = SmoothStep(0.35F, 0.95F, Dot(direction, window));
  return Mix({0.62F, 0.61F, 0.60F}, {0.92F, 0.95F, 1.0F}, SmoothStep(-0.7F, 0.8F, direction.y)) +
         Vec3{1.5F, 1.46F, 1.4F} * glow;
}

} // namespace

Scene OldWall() {
  return SceneOf({SIZE, 0.0096F, -1, 0.6F, WallHeight, Material,
                  [](Vec3 p) { return 0.007F * Fractal(p * 11, 4, 0.65F); }, Sky});
}

} // namespace scenes
