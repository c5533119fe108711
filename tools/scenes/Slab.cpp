#include "Slab.h"

#include "Solids.h"

namespace scenes {

Scene SceneOf(const Slab& slab) {
  Scene scene;
  scene.camera = {{0, 0, 20}, {0, 0, 0}, slab.size, 0, true};
  scene.detail = slab.detail;
  scene.sky = slab.sky;
  const Vec2 half = {0.55F * slab.size, 0.55F * slab.size};
  const Sampled heights(half * -1.0F, half, 0.5F * slab.detail, slab.height);
  Shape face;
  face.low = {-half.x, -half.y, slab.low};
  face.high = {half.x, half.y, slab.high};
  face.distance = [heights](Vec3 p) { return p.z - heights.At({p.x, p.y}); };
  face.material = slab.material;
  face.bumps = slab.bumps;
  face.caution = 0.55F;
  scene.shapes = {face};
  return scene;
}

} // namespace scenes
