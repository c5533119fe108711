#include "Noise.h"
#include "Objects.h"
#include "Solids.h"

namespace scenes {

namespace {

constexpr float BOARD = 1.35F; // its width; boards run along x

struct BoardPlace {
  float across; // from the middle of the board
  uint32_t id;
};

BoardPlace BoardAt(float z) {
  const float board = z / BOARD + 0.31F, number = std::floor(board);
  return {(board - number - 0.5F) * BOARD, Hash(static_cast<int32_t>(number), 3)};
}

float Grain(Vec3 p) {
  const auto shift = static_cast<float>(BoardAt(p.z).id % 97U);
  const float bend = Fractal(p * Vec3{0.25F, 0.5F, 0.6F} + Vec3{shift, 0, 0}, 3);
  const float rings = std::sin((p.z * 5 + p.y * 3 + bend * 4.5F + shift) * 3.2F);
  const float fibre = Fractal(p * Vec3{1.3F, 24, 24} + Vec3{shift, bend * 2, 0}, 3, 0.65F);
  return 0.55F * rings + 0.75F * fibre;
}

float TableTop(Vec3 p) {
  const float slab = RoundBox(p - Vec3{0, -0.45F, -5}, {40, 0.45F, 5}, 0.06F);
  if (slab > 0.1F) {
    return slab - 0.03F;
  }
  const float worn = 0.01F * Noise(p * Vec3{0.8F, 1, 1.5F}) + 0.003F * Noise(p * Vec3{2, 9, 9});
  const float beside = 0.5F * BOARD - 0.020F - std::abs(BoardAt(p.z).across);
  return Cut(slab - worn, std::max(beside, -0.08F - p.y), 0.03F);
}

Surface TableMaterial(Vec3 p) {
  const float tint = UnitFloat(BoardAt(p.z).id);
  Vec3 colour = Mix({0.20F, 0.115F, 0.06F}, {0.34F, 0.215F, 0.12F}, SmoothStep(-1, 1, Grain(p)));
  const float grey = SmoothStep(-0.4F, 0.6F, Fractal(p * 0.9F, 4));
  colour = Mix(colour, {0.31F, 0.24F, 0.17F}, 0.45F * grey) * (0.85F + 0.3F * tint);
  const float stain = SmoothStep(0.05F, 0.5F, Noise(p * 1.7F + Vec3{2, 0, 6}));
  return {colour * (1 - 0.22F * stain), 0.035F, 0.55F};
}

Surface WallMaterial(Vec3 p) {
  const float blotch = SmoothStep(-0.7F, 0.7F, Fractal(p * 0.45F, 5, 0.6F));
  const float fine = Fractal(p * 6 + Vec3{9, 0, 0}, 3);
  const Vec3 colour = Mix({0.29F, 0.30F, 0.28F}, {0.42F, 0.39F, 0.33F}, blotch);
  return {colour * (1 + 0.06F * fine), 0, 1};
}

float Plaster(Vec3 p) {
  const float flakes = SmoothStep(0.25F, 0.6F, Fractal(p * 2.3F + Vec3{4, 4, 4}, 4));
  return 0.06F * Fractal(p * 1.1F, 3) + 0.010F * Fractal(p * Vec3{5, 9, 5}, 4, 0.6F) -
         0.02F * flakes;
}

} // namespace

Shape Wall(Vec3 place) {
  Shape wall;
  wall.low = {-30, -30, -1};
  wall.high = {30, 30, 0};
  wall.place = place;
  wall.distance = [](Vec3 p) { return p.z; };
  wall.material = WallMaterial;
  wall.bumps = Plaster;
  return wall;
}

Shape Table(Vec3 place) {
  Shape table;
  table.low = {-30, -1, -9};
  table.high = {30, 0.02F, 0.02F};
  table.place = place;
  table.distance = TableTop;
  table.caution = 0.85F;
  table.material = TableMaterial;
  table.bumps = [](Vec3 p) { return 0.0075F * Grain(p); };
  return table;
}

} // namespace scenes
