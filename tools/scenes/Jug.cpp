#include "Noise.h"
#include "Objects.h"
#include "Solids.h"

namespace scenes {

namespace {

constexpr float TOP = 3.0F;

float Around(Vec3 p) {
  return Length(Vec2{p.x, p.z});
}
float Angle(Vec3 p) {
  return std::atan2(p.z, p.x);
}

// The outer radius at each height.
const Profile& Outline() {
  static const Profile outline({{0, 0.62F},
                                {0.12F, 0.64F},
                                {0.45F, 0.86F},
                                {1.0F, 1.05F},
                                {1.55F, 0.93F},
                                {2.0F, 0.64F},
                                {2.3F, 0.49F},
                                {2.6F, 0.47F},
                                {2.85F, 0.55F},
                                {2.98F, 0.60F}});
  return outline;
}

float Body(Vec3 p) {
  const float angle = Angle(p);
  const float rise = SmoothStep(2.2F, TOP, p.y);
  const float spout = rise * rise * Bell(angle > 0 ? PI - angle : PI + angle, 0.42F);
  const float turning = std::sin(p.y * 27 + 1.5F * Noise({p.y * 2, angle, 0}));
  const float rings = 0.011F * turning * SmoothStep(0.2F, 0.5F, p.y);
  const float belts =
      0.03F * (Bell(p.y - 1.62F, 0.035F) + Bell(p.y - 1.50F, 0.025F) + Bell(p.y - 2.28F, 0.05F));
  const float rope = 0.014F * Bell(p.y - 1.62F, 0.04F) * std::sin(angle * 54 + p.y * 30);
  const float radius = Outline().At(p.y) + 0.24F * spout + rings + belts + rope;
  const float shell = std::abs(Around(p) - radius + 0.03F) - 0.045F;
  const float walls = Common(shell, std::max(p.y - TOP - 0.10F * spout, -p.y), 0.08F);
  const float floor = std::max(Around(p) - 0.6F, std::abs(p.y - 0.08F) - 0.07F);
  return std::min(walls, floor);
}

// A strap bent along an ellipse, of which the part outside the body stays.
float Handle(Vec3 p) {
  const Vec3 q = p - Vec3{0.83F, 2.04F, 0};
  const float across = Ellipsoid({q.x, q.y, 0}, {0.56F, 0.80F, 1});
  const float thin = 0.012F * SmoothStep(2.7F, 1.4F, p.y);
  const float strap = RoundRectangle({across, p.z}, {0.085F - thin, 0.16F - thin}, 0.08F - thin);
  const float groove = 0.012F * Bell(p.z - 0.05F, 0.03F) + 0.012F * Bell(p.z + 0.05F, 0.03F);
  return std::max(strap + groove, 0.47F - Around(p));
}

// 1 where the jug was dipped into the glaze, with runs at the lower edge.
float Glazed(Vec3 p) {
  const float angle = Angle(p);
  const float edge = 1.17F - 0.10F * Noise({angle * 1.2F, 0, 4}) -
                     0.20F * Bell(angle - 1.75F, 0.13F) - 0.13F * Bell(angle - 0.75F, 0.10F) -
                     0.07F * Bell(angle - 2.3F, 0.08F) + 0.02F * Noise(p * 6);
  return SmoothStep(edge - 0.04F, edge + 0.04F, p.y);
}

Surface Material(Vec3 p) {
  const float glazed = Glazed(p);
  const float speckle = Cells(p * 14).first;
  const float fired = SmoothStep(-0.6F, 0.6F, Fractal(p * 2.2F, 5));
  Vec3 clay = Mix({0.36F, 0.17F, 0.085F}, {0.47F, 0.26F, 0.14F}, fired);
  clay = clay * (1 - 0.35F * SmoothStep(0.22F, 0.08F, speckle));
  const float flow = SmoothStep(-0.6F, 0.7F, Fractal(p * Vec3{1.6F, 0.9F, 1.6F}, 4));
  Vec3 glaze = Mix({0.14F, 0.195F, 0.165F}, {0.31F, 0.345F, 0.26F}, flow);
  // Thin glaze, at its lower edge and at the lip, lets the clay show.
  const float thin = std::max(4 * glazed * (1 - glazed), Bell(p.y - TOP - 0.03F, 0.05F));
  glaze = Mix(glaze, {0.36F, 0.25F, 0.13F}, 0.7F * thin);
  glaze = glaze * (1 - 0.35F * SmoothStep(0.2F, 0.1F, speckle));
  return {Mix(clay, glaze, glazed), Mix(0.01F, 0.045F, glazed), Mix(0.7F, 0.30F, glazed)};
}

float Bumps(Vec3 p) {
  const float glazed = Glazed(p);
  const float pores = SmoothStep(0.25F, 0.05F, Cells(p * 9).first);
  return 0.02F * glazed +
         (1 - 0.75F * glazed) * (0.006F * Fractal(p * Vec3{5, 16, 5}, 4, 0.6F) - 0.012F * pores);
}

} // namespace

Shape Jug(Vec3 place, Rotation turn) {
  Shape jug;
  jug.low = {-1.12F, -0.01F, -1.12F};
  jug.high = {1.62F, 3.2F, 1.12F};
  jug.place = place;
  jug.turn = turn;
  jug.distance = [](Vec3 p) { return Join(Body(p), Handle(p), 0.12F); };
  jug.material = Material;
  jug.bumps = Bumps;
  jug.caution = 0.75F;
  return jug;
}

} // namespace scenes
