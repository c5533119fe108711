// A path tracer over signed distances.
#pragma once

#include "Picture.h"
#include "Vector.h"

#include <functional>
#include <vector>

namespace scenes {

// What light meets at one point of a surface.
struct Surface {
  Vec3 albedo;
  float reflectance = 0; // mirrored share when seen straight on; 0 is perfectly matt
  float roughness = 0.5F;
};

// One object. Its functions see places in its own frame.
struct Shape {
  Vec3 low, high; // its bounds
  Rotation turn;
  Vec3 place;
  // At most the true distance once multiplied by `caution`.
  std::function<float(Vec3 place)> distance;
  std::function<Surface(Vec3 place)> material;
  // Fine relief above that surface, seen by the camera only; may be empty.
  std::function<float(Vec3 place)> bumps;
  float caution = 1;
};

struct Camera {
  Vec3 eye, target;
  float viewHeight = 1;  // of the picture, measured at the target
  float aperture = 0;    // radius of the lens; 0 has everything sharp
  bool parallel = false; // without perspective
};

struct Scene {
  Camera camera;
  std::vector<Shape> shapes;
  std::function<Vec3(Vec3 direction)> sky; // radiance from outside
  Vec3 sunDirection;                       // unit, towards the sun
  Vec3 sunLight;                           // irradiance of a surface that faces it; 0 is overcast
  float sunRadius = 0.02F;                 // radians
  float detail = 0.002F;                   // the smallest thing seen at the camera's target
  float haze = 0;                          // share of light lost a unit of length
  Vec3 hazeLight;                          // what replaces it
};

struct RenderOptions {
  int width = 0, height = 0;
  int samples = 16; // a pixel
  int bounces = 4;
  int threads = 1;
};

// What the camera saw, by pixel.
struct Film {
  Plane<Vec3> light;     // radiance
  Plane<float> variance; // of the mean of the luminance of light ÷ albedo
  Plane<Vec3> albedo;    // of the first surface
  Plane<Vec3> normal;    // of the first surface; x right, y up, z to the camera
  Plane<float> depth;    // along the view, 0 where nothing was met
};

// The result depends on the options but not on the number of threads.
Film Render(const Scene& scene, const RenderOptions& options);

} // namespace scenes
