#include "Noise.h"
#include "Objects.h"
#include "Solids.h"

namespace scenes {

namespace {

constexpr float LEFT = -1.75F, RIGHT = 2.15F;
constexpr float BACK = 2.6F; // how far it reaches onto the table

// A place on the cloth, laid flat: x, and the way from the back hem (0) over the table's edge.
Vec2 Laid(Vec3 p) {
  const float top = std::clamp(BACK + p.z, -1.0F, BACK);
  return {p.x, top + std::max(0.0F, -p.y - 0.03F)};
}

// Distance to a bent line from a to b and how far along it is, 0..1.
Vec2 AlongFold(Vec2 p, Vec2 a, Vec2 b, float bend) {
  const Vec2 way = b - a;
  const float length = Length(way);
  const float t = Dot(p - a, way) / (length * length);
  const float side = (way.x * (p.y - a.y) - way.y * (p.x - a.x)) / length;
  return {side - bend * t * (1 - t) * 4, t};
}

// One fold: a round crest with one steep flank, dying away at its ends.
float Fold(Vec2 p, Vec2 a, Vec2 b, float bend, float height, float width) {
  const Vec2 at = AlongFold(p, a, b, bend);
  const float ends = SmoothStep(-0.05F, 0.3F, at.y) * SmoothStep(1.05F, 0.75F, at.y);
  const float side = at.x > 0 ? at.x * 1.7F : at.x;
  return height * ends * Bell(side, width * (0.8F + 0.4F * at.y));
}

float Folds(Vec2 p) {
  const float hang = SmoothStep(BACK - 0.5F, BACK + 0.9F, p.y);
  const float sway = 0.25F * Noise({p.x * 0.7F, p.y * 0.5F, 1});
  const float phase = (p.x + sway) * 5.2F + 0.8F * Noise({p.x * 0.9F, 7, 0});
  const float pleats = Square(0.5F + 0.5F * std::sin(phase));
  float height = 0.33F * hang * pleats * (0.7F + 0.5F * Noise({p.x * 0.8F, 3, 3}));
  height += Fold(p, {-1.5F, 0.5F}, {-0.35F, 3.3F}, 0.16F, 0.26F, 0.13F);
  height += Fold(p, {-1.3F, 1.6F}, {-1.0F, 3.2F}, -0.08F, 0.17F, 0.10F);
  height += Fold(p, {-0.4F, 0.1F}, {-1.65F, 1.3F}, 0.10F, 0.15F, 0.09F);
  height += Fold(p, {0.7F, 0.2F}, {2.1F, 0.9F}, -0.12F, 0.15F, 0.10F);
  height += Fold(p, {1.95F, 1.0F}, {1.75F, 3.2F}, 0.10F, 0.20F, 0.11F);
  height += Fold(p, {0.9F, 2.1F}, {0.65F, 3.3F}, 0.05F, 0.12F, 0.10F);
  const float creases = Ridged({p.x * 1.3F + 0.5F * p.y, p.y * 1.1F, 5}, 3);
  return height + 0.035F * creases + 0.02F * Noise({p.x * 2, p.y * 2, 9});
}

float Outline(Vec2 at) {
  const float hem = BACK + 1.35F + 0.05F * std::sin(at.x * 2);
  const float wander = 0.04F * Noise({at.y * 1.2F, 1, 1}) + 0.06F * (at.y - 1.5F);
  return std::max(
      {LEFT - wander - at.x, at.x - RIGHT - wander, 0.1F + 0.12F * at.x - at.y, at.y - hem});
}

float Cloth(Vec3 p) {
  static const Sampled folds({-2.2F, -0.2F}, {2.6F, 4.3F}, 0.004F, Folds);
  static const Sampled outline({-2.8F, -0.8F}, {3.2F, 4.8F}, 0.01F, Outline);
  const float table = RoundBox(p - Vec3{0, -2, -5}, {40, 2, 5}, 0.10F);
  const Vec2 at = Laid(p);
  const float outside = outline.At(at);
  const float rough = table - 0.42F;
  if (rough > 0.1F || outside > 0.3F) {
    return std::max(rough, outside * 0.7F);
  }
  return Common(table - 0.03F - folds.At(at), outside, 0.04F);
}

Surface ClothMaterial(Vec3 p) {
  const Vec2 at = Laid(p);
  const float threads = Noise({at.x * 60, at.y * 4, 0}) + Noise({at.x * 4, at.y * 60, 5});
  Vec3 colour = Vec3{0.60F, 0.57F, 0.50F} * (1 + 0.06F * threads);
  const float fromHem = std::min(at.x - LEFT, RIGHT - at.x) * 1.0F;
  const float stripes = SmoothStep(0.02F, 0.0F, std::abs(fromHem - 0.34F) - 0.085F) +
                        SmoothStep(0.02F, 0.0F, std::abs(fromHem - 0.52F) - 0.022F) +
                        SmoothStep(0.02F, 0.0F, std::abs(fromHem - 0.16F) - 0.022F);
  colour = Mix(colour, Vec3{0.125F, 0.19F, 0.30F} * (1 + 0.12F * threads), 0.88F * stripes);
  return {colour, 0, 1};
}

float Weave(Vec3 p) {
  const Vec2 at = Laid(p);
  const float warp = std::sin(at.x * 300), weft = std::sin(at.y * 300);
  const float slubs = Noise({at.x * 40, at.y * 3, 0}) + Noise({at.x * 3, at.y * 40, 4});
  return 0.0009F * warp * weft + 0.003F * slubs;
}

} // namespace

Shape Linen(Vec3 place) {
  Shape linen;
  linen.low = {-2.1F, -1.6F, -2.7F};
  linen.high = {2.5F, 0.5F, 0.5F};
  linen.place = place;
  linen.distance = Cloth;
  linen.material = ClothMaterial;
  linen.bumps = Weave;
  linen.caution = 0.55F;
  return linen;
}

} // namespace scenes
