// A marble head with parted, waved hair, before a plain wall.

#include "Noise.h"
#include "Scenes.h"
#include "Solids.h"

namespace scenes {

namespace {

constexpr float DETAIL = 0.0022F;

// Both halves of the face from one; rounded in the middle, so that no crease runs down it.
float Mirrored(float x) {
  return std::sqrt(x * x + 0.0006F);
}

// The head is 2.3 high, its middle between the eyes' height and the ears, the face towards z.
float Features(Vec3 p, float face) {
  // Brow, sockets, lids and eyeballs.
  face = Join(face, Rod(p, {0.12F, 0.19F, 0.77F}, {0.46F, 0.20F, 0.60F}, 0.06F, 0.05F), 0.16F);
  face = Cut(face, Ellipsoid(p - Vec3{0.31F, 0.03F, 0.83F}, {0.19F, 0.115F, 0.16F}), 0.13F);
  const Vec3 eye = p - Vec3{0.305F, 0.015F, 0.575F};
  const float ball = Sphere(eye, 0.155F);
  const float lids = Sphere(eye, 0.178F);
  const float opening = 0.074F - 0.55F * Square(eye.x - 0.015F) - 0.10F * eye.x;
  const float upper = std::max(lids, opening - eye.y);
  const float lower = std::max(lids + 0.006F, eye.y + 0.058F - 0.55F * Square(eye.x));
  face = Join(face, std::min(upper, lower), 0.022F);
  face = std::min(face, ball);
  face =
      Cut(face, Rod(eye, {-0.11F, 0.125F, 0.14F}, {0.14F, 0.11F, 0.10F}, 0.004F, 0.004F), 0.035F);
  // Nose.
  float nose = Rod(p, {0, 0.16F, 0.775F}, {0, -0.29F, 1.035F}, 0.062F, 0.082F);
  nose = Join(nose, Sphere(p - Vec3{0, -0.325F, 1.04F}, 0.082F), 0.06F);
  nose = Join(nose, Ellipsoid(p - Vec3{0.105F, -0.365F, 0.92F}, {0.062F, 0.062F, 0.085F}), 0.05F);
  face = Join(face, nose, 0.11F);
  face = Cut(face, Ellipsoid(p - Vec3{0.058F, -0.425F, 0.955F}, {0.027F, 0.03F, 0.045F}), 0.03F);
  return face;
}

float Mouth(Vec3 p, float face) {
  const float bow = 0.022F * Bell(p.x - 0.06F, 0.05F) - 0.012F * Bell(p.x, 0.03F);
  const float line = -0.632F + 0.30F * Square(p.x) - 0.02F * Bell(p.x, 0.08F);
  face = Cut(face, Rod(p, {0, -0.46F, 0.975F}, {0, -0.56F, 0.965F}, 0.012F, 0.02F), 0.06F);
  const float upper = Rod(p, {0, -0.600F + bow, 0.905F}, {0.175F, -0.624F, 0.805F}, 0.062F, 0.016F);
  const float lower = Rod(p, {0, -0.690F, 0.885F}, {0.14F, -0.662F, 0.815F}, 0.074F, 0.020F);
  face = Join(face, upper, 0.035F);
  face = Join(face, lower, 0.045F);
  const float slit = std::max(std::abs(p.y - line) - 0.004F, std::max(0.78F - p.z, p.x - 0.178F));
  face = Cut(face, slit, 0.030F);
  return Cut(face, Ellipsoid(p - Vec3{0, -0.80F, 0.92F}, {0.14F, 0.03F, 0.06F}), 0.09F);
}

float Face(Vec3 p) {
  float face = Ellipsoid(p - Vec3{0, 0.38F, -0.18F}, {0.72F, 0.76F, 0.97F});
  face = Join(face, Ellipsoid(p - Vec3{0, -0.26F, 0.22F}, {0.585F, 0.84F, 0.60F}), 0.20F);
  face = Join(face, Ellipsoid(p - Vec3{0.0F, -0.72F, 0.33F}, {0.44F, 0.36F, 0.46F}), 0.18F);
  face = Join(face, Ellipsoid(p - Vec3{0, -1.0F, 0.66F}, {0.17F, 0.13F, 0.14F}), 0.18F);
  face = Join(face, Ellipsoid(p - Vec3{0, -0.60F, 0.66F}, {0.27F, 0.24F, 0.23F}), 0.20F);
  face = Join(face, Ellipsoid(p - Vec3{0.37F, -0.24F, 0.52F}, {0.19F, 0.16F, 0.18F}), 0.20F);
  if (face > 0.35F) {
    return face - 0.2F;
  }
  return Mouth(p, Features(p, face));
}

// Strands run from the parting over the temples to the back; `across` counts them.
float Hair(Vec3 p, float side) {
  const Vec3 q = p - Vec3{0, 0.36F, -0.24F};
  float hair = Ellipsoid(q, {0.90F, 0.90F, 1.08F});
  hair = Join(hair, Ellipsoid(p - Vec3{0.62F, -0.12F, -0.02F}, {0.26F, 0.46F, 0.50F}), 0.25F);
  hair = Join(hair, Ellipsoid(p - Vec3{0, -0.15F, -1.15F}, {0.46F, 0.40F, 0.42F}), 0.2F);
  // The hairline leaves the face free, in an arch.
  const Vec3 window = p - Vec3{0, -0.28F, 1.0F};
  const float free = Ellipsoid(window, {0.62F, 1.06F, 0.72F});
  if (hair > 0.3F) {
    return hair - 0.15F;
  }
  const float turn = std::atan2(q.z + 0.30F, q.y + 1.0F);
  const float wave =
      0.13F * std::sin(p.x * 9 + 2.2F * turn) + 0.05F * Noise({p.x * 3, turn * 4, side});
  const float across = turn * 1.0F + wave * SmoothStep(0.1F, 0.5F, p.x) * 0.7F;
  const float lock = std::sin(across * 15 + 0.8F * Noise({p.x * 2, turn * 2, side + 3}));
  const float strands = std::sin(across * 95 + 3 * Noise(Vec3{p.x, p.y, p.z} * 3));
  const float carved = 0.055F * std::pow(lock * lock + 0.004F, 0.25F) + 0.007F * strands - 0.03F;
  const float parting = 0.07F * Bell(p.x, 0.05F);
  return Cut(hair - carved + parting, free, 0.10F);
}

float Head(Vec3 p) {
  const float side = p.x > 0 ? 0.0F : 5.0F;
  const Vec3 q = {Mirrored(p.x), p.y, p.z};
  return Join(Face(q), Hair(q, side), 0.03F);
}

float Chest(Vec3 p) {
  const Vec3 q = {Mirrored(p.x), p.y, p.z};
  float chest = Rod(p, {0, -0.7F, -0.10F}, {0, -1.95F, -0.26F}, 0.47F, 0.53F);
  chest = Join(chest, Rod(q, {0.33F, -0.75F, 0.05F}, {0.10F, -1.88F, 0.32F}, 0.13F, 0.08F), 0.15F);
  float trunk = Ellipsoid(p - Vec3{0, -2.95F, -0.28F}, {1.35F, 1.15F, 0.72F});
  trunk = Join(trunk, Rod(q, {0.3F, -1.95F, -0.32F}, {1.35F, -2.35F, -0.34F}, 0.30F, 0.42F), 0.45F);
  chest = Join(chest, trunk, 0.35F);
  chest = Join(chest, Rod(q, {0.10F, -1.97F, 0.30F}, {0.95F, -1.86F, 0.02F}, 0.05F, 0.05F), 0.16F);
  if (chest > 0.3F) {
    return chest - 0.2F;
  }
  // A garment that leaves the neck free, with folds that fall from the shoulders.
  const float neckline = -2.02F - 0.30F * Bell(p.x, 0.55F) + 0.16F * SmoothStep(0.5F, 1.2F, q.x);
  const float fall = p.x * 7 + 1.3F * (p.y + 2) * p.x + 0.9F * Noise(p * 1.3F);
  const float folds = 0.045F * std::sin(fall * 1.5F) * std::sin(fall * 0.7F + 1) +
                      0.07F * Bell(p.y - neckline, 0.06F);
  const float cloth = chest - 0.07F - folds;
  return std::min(chest, Common(cloth, p.y - neckline, 0.06F));
}

const Rotation& HeadTurn() {
  static const Rotation turn = Turned(-24, 5, 3);
  return turn;
}

Vec3 InHead(Vec3 p) {
  return HeadTurn().Undo(p - Vec3{0, 0, 0.05F});
}

float Bust(Vec3 p) {
  const float head = p.y > -1.7F ? Head(InHead(p)) : 9.0F;
  const float chest = p.y < -0.2F ? Chest(p) : 9.0F;
  return Join(head, chest, 0.08F);
}

Surface Marble(Vec3 p) {
  const float cloud = Fractal(p * 0.8F, 5, 0.6F);
  const float vein = Bell(Fractal(p * 0.9F + Vec3{0, 0, 5}, 5, 0.55F), 0.05F);
  Vec3 colour = Mix({0.60F, 0.575F, 0.53F}, {0.69F, 0.665F, 0.62F}, SmoothStep(-0.5F, 0.5F, cloud));
  colour = Mix(colour, {0.46F, 0.44F, 0.41F}, 0.35F * vein * SmoothStep(0, 0.5F, Noise(p * 1.1F)));
  return {colour * (1 + 0.04F * Noise(p * 30)), 0.02F, 0.55F};
}

Surface Backdrop(Vec3 p) {
  const float cloud = Fractal(p * 0.35F, 4);
  const Vec3 colour =
      Mix({0.15F, 0.155F, 0.16F}, {0.22F, 0.215F, 0.21F}, SmoothStep(-0.6F, 0.6F, cloud));
  return {colour * (1 + 0.05F * Noise(p * 5)), 0, 1};
}

Vec3 Sky(Vec3 direction) {
  const Vec3 room =
      Mix({0.26F, 0.25F, 0.245F}, {0.46F, 0.47F, 0.50F}, SmoothStep(-0.6F, 0.9F, direction.y));
  const Vec3 window = Normalized({-0.85F, 0.55F, 0.55F});
  return room + Vec3{2.3F, 2.25F, 2.15F} * SmoothStep(0.60F, 0.93F, Dot(direction, window));
}

} // namespace

Scene Portrait() {
  Scene scene;
  scene.camera = {{0.0F, -0.1F, 11.0F}, {0.0F, -0.52F, 0.3F}, 4.3F, 0.03F, false};
  scene.detail = DETAIL;
  scene.sky = Sky;
  Shape bust;
  bust.low = {-2.0F, -3.6F, -1.8F};
  bust.high = {2.0F, 1.45F, 1.4F};
  bust.distance = Bust;
  bust.material = Marble;
  bust.bumps = [](Vec3 p) { return 0.003F * Fractal(p * 14, 4, 0.6F); };
  bust.caution = 0.5F;
  Shape wall;
  wall.low = {-30, -30, -1};
  wall.high = {30, 30, 0};
  wall.place = {0, 0, -2.8F};
  wall.distance = [](Vec3 p) { return p.z; };
  wall.material = Backdrop;
  wall.bumps = [](Vec3 p) { return 0.02F * Fractal(p * 2.5F, 5, 0.6F); };
  scene.shapes = {wall, bust};
  return scene;
}

} // namespace scenes
