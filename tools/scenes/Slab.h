// Scenes that are one face with relief, seen straight on.
#pragma once

#include "Renderer.h"

#include <functional>

namespace scenes {

struct Slab {
  float size;                              // of what is seen, square
  float detail;                            // the smallest thing seen
  float low, high;                         // what the heights are between
  std::function<float(Vec2 place)> height; // sampled twice as finely as detail
  std::function<Surface(Vec3 place)> material;
  std::function<float(Vec3 place)> bumps;
  std::function<Vec3(Vec3 direction)> sky;
};

Scene SceneOf(const Slab& slab);

} // namespace scenes
