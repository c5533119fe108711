#include "Renderer.h"

#include "Noise.h"

#include <atomic>
#include <thread>

namespace scenes {

namespace {

constexpr float FAR_AWAY = 1e6F;
constexpr int MARCH_LIMIT = 320;

struct Ray {
  Vec3 origin, direction;
  float width;  // at its origin: nothing finer matters
  float spread; // how much it widens a unit of length

  Vec3 At(float t) const { return origin + direction * t; }
  float WidthAt(float t) const { return width + spread * t; }
};

struct Hit {
  const Shape* shape = nullptr;
  float distance = FAR_AWAY;
};

struct Interval {
  float from, to;
};

Interval InsideBounds(const Shape& shape, const Ray& ray) {
  Interval inside = {0, FAR_AWAY};
  const auto clip = [&inside](float origin, float direction, float low, float high) {
    const float inverse = 1 / (std::abs(direction) > 1e-9F ? direction : 1e-9F);
    const float a = (low - origin) * inverse, b = (high - origin) * inverse;
    inside.from = std::max(inside.from, std::min(a, b));
    inside.to = std::min(inside.to, std::max(a, b));
  };
  clip(ray.origin.x, ray.direction.x, shape.low.x, shape.high.x);
  clip(ray.origin.y, ray.direction.y, shape.low.y, shape.high.y);
  clip(ray.origin.z, ray.direction.z, shape.low.z, shape.high.z);
  return inside;
}

// Marches one shape in its own frame; the distance along the ray, or beyond `limit` for a miss.
float March(const Shape& shape, const Ray& world, float limit) {
  const Ray ray = {shape.turn.Undo(world.origin - shape.place), shape.turn.Undo(world.direction),
                   world.width, world.spread};
  const Interval inside = InsideBounds(shape, ray);
  const float end = std::min(inside.to, limit);
  float t = inside.from;
  for (int i = 0; i < MARCH_LIMIT && t < end; ++i) {
    const float d = shape.distance(ray.At(t)) * shape.caution, width = ray.WidthAt(t);
    if (d < width * 0.1F) {
      return t;
    }
    t += std::max(d, width * 0.05F);
  }
  return FAR_AWAY;
}

Hit Trace(const Scene& scene, const Ray& ray) {
  Hit hit;
  for (const Shape& shape : scene.shapes) {
    const float t = March(shape, ray, hit.distance);
    if (t < hit.distance) {
      hit = {&shape, t};
    }
  }
  return hit;
}

bool Blocked(const Scene& scene, const Ray& ray) {
  return std::any_of(scene.shapes.begin(), scene.shapes.end(),
                     [&](const Shape& shape) { return March(shape, ray, FAR_AWAY) < FAR_AWAY; });
}

// Four samples at the corners of a tetrahedron.
Vec3 Gradient(const Shape& shape, Vec3 p, float step) {
  static constexpr Vec3 CORNERS[4] = {{1, -1, -1}, {-1, -1, 1}, {-1, 1, -1}, {1, 1, 1}};
  Vec3 sum;
  for (const Vec3 corner : CORNERS) {
    sum += corner * shape.distance(p + corner * step);
  }
  return Normalized(sum);
}

// A normal tilted by a height above the surface.
Vec3 Bumped(Vec3 place, Vec3 normal, float step, const std::function<float(Vec3)>& height) {
  const Rotation frame = FacingZ(normal);
  const float here = height(place);
  const float x = (height(place + frame.x * step) - here) / step;
  const float y = (height(place + frame.y * step) - here) / step;
  return Normalized(normal - frame.x * x - frame.y * y);
}

Vec3 CosineDirection(Vec3 normal, float u, float v) {
  const float radius = std::sqrt(u), angle = 2 * PI * v;
  return FacingZ(normal).Apply(
      {radius * std::cos(angle), radius * std::sin(angle), std::sqrt(std::max(0.0F, 1 - u))});
}

// The mirror direction about a facet drawn from the usual long-tailed distribution.
Vec3 GlossyDirection(Vec3 direction, Vec3 normal, float roughness, float u, float v) {
  const float a = roughness * roughness;
  const float cosine = std::sqrt((1 - u) / (1 + (a * a - 1) * u));
  const float sine = std::sqrt(std::max(0.0F, 1 - cosine * cosine)), angle = 2 * PI * v;
  const Vec3 facet =
      FacingZ(normal).Apply({sine * std::cos(angle), sine * std::sin(angle), cosine});
  return Normalized(direction - facet * (2 * Dot(direction, facet)));
}

// Evenly spread numbers for the first choices of a path, plain random ones after that.
class Sampler {
public:
  Sampler(uint32_t pixel, int sample) : _random(Hash(pixel) ^ static_cast<uint32_t>(sample)) {
    static constexpr double STEPS[6] = {0.8566748838545029, 0.7338918566271260, 0.6287067210378087,
                                        0.5385972572236101, 0.4614018543153290, 0.3952706500437210};
    for (int i = 0; i < 6; ++i) {
      const uint32_t start = Hash(pixel * 6 + static_cast<uint32_t>(i));
      const double x = UnitFloat(start) + STEPS[i] * sample;
      _even[i] = static_cast<float>(x - std::floor(x));
    }
  }
  // For choices that need not be even.
  float Any() { return _random.Next(); }
  float Next() { return _used < 6 ? _even[_used++] : _random.Next(); }

private:
  Random _random;
  float _even[6] = {};
  int _used = 0;
};

// Of a surface as marched, and with its fine relief.
struct Normals {
  Vec3 flat, fine;
};

struct Seen {
  Vec3 light, albedo{0.5F, 0.5F, 0.5F}, normal{0, 0, 1};
  float depth = 0;
};

class PathTracer {
public:
  PathTracer(const Scene& scene, const RenderOptions& options) : _scene(scene), _options(options) {
    const Camera& camera = scene.camera;
    _view.z = Normalized(camera.eye - camera.target);
    _view.x = Normalized(Cross({0, 1, 0}, _view.z));
    _view.y = Cross(_view.z, _view.x);
    _reach = Length(camera.eye - camera.target);
  }

  Seen Follow(int x, int y, int sample) const {
    Sampler sampler(Hash(x, y), sample);
    Ray ray = CameraRay(x, y, sampler);
    Seen seen;
    Vec3 share = {1, 1, 1};
    for (int bounce = 0; bounce <= _options.bounces; ++bounce) {
      // Paths that carry little end at random, the others standing for them.
      const float worth = bounce < 2 ? 1 : std::min(1.0F, 2.5F * Luminance(share));
      if (sampler.Any() >= worth) {
        break;
      }
      share = share / worth;
      const Hit hit = Trace(_scene, ray);
      if (hit.shape == nullptr) {
        seen.light += share * _scene.sky(ray.direction);
        break;
      }
      const float width = ray.WidthAt(hit.distance);
      const Vec3 local = hit.shape->turn.Undo(ray.At(hit.distance) - hit.shape->place);
      const Vec3 flat = Gradient(*hit.shape, local, width * 0.5F);
      const Surface surface = hit.shape->material(local);
      const Vec3 geometric = hit.shape->turn.Apply(flat);
      Vec3 normal = geometric;
      if (bounce == 0) {
        if (hit.shape->bumps) {
          normal = hit.shape->turn.Apply(Bumped(local, flat, width, hit.shape->bumps));
        }
        seen.albedo = surface.albedo;
        seen.normal = _view.Undo(normal);
        seen.depth = -Dot(ray.direction, _view.z) * hit.distance;
        const float clear = std::exp(-_scene.haze * hit.distance);
        seen.light += _scene.hazeLight * (1 - clear);
        share = share * clear;
      }
      const Ray leaving = {ray.At(hit.distance) + geometric * (0.5F * width), ray.direction, width,
                           ray.spread};
      ray = Scatter(leaving, {geometric, normal}, surface, sampler, share, seen.light);
    }
    return seen;
  }

private:
  Ray CameraRay(int x, int y, Sampler& sampler) const {
    const auto tent = [](float u) {
      return u < 0.5F ? std::sqrt(2 * u) - 1 : 1 - std::sqrt(2 - 2 * u);
    };
    const float pixel = _scene.camera.viewHeight / static_cast<float>(_options.height);
    const float right = (static_cast<float>(x) + 0.5F + tent(sampler.Next()) -
                         0.5F * static_cast<float>(_options.width)) *
                        pixel;
    const float up = (0.5F * static_cast<float>(_options.height) - static_cast<float>(y) - 0.5F -
                      tent(sampler.Next())) *
                     pixel;
    const Vec3 focus = _scene.camera.target + _view.x * right + _view.y * up;
    if (_scene.camera.parallel) {
      return {focus + _view.z * _reach, -_view.z, _scene.detail, 0};
    }
    const float radius = _scene.camera.aperture * std::sqrt(sampler.Next());
    const float angle = 2 * PI * sampler.Next();
    const Vec3 lens = _scene.camera.eye + _view.x * (radius * std::cos(angle)) +
                      _view.y * (radius * std::sin(angle));
    return {lens, Normalized(focus - lens), 0, _scene.detail / _reach};
  }

  // Lights the ray's new origin by the sun, and chooses where the path goes on.
  Ray Scatter(const Ray& ray, Normals normals, const Surface& surface, Sampler& sampler,
              Vec3& share, Vec3& light) const {
    const float cosine = std::max(0.0F, -Dot(ray.direction, normals.fine));
    const float edge = surface.reflectance > 0 ? std::pow(1 - cosine, 5.0F) : 0;
    const float mirrored =
        surface.reflectance + (1 - surface.roughness) * (1 - surface.reflectance) * edge;
    // Faint reflections of a bright sky are followed often and count little, or they would show as
    // specks; light seen by way of another surface is too blurred for that.
    const bool seen = Luminance(share) > 0.9F;
    const float chance = seen && mirrored > 0 ? std::clamp(mirrored, 0.3F, 0.7F) : mirrored;
    const float u = sampler.Next(), v = sampler.Next();
    Vec3 direction;
    if (sampler.Next() < chance) {
      share = share * (mirrored / chance);
      direction = GlossyDirection(ray.direction, normals.fine, surface.roughness, u, v);
    } else {
      share *= surface.albedo * ((1 - mirrored) / (1 - chance));
      const float facing = Dot(normals.fine, _scene.sunDirection);
      if (Luminance(_scene.sunLight) > 0 && facing > 0) {
        const Vec3 spread = {sampler.Next() - 0.5F, sampler.Next() - 0.5F, sampler.Next() - 0.5F};
        const Vec3 sun = Normalized(_scene.sunDirection + spread * (2 * _scene.sunRadius));
        if (!Blocked(_scene, {ray.origin, sun, ray.width, ray.spread})) {
          light += share * _scene.sunLight * (facing / PI);
        }
      }
      direction = CosineDirection(normals.fine, u, v);
    }
    // Fine relief may send a path into its own surface; it then leaves mirrored.
    const float sink = Dot(direction, normals.flat);
    if (sink < 0) {
      direction = direction - normals.flat * (2 * sink);
    }
    return {ray.origin, direction, ray.width, ray.spread};
  }

  const Scene& _scene;
  const RenderOptions& _options;
  Rotation _view;
  float _reach = 0;
};

Vec3 WithoutAlbedo(Vec3 light, Vec3 albedo) {
  return {light.x / (albedo.x + 0.02F), light.y / (albedo.y + 0.02F), light.z / (albedo.z + 0.02F)};
}

} // namespace

Film Render(const Scene& scene, const RenderOptions& options) {
  const int width = options.width, height = options.height;
  Film film = {{width, height}, {width, height}, {width, height}, {width, height}, {width, height}};
  const PathTracer tracer(scene, options);
  const auto share = 1 / static_cast<float>(options.samples);
  const auto expose = [&](int x, int y) {
    float sum = 0, squares = 0;
    for (int sample = 0; sample < options.samples; ++sample) {
      const Seen seen = tracer.Follow(x, y, sample);
      film.light.At(x, y) += seen.light * share;
      film.albedo.At(x, y) += seen.albedo * share;
      film.normal.At(x, y) += seen.normal * share;
      film.depth.At(x, y) += seen.depth * share;
      const float luminance = Luminance(WithoutAlbedo(seen.light, seen.albedo));
      sum += luminance * share;
      squares += luminance * luminance * share;
    }
    film.variance.At(x, y) = std::max(0.0F, squares - sum * sum) * share;
  };
  std::atomic<int> next = 0;
  const auto work = [&] {
    for (int y = next++; y < height; y = next++) {
      for (int x = 0; x < width; ++x) {
        expose(x, y);
      }
    }
  };
  std::vector<std::jthread> workers;
  workers.reserve(static_cast<size_t>(options.threads));
  for (int i = 0; i < options.threads; ++i) {
    workers.emplace_back(work);
  }
  workers.clear();
  return film;
}

} // namespace scenes
