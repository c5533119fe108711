// A jug, fruit and a carved stone on a table by a north window.

#include "Objects.h"
#include "Scenes.h"

namespace scenes {

namespace {

Vec3 Sky(Vec3 direction) {
  const float height = SmoothStep(-0.5F, 0.9F, direction.y);
  const Vec3 room = Mix({0.50F, 0.48F, 0.46F}, {0.82F, 0.84F, 0.88F}, height);
  // A wide, soft window at the left, before the table.
  const Vec3 window = Normalized({-0.72F, 0.55F, 0.62F});
  const float glow = SmoothStep(0.62F, 0.93F, Dot(direction, window));
  return room + Vec3{1.95F, 1.92F, 1.86F} * glow;
}

} // namespace

Scene StillLife() {
  Scene scene;
  scene.camera = {{0.6F, 4.6F, 13.2F}, {0.15F, 1.08F, 0.0F}, 5.3F, 0.045F, false};
  scene.detail = 0.003F;
  scene.sky = Sky;
  const Vec3 front = {0, 0, 2.3F};
  scene.shapes = {
      Wall({0, 0, -3.1F}),
      Table(front),
      Linen(front),
      CarvedStone({1.75F, 1.34F, -2.45F}, Turned(-7, -13)),
      Jug({-1.75F, 0, -0.75F}, Turned(18)),
      Apple({0.42F, 0.40F, 0.75F}, Turned(40, 12, -14), 0.35F, 3),
      Apple({-0.42F, 0.39F, 1.35F}, Turned(200, -62, 20), -0.05F, 11),
      Pear({1.42F, 0.56F, 0.95F}, Turned(-30, 4, -6)),
      Walnut({2.72F, 0.19F, 1.25F}, Turned(20, 80, 10)),
      Walnut({3.12F, 0.19F, 0.85F}, Turned(-50, 95, 0)),
      Walnut({-2.62F, 0.19F, 1.55F}, Turned(70, 85, 0)),
  };
  return scene;
}

} // namespace scenes
