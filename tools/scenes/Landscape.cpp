// A lake among hills on a day with clouds. Lengths are in tens of metres; the view is towards -z.

#include "Noise.h"
#include "Scenes.h"
#include "Solids.h"

namespace scenes {

namespace {

constexpr float NEAR_EDGE = -2; // where the fine terrain ends and the coarse one begins

// ---- ground

float Hills(Vec2 p) {
  const float away = -p.y;
  const float ridge = Ridged({p.x * 0.022F + 2.4F, p.y * 0.026F, 1}, 7);
  const float range =
      34 * SmoothStep(55, 170, away) * Square(ridge) * (0.8F + 0.3F * Noise({p.x * 0.012F, 3, 0}));
  const float low = 7.0F * SmoothStep(22, 60, away + 9 * Noise({p.x * 0.05F, 8, 0})) *
                    std::max(0.0F, 0.55F + Fractal({p.x * 0.045F + 5, p.y * 0.05F, 2}, 5));
  const float bay = 5 * Noise({p.x * 0.08F, 1, 0}) + 0.08F * std::abs(p.x);
  const float shore = Mix(-0.6F, 0.5F, SmoothStep(21, 29, away + bay));
  const float headland = 2.6F * SmoothStep(16, 3, Length((p - Vec2{27, -24}) * 1.0F)) +
                         1.9F * SmoothStep(13, 2, Length(p - Vec2{-24, -17}));
  return shore + range + low + headland * (0.8F + 0.5F * Fractal({p.x * 0.2F, p.y * 0.2F, 0}, 4));
}

// How densely trees stand, 0 to 1.
float Woods(Vec2 p, float ground) {
  const float patch = Fractal({p.x * 0.06F, p.y * 0.06F, 9}, 4) + 0.25F;
  return SmoothStep(-0.1F, 0.15F, patch) * SmoothStep(0.25F, 0.5F, ground) *
         SmoothStep(15, 9, ground);
}

// Crowns that stand above the ground, each its own size.
float Crowns(Vec2 p) {
  const Vec3 q = Vec3{p.x, p.y, 0} * 1.5F;
  const CellDistances cell = Cells({q.x, q.y, 0.5F});
  const float size = 0.5F + 0.6F * UnitFloat(Hash(cell.id));
  return 0.85F * size * std::sqrt(std::max(0.0F, 1 - Square(cell.first / 0.75F))) +
         0.08F * Noise(q * 4);
}

float FarGround(Vec2 p) {
  const float ground = Hills(p);
  return ground + Crowns(p) * Woods(p, ground);
}

float Bank(Vec2 p) {
  const float shore = p.y - 4.4F + 0.45F * p.x * 0.5F + 0.9F * Noise({p.x * 0.35F, 5, 0}) +
                      0.25F * Noise({p.x * 1.4F, 2, 0});
  const float rise = 0.75F * SmoothStep(-2.2F, 5.5F, shore) - 0.32F;
  const float right = 0.35F * SmoothStep(0.5F, 5.0F, p.x) * SmoothStep(-1.5F, 1.5F, shore);
  const float hummocks =
      0.10F * Fractal({p.x * 0.9F, p.y * 0.9F, 1}, 4) * SmoothStep(-0.8F, 1.5F, shore);
  return rise * 1.1F + right + hummocks;
}

float NearGround(Vec2 p) {
  const float ground = Bank(p);
  const float dry = SmoothStep(0.0F, 0.12F, ground);
  const float tufts = std::max(0.0F, Fractal({p.x * 2.6F, p.y * 2.6F, 6}, 3) + 0.2F);
  const float blades = 0.5F + 0.5F * Noise({p.x * 26, p.y * 12, 3});
  return ground + dry * (0.06F * tufts + 0.045F * blades * (0.4F + tufts));
}

Surface NearMaterial(Vec3 p) {
  const float wet = SmoothStep(0.10F, 0.01F, p.y + 0.03F * Noise(p * 5));
  const float dry = Fractal(p * Vec3{0.7F, 0, 0.7F}, 4),
              straw = Noise(p * Vec3{26, 3, 12} + Vec3{0, 0, 3});
  Vec3 grass = Mix({0.075F, 0.105F, 0.03F}, {0.20F, 0.19F, 0.065F},
                   SmoothStep(-0.5F, 0.6F, dry + 0.5F * straw));
  const float heather =
      SmoothStep(0.25F, 0.5F, Fractal(p * Vec3{1.3F, 0, 1.3F} + Vec3{7, 0, 0}, 4));
  grass = Mix(grass, {0.16F, 0.085F, 0.085F}, 0.55F * heather);
  const Vec3 gravel = Vec3{0.20F, 0.18F, 0.15F} * (1 + 0.5F * Noise(p * 22));
  return {Mix(grass, gravel, wet), 0, 1};
}

Surface FarMaterial(Vec3 p) {
  const float ground = Hills({p.x, p.z});
  const float woods = Woods({p.x, p.z}, ground);
  const float dry = Fractal(p * Vec3{0.15F, 0, 0.15F}, 5);
  Vec3 colour = Mix({0.105F, 0.125F, 0.04F}, {0.215F, 0.19F, 0.075F}, SmoothStep(-0.4F, 0.5F, dry));
  const float rock = SmoothStep(7, 16, ground + 4 * Fractal(p * 0.3F, 5));
  colour = Mix(colour, Vec3{0.20F, 0.19F, 0.18F} * (1 + 0.4F * Fractal(p * Vec3{0.8F, 2, 0.8F}, 4)),
               rock);
  const CellDistances tree = Cells({p.x * 1.5F, p.z * 1.5F, 0.5F});
  const Vec3 leaves =
      Mix({0.035F, 0.06F, 0.022F}, {0.11F, 0.115F, 0.03F}, UnitFloat(Hash(tree.id + 9)));
  colour = Mix(colour, leaves, SmoothStep(0.15F, 0.5F, woods));
  return {Mix(colour, {0.16F, 0.145F, 0.12F}, SmoothStep(0.18F, 0.05F, p.y)), 0, 1};
}

Shape Ground(bool nearby) {
  Shape ground;
  ground.material = nearby ? NearMaterial : FarMaterial;
  ground.caution = 0.5F;
  if (nearby) {
    const Sampled heights({-9, NEAR_EDGE}, {9, 14}, 0.010F, NearGround);
    ground.low = {-9, -1, NEAR_EDGE};
    ground.high = {9, 1.3F, 14};
    ground.distance = [heights](Vec3 p) { return p.y - heights.At({p.x, p.z}); };
    ground.bumps = [](Vec3 p) { return 0.006F * Fractal(p * Vec3{14, 14, 9}, 4, 0.65F); };
  } else {
    const Sampled heights({-150, -190}, {150, NEAR_EDGE}, 0.11F, FarGround);
    ground.low = {-150, -1, -190};
    ground.high = {150, 40, NEAR_EDGE};
    ground.distance = [heights](Vec3 p) { return p.y - heights.At({p.x, p.z}); };
    ground.bumps = [](Vec3 p) { return 0.05F * Fractal(p * 2.2F, 3, 0.65F); };
  }
  return ground;
}

Shape Lake() {
  Shape lake;
  lake.low = {-150, -2, -190};
  lake.high = {150, 0, 14};
  lake.distance = [](Vec3 p) { return p.y; };
  lake.material = [](Vec3) { return Surface{{0.018F, 0.032F, 0.032F}, 0.03F, 0.05F}; };
  lake.bumps = [](Vec3 p) {
    const float breeze = SmoothStep(-0.3F, 0.5F, Fractal(p * Vec3{0.06F, 0, 0.22F}, 3));
    return 0.004F * (0.25F + breeze) * Fractal(p * Vec3{1.6F, 0, 3.2F}, 3, 0.6F);
  };
  return lake;
}

// ---- things that stand on it

float PineCrown(Vec3 p, float seed) {
  const float t = Clamp01(p.y / 2.6F), radius = Length(Vec2{p.x, p.z}),
              angle = std::atan2(p.z, p.x);
  const float tier = t * 13 + 0.9F * Noise({angle * 1.3F, t * 3, seed});
  const float droop = tier - std::floor(tier);
  const float tatter =
      0.30F * Noise({angle * 5, t * 26, seed}) + 0.25F * Noise(p * 9 + Vec3{seed, 0, 0});
  const float reach = 0.62F * std::pow(1 - t, 0.85F) * (0.62F + 0.38F * (1 - droop) + tatter);
  return (radius - reach) * 0.55F;
}

Shape Pine(Vec3 place, float size, float seed) {
  Shape pine;
  pine.low = Vec3{-0.85F, -0.6F, -0.85F} * size;
  pine.high = Vec3{0.85F, 2.7F, 0.85F} * size;
  pine.place = place;
  pine.turn = Turned(seed * 77, 1, 1);
  pine.distance = [size, seed](Vec3 p) {
    const Vec3 q = p / size;
    const float crown =
        std::max({PineCrown(q, seed), 0.12F - q.y + 0.1F * Noise(q * 4), q.y - 2.6F});
    return size * std::min(crown, Rod(q, {0, -0.6F, 0}, {0, 2.4F, 0}, 0.05F, 0.01F));
  };
  pine.material = [size, seed](Vec3 p) {
    const Vec3 q = p / size;
    if (q.y < 0.25F && Length(Vec2{q.x, q.z}) < 0.07F) {
      return Surface{{0.11F, 0.075F, 0.05F}, 0, 1};
    }
    const float tips = SmoothStep(-0.4F, 0.7F, Noise(q * 11 + Vec3{seed, 0, 0}));
    return Surface{Mix({0.018F, 0.038F, 0.02F}, {0.065F, 0.085F, 0.03F}, tips), 0, 1};
  };
  pine.bumps = [](Vec3 p) { return 0.02F * Fractal(p * 22, 3, 0.7F); };
  pine.caution = 0.6F;
  return pine;
}

Shape Rock(Vec3 place, Vec3 radii, float yaw, float seed) {
  Shape rock;
  rock.low = radii * -1.25F;
  rock.high = radii * 1.25F;
  rock.place = place;
  rock.turn = Turned(yaw);
  rock.distance = [radii, seed](Vec3 p) {
    const Vec3 q = p + Vec3{seed, seed, 0};
    float stone = Ellipsoid(p, radii);
    for (int i = 0; i < 7; ++i) {
      const float turn = static_cast<float>(i) * 2.4F + seed;
      const Vec3 facet =
          Normalized({std::cos(turn), 0.9F * std::sin(turn * 1.7F) + 0.2F, std::sin(turn)});
      stone = Common(stone, Dot(p, facet) - 0.78F * Length(radii * facet), 0.05F);
    }
    return stone - 0.05F * Fractal(q * 2.2F, 4) - 0.02F * Ridged(q * Vec3{3, 7, 3}, 3);
  };
  rock.material = [seed](Vec3 p) {
    const float cloud = SmoothStep(-0.5F, 0.5F, Fractal(p * 2.5F + Vec3{seed, 0, 0}, 5, 0.6F));
    Vec3 colour = Mix({0.12F, 0.115F, 0.11F}, {0.26F, 0.245F, 0.22F}, cloud);
    const float lichen = SmoothStep(0.25F, 0.45F, Fractal(p * 4 + Vec3{0, seed, 0}, 5, 0.6F));
    colour = Mix(colour, {0.34F, 0.33F, 0.22F}, 0.7F * lichen);
    return Surface{colour, 0, 1};
  };
  rock.bumps = [](Vec3 p) { return 0.012F * Fractal(p * 9, 5, 0.65F); };
  rock.caution = 0.6F;
  return rock;
}

// ---- sky

const Vec3 SUN = Normalized({-0.80F, 0.55F, 0.10F});

float CloudThickness(Vec2 p) {
  const float heaps = Fractal({p.x * 0.55F + 3.2F, p.y * 0.9F, 0.3F}, 6, 0.55F);
  return SmoothStep(-0.05F, 0.45F, heaps + 0.06F);
}

Vec3 Sky(Vec3 direction) {
  const float up = std::max(direction.y, 0.0F);
  Vec3 colour =
      Mix({0.78F, 0.86F, 0.93F}, {0.20F, 0.38F, 0.70F}, std::pow(Clamp01(up * 1.5F), 0.55F));
  const float toSun = std::max(0.0F, Dot(direction, SUN));
  colour += Vec3{0.5F, 0.42F, 0.3F} * std::pow(toSun, 6.0F);
  if (up > 0.004F) {
    const Vec2 p = Vec2{direction.x, direction.z} * (1 / (up + 0.07F));
    const float thick = CloudThickness(p);
    const float beyond = CloudThickness(p + Vec2{SUN.x, SUN.z} * 0.22F);
    const float lit = Clamp01(0.75F - 0.65F * (beyond - 0.5F * (1 - thick)));
    const Vec3 cloud = Mix({0.52F, 0.55F, 0.60F}, {1.35F, 1.30F, 1.22F}, lit);
    colour = Mix(colour, cloud, thick * 0.92F * SmoothStep(0.0F, 0.10F, up));
  }
  return colour;
}

} // namespace

Scene Landscape() {
  Scene scene;
  scene.camera = {{0, 1.35F, 12.5F}, {0, 1.05F, 2.5F}, 5.2F, 0.0F, false};
  scene.detail = 0.005F;
  scene.sky = Sky;
  scene.sunDirection = SUN;
  scene.sunLight = {3.3F, 3.0F, 2.55F};
  scene.sunRadius = 0.03F;
  scene.haze = 0.0038F;
  scene.hazeLight = {0.62F, 0.72F, 0.84F};
  const auto rooted = [](float x, float z) { return Vec3{x, Bank({x, z}), z}; };
  scene.shapes = {Ground(true),
                  Ground(false),
                  Lake(),
                  Rock({-2.3F, 0.18F, 6.5F}, {0.75F, 0.42F, 0.55F}, 20, 1),
                  Rock({-1.15F, 0.06F, 6.1F}, {0.38F, 0.22F, 0.32F}, 70, 4),
                  Rock({-3.4F, 0.10F, 5.0F}, {0.5F, 0.33F, 0.4F}, -30, 7),
                  Rock({-0.2F, -0.02F, 4.9F}, {0.26F, 0.14F, 0.22F}, 110, 9),
                  Pine(rooted(3.55F, 5.2F), 1.15F, 1),
                  Pine(rooted(2.75F, 5.8F), 0.72F, 2),
                  Pine(rooted(4.45F, 4.6F), 0.95F, 3),
                  Pine(rooted(2.15F, 5.0F), 0.45F, 4),
                  Pine(rooted(-4.6F, 5.6F), 0.65F, 5)};
  return scene;
}

} // namespace scenes
