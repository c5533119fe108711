#include "Noise.h"
#include "Objects.h"
#include "Solids.h"

namespace scenes {

namespace {

float Around(Vec3 p) {
  return Length(Vec2{p.x, p.z});
}
float Angle(Vec3 p) {
  return std::atan2(p.z, p.x);
}

float Stem(Vec3 p, float from, float height, float lean) {
  const Vec3 bent = {p.x - lean * Square(std::max(0.0F, p.y - from)), p.y, p.z};
  return Rod(bent, {0, from, 0}, {0, from + height, 0}, 0.022F, 0.034F) - 0.004F * Noise(p * 30);
}

Surface StemMaterial(Vec3 p) {
  const float tone = 0.5F + 0.5F * Noise(p * 25);
  return {Mix({0.16F, 0.10F, 0.05F}, {0.30F, 0.21F, 0.12F}, tone), 0.02F, 0.6F};
}

float AppleFlesh(Vec3 p) {
  const float angle = Angle(p);
  const float taper = 1 + 0.16F * p.y;
  const float lobes = 1 + 0.025F * std::cos(5 * angle + 0.6F) * SmoothStep(0.3F, -0.5F, p.y) +
                      0.02F * std::cos(2 * angle);
  const Vec2 q = {Around(p) / (taper * lobes) - 0.225F, p.y * 1.06F};
  return 0.85F * (Length(q) - 0.335F);
}

float AppleStem(Vec3 p) {
  return Stem(p, 0.1F, 0.42F, 0.5F);
}

Vec3 AppleColour(Vec3 p, float blush, float seed) {
  const float angle = Angle(p);
  const Vec3 unrolled = {std::cos(angle) * 8.5F, p.y * 0.7F + seed, std::sin(angle) * 8.5F};
  const float streak = Fractal(unrolled, 4, 0.6F);
  const float side = Noise(p * 1.4F + Vec3{seed, 0, seed});
  const float crown = Bell(Around(p), 0.16F);
  const float red = SmoothStep(-0.6F, 0.6F, streak * 0.6F + side * 0.9F + blush - 1.1F * crown);
  Vec3 colour = Mix({0.56F, 0.46F, 0.13F}, {0.42F, 0.055F, 0.04F}, red);
  const float green = 0.7F * Bell(Around(p), 0.13F) * SmoothStep(0, 0.2F, p.y);
  colour = Mix(colour, {0.34F, 0.33F, 0.12F}, green);
  const float spots = Cells(p * 13 + Vec3{seed, 0, 0}).first;
  return Mix(colour, {0.66F, 0.50F, 0.30F}, 0.5F * SmoothStep(0.13F, 0.06F, spots));
}

float PearFlesh(Vec3 p) {
  const Vec3 q = {p.x - 0.05F * SmoothStep(0.3F, 1.2F, p.y), p.y, p.z};
  const float body = Ellipsoid(q, {0.56F, 0.54F, 0.56F});
  const float neck = Rod(q, {0, 0.3F, 0}, {0.02F, 0.93F, 0}, 0.30F, 0.165F);
  const float dimple = Sphere(p - Vec3{0.06F, 1.14F, 0}, 0.06F);
  return Cut(Join(body, neck, 0.42F), dimple, 0.08F) - 0.012F * std::cos(3 * Angle(p) + 1) -
         0.01F * Noise(p * 2.5F);
}

float PearStem(Vec3 p) {
  return Stem(p - Vec3{0.05F, 0, 0}, 1.0F, 0.45F, -0.7F);
}

float Russet(Vec3 p) {
  return SmoothStep(0.1F, 0.7F,
                    Fractal(p * 2.6F, 5, 0.65F) + 0.9F * Bell(p.y - 1.15F, 0.2F) +
                        0.7F * Bell(p.y + 0.55F, 0.2F));
}

Surface PearMaterial(Vec3 p) {
  if (PearStem(p) < PearFlesh(p)) {
    return StemMaterial(p);
  }
  const float side = Noise(p * 1.1F + Vec3{1, 7, 2});
  Vec3 colour =
      Mix({0.43F, 0.42F, 0.10F}, {0.56F, 0.44F, 0.11F}, SmoothStep(-0.5F, 0.7F, p.y * 0.4F + side));
  const float blush = SmoothStep(0.0F, 0.9F, p.x * 1.3F + 0.4F * side + 0.1F);
  colour = Mix(colour, {0.50F, 0.20F, 0.07F}, 0.65F * blush);
  colour = Mix(colour, {0.36F, 0.23F, 0.09F}, 0.75F * Russet(p));
  const float spots = SmoothStep(0.20F, 0.10F, Cells(p * 19).first);
  return {Mix(colour, {0.25F, 0.17F, 0.06F}, 0.6F * spots), 0.03F, 0.40F};
}

// Two halves with a raised seam around x = 0, wrinkled along the way from end to end.
float Nut(Vec3 p) {
  const float body = Ellipsoid(p, {0.21F, 0.235F, 0.20F});
  if (body > 0.08F) {
    return body - 0.045F;
  }
  const float seam = 0.02F * Bell(p.x, 0.022F);
  const Vec3 along = {p.x, p.y * 0.45F, p.z};
  const float wrinkles = 0.050F * (Ridged(along * 11 + Vec3{3, 1, 2}, 3) - 0.5F);
  return body - seam - wrinkles * SmoothStep(0.01F, 0.06F, std::abs(p.x));
}

} // namespace

Shape Apple(Vec3 place, Rotation turn, float blush, float seed) {
  Shape apple;
  apple.low = {-0.62F, -0.45F, -0.62F};
  apple.high = {0.62F, 0.72F, 0.62F};
  apple.place = place;
  apple.turn = turn;
  apple.distance = [](Vec3 p) { return std::min(AppleFlesh(p), AppleStem(p)); };
  apple.caution = 0.9F;
  apple.material = [blush, seed](Vec3 p) {
    return AppleStem(p) < AppleFlesh(p) ? StemMaterial(p)
                                        : Surface{AppleColour(p, blush, seed), 0.04F, 0.27F};
  };
  apple.bumps = [](Vec3 p) { return 0.004F * Fractal(p * 7, 3); };
  return apple;
}

Shape Pear(Vec3 place, Rotation turn) {
  Shape pear;
  pear.low = {-0.64F, -0.6F, -0.64F};
  pear.high = {0.64F, 1.62F, 0.64F};
  pear.place = place;
  pear.turn = turn;
  pear.distance = [](Vec3 p) { return std::min(PearFlesh(p), PearStem(p)); };
  pear.caution = 0.85F;
  pear.material = PearMaterial;
  pear.bumps = [](Vec3 p) {
    return 0.006F * Fractal(p * 5, 3) + 0.0015F * Noise(p * 40) -
           0.003F * SmoothStep(0.2F, 0.08F, Cells(p * 19).first);
  };
  return pear;
}

Shape Walnut(Vec3 place, Rotation turn) {
  Shape walnut;
  walnut.low = {-0.26F, -0.28F, -0.26F};
  walnut.high = {0.26F, 0.28F, 0.26F};
  walnut.place = place;
  walnut.turn = turn;
  walnut.distance = Nut;
  walnut.caution = 0.7F;
  walnut.material = [](Vec3 p) {
    const float deep = SmoothStep(0.225F, 0.19F, Length(p * Vec3{1.05F, 0.92F, 1.1F}));
    Vec3 colour = Mix({0.40F, 0.255F, 0.135F}, {0.16F, 0.085F, 0.04F}, deep);
    colour = colour * (1 + 0.25F * Fractal(p * 14, 3));
    return Surface{colour, 0.03F, 0.5F};
  };
  walnut.bumps = [](Vec3 p) { return 0.003F * Fractal(p * 30, 3); };
  return walnut;
}

} // namespace scenes
