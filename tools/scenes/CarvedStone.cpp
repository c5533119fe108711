#include "Noise.h"
#include "Objects.h"
#include "Solids.h"

namespace scenes {

namespace {

constexpr Vec2 HALF = {1.28F, 1.36F};
constexpr float THICKNESS = 0.20F; // half of it

float Dome(float distance, float radius) {
  return std::sqrt(std::max(0.0F, 1 - Square(distance / radius)));
}

// Where a place is within one of `count` equal sectors: along its middle line and beside it.
Vec2 Sector(float radius, float angle, float count, float shift) {
  const float turns = angle / (2 * PI) * count + shift;
  const float inside = (turns - std::floor(turns + 0.5F)) / count * 2 * PI;
  return {radius * std::cos(inside), radius * std::sin(inside)};
}

// A pointed leaf from `from` to `to` along x with a groove along its middle; 0 outside, about 1 at
// its crest.
float Leaf(Vec2 p, float from, float to, float halfWidth) {
  const float t = (p.x - from) / (to - from);
  if (t <= 0 || t >= 1) {
    return 0;
  }
  const float width = halfWidth * std::sin(PI * std::pow(t, 0.75F));
  const float side = std::abs(p.y) / std::max(width, 1e-4F);
  if (side >= 1) {
    return 0;
  }
  return std::sqrt(1 - side * side) * (0.55F + 0.45F * t) - 0.35F * Bell(p.y, 0.018F);
}

float Medallion(Vec2 p) {
  const float radius = Length(p), angle = std::atan2(p.y, p.x);
  if (radius > 1.1F) {
    return 0;
  }
  float height = 0.07F * (Bell(radius - 1.0F, 0.04F) + 0.8F * Bell(radius - 0.78F, 0.025F));
  const Vec2 bead = Sector(radius, angle, 40, 0.5F) - Vec2{0.89F, 0};
  height += 0.065F * Dome(Length(bead), 0.062F);
  const float back = 0.075F * Leaf(Sector(radius, angle, 12, 0.5F), 0.2F, 0.73F, 0.135F);
  const float front = 0.115F * Leaf(Sector(radius, angle, 12, 0), 0.12F, 0.68F, 0.135F);
  const float inner = 0.145F * Leaf(Sector(radius, angle, 8, 0.25F), 0.06F, 0.38F, 0.10F);
  const float boss = 0.16F * Dome(radius, 0.15F) - 0.03F * Bell(radius, 0.05F);
  return height + std::max({back, front, inner, boss, 0.0F});
}

float Corner(Vec2 p) {
  const Vec2 q = Vec2{std::abs(p.x), std::abs(p.y)} - Vec2{1.02F, 1.08F};
  const Vec2 diagonal = {-0.7071F * (q.x + q.y), 0.7071F * (q.x - q.y)};
  float height = Leaf(diagonal, -0.02F, 0.36F, 0.085F);
  for (const float side : {-1.0F, 1.0F}) {
    const Vec2 turned = {0.62F * diagonal.x + side * 0.78F * diagonal.y,
                         0.62F * diagonal.y - side * 0.78F * diagonal.x};
    height = std::max(height, 0.85F * Leaf(turned, -0.02F, 0.31F, 0.07F));
  }
  return 0.08F * height;
}

// Of the carving above the sunken ground.
float CarvedHeight(Vec2 p) {
  const float inward = -RoundRectangle(p, HALF, 0.05F);
  const float rim = 0.11F * SmoothStep(0.17F, 0.13F, inward);
  const float line = 0.05F * Bell(inward - 0.225F, 0.022F);
  return std::max(rim, 0.0F) + line + Medallion(p - Vec2{0, 0.02F}) + Corner(p);
}

float Crack(Vec3 p) {
  const float way = p.x - 0.52F - 0.35F * p.y + 0.16F * Fractal({p.y * 1.7F, 3, 0}, 4);
  return Bell(way, 0.010F) * SmoothStep(-0.2F, 0.5F, p.y);
}

// Of the face above the sunken ground, as time has left it.
float WornHeight(Vec2 p) {
  const Vec3 place = {p.x, p.y, 0};
  const float wear = 0.82F + 0.25F * Noise(place * 1.3F + Vec3{2, 2, 2});
  const float pits = SmoothStep(0.35F, 0.75F, Fractal(place * 5.5F + Vec3{0, 0, 7}, 3));
  return CarvedHeight(p) * wear - 0.022F * pits - 0.035F * Crack(place);
}

float Stone(Vec3 p) {
  static const Sampled face(HALF * -1.02F, HALF * 1.02F, 0.003F, WornHeight);
  const float block = RoundBox(p, {HALF.x, HALF.y, THICKNESS}, 0.04F);
  if (block > 0.1F) {
    return block;
  }
  const float ground = p.z - THICKNESS + 0.11F;
  const float front = Common(block, ground - face.At({p.x, p.y}), 0.02F);
  const float inward = -RoundRectangle({p.x, p.y}, HALF, 0.05F);
  if (inward > 0.25F) {
    return front;
  }
  const float chips = SmoothStep(0.15F, 0.55F, Fractal(p * 3.1F, 3));
  return front + 0.05F * chips * SmoothStep(0.25F, 0.02F, inward);
}

Surface StoneMaterial(Vec3 p) {
  const float cloud = Fractal(p * 1.1F, 5, 0.6F);
  Vec3 colour = Mix({0.40F, 0.36F, 0.29F}, {0.56F, 0.51F, 0.42F}, SmoothStep(-0.6F, 0.6F, cloud));
  const float depth = SmoothStep(0.12F, -0.01F, p.z - THICKNESS + 0.11F);
  colour = colour * (1 - 0.30F * depth * (1 + 0.5F * Noise(p * 4)));
  const float lichen = Fractal(p * 2.3F + Vec3{11, 3, 0}, 5, 0.6F);
  colour = Mix(colour, {0.38F, 0.37F, 0.20F}, 0.6F * SmoothStep(0.35F, 0.6F, lichen - 0.2F * p.y));
  colour = Mix(colour, {0.62F, 0.60F, 0.54F}, 0.5F * SmoothStep(0.45F, 0.6F, -lichen));
  const float grains = Noise(p * 42);
  colour = colour * (1 + 0.12F * grains) * (1 - 0.2F * Crack(p));
  return {colour, 0, 1};
}

} // namespace

Shape CarvedStone(Vec3 place, Rotation turn) {
  Shape stone;
  stone.low = {-1.31F, -1.39F, -0.23F};
  stone.high = {1.31F, 1.39F, 0.3F};
  stone.place = place;
  stone.turn = turn;
  stone.distance = Stone;
  stone.material = StoneMaterial;
  stone.bumps = [](Vec3 p) { return 0.010F * Fractal(p * 9, 5, 0.62F); };
  stone.caution = 0.55F;
  return stone;
}

} // namespace scenes
