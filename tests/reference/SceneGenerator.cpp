#include "SceneGenerator.h"

#include <algorithm>
#include <cstdlib>

namespace {

int16_t Short(int value) {
  return static_cast<int16_t>(value);
}

// A handle or a centre; in a wild scene now and then one that no drag can reach.
ReferencePoint MakePoint(SceneRandom& random, int reach, SceneMood mood) {
  ReferencePoint point{Short(random.Between(-reach, reach)), Short(random.Between(-reach, reach))};
  if (mood == SceneMood::Wild && random.OneIn(4)) {
    point.h = Short(random.OneOf({0, 1, -1, 32767, -32767, -32768, 3000}));
    point.v = Short(random.OneOf({0, 0, 1, 32767, -32767, -32768, -500}));
  }
  return point;
}

int16_t Level(SceneRandom& random, int low, int high, SceneMood mood) {
  if (mood == SceneMood::Wild && random.OneIn(3))
    return Short(random.OneOf({0, 1, -1, 255, 256, 257, -127, -128, 4000, 32767, -32768}));
  return Short(random.Between(low, high));
}

void MakeSettings(SceneRandom& random, ReferenceSettings& settings, SceneMood mood, uint64_t seed) {
  for (uint16_t& component : settings.ambientColor)
    component = static_cast<uint16_t>(random.OneIn(3) ? 65535 : random.Between(0, 65535));
  settings.gloss = Level(random, 0, 255, mood);
  settings.ambience = Level(random, -40, 90, mood);
  settings.bumpAmplitude = Level(random, 0, 255, mood);
  settings.whiteIsHigh = !random.OneIn(3);
  switch (seed % 3) {
  case 0:
    settings.material = Short(random.OneOf({0, -1, -32768}));
    break;
  case 1:
    settings.material = Short(random.OneOf({256, 257, 32767}));
    break;
  default:
    settings.material = Short(random.OneOf({1, 2, 100, 128, 200, 254, 255}));
  }
}

void MakeLights(SceneRandom& random, std::vector<ReferenceLight>& lights, SceneMood mood,
                uint64_t seed) {
  const int count = seed % 23 == 22 ? 0 : static_cast<int>(seed % 16) + 1;
  for (int i = 0; i < count; ++i) {
    lights.push_back(MakeLight(random, random.Between(0, 2), mood));
    lights.back().on = i == 0 || !random.OneIn(9);
  }
}

// A gain that leaves most of the picture between black and white, where faults can be seen.
int16_t MakeExposure(SceneRandom& random, const ReferenceSettings& settings, SceneMood mood) {
  int light = 40 + std::abs(int{settings.ambience}) / 2;
  for (const ReferenceLight& each : settings.lights)
    light += each.on ? each.intensity : 0;
  const int fitting = random.Between(3000, 12000) / std::max(light, 20);
  return Level(random, std::clamp(fitting, 3, 255), std::clamp(fitting, 3, 255), mood);
}

uint8_t Clamped(int value) {
  return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

// Flat areas, ramps, steps, noise and blends of them, so that every kind of facet turns up.
uint8_t HeightAt(SceneRandom& random, int kind, int x, int y) {
  const int block = ((x / 7) * 53 + (y / 5) * 91) & 255;
  switch (kind) {
  case 0:
    return 77;
  case 1:
    return Clamped(x * 3 - y);
  case 2:
    return static_cast<uint8_t>(block);
  case 3:
    return static_cast<uint8_t>(random.Between(0, 255));
  case 4: // a plain with a few grains
    return static_cast<uint8_t>(random.OneIn(17) ? random.Between(0, 255) : 128);
  case 5: // one hard edge
    return x > y ? 255 : 0;
  default: // soft hills with noise of one level
    return Clamped(std::abs((x * 5) % 200 - 100) + std::abs((y * 3) % 160 - 80) +
                   random.Between(0, 1));
  }
}

void MakePictures(SceneRandom& random, Scene& scene, bool relief) {
  const int kind = random.Between(0, 2);
  const int heightKind = random.Between(0, 6);
  for (int y = 0; y < scene.height; ++y) {
    for (int x = 0; x < scene.width; ++x) {
      for (int k = 0; k < 3; ++k)
        scene.pixels.push_back(kind == 0   ? static_cast<uint8_t>(random.Between(0, 255))
                               : kind == 1 ? Clamped(40 + x + y * k)
                                           : uint8_t{255});
      if (relief)
        scene.heights.push_back(HeightAt(random, heightKind, x, y));
    }
  }
}

void MakeSizes(SceneRandom& random, Scene& scene, const SceneLimits& limits) {
  const auto edge = [&] {
    const int odd = random.OneOf({1, 2, 3, 5, 17, 63, 64, 65, 67, 127, 128, 129, 131});
    return std::min(random.OneIn(2) ? odd : random.Between(1, limits.maxEdge), limits.maxEdge);
  };
  scene.width = edge();
  scene.height = std::max(1, std::min(edge(), limits.maxPixels / scene.width));
  scene.area = {0, 0, scene.height, scene.width};
  if (random.OneIn(3)) { // a part of the image
    scene.area.top = random.Between(0, scene.height - 1);
    scene.area.left = random.Between(0, scene.width - 1);
    scene.area.bottom = random.Between(scene.area.top + 1, scene.height);
    scene.area.right = random.Between(scene.area.left + 1, scene.width);
  }
}

void MakeGeometry(SceneRandom& random, Scene& scene, SceneMood mood) {
  const int width = scene.area.right - scene.area.left;
  scene.geometry.previewWidth = Short(std::min(width, 256));
  scene.geometry.frameOriginX = Short(random.Between(0, 40));
  scene.geometry.frameCenterX = Short(scene.geometry.frameOriginX + 140);
  if (random.OneIn(2)) // a large picture's share of the frame, so that lights stay apart
    scene.geometry.previewWidth = 256;
  if (mood == SceneMood::Wild && random.OneIn(6)) {
    scene.geometry.frameCenterX = Short(random.OneOf({0, -1, 32767}));
    scene.geometry.frameOriginX = Short(random.OneOf({0, -1, 1, -32768}));
    scene.geometry.previewWidth = Short(random.OneOf({0, 1, -1, 256, 32767}));
  }
}

} // namespace

uint64_t SceneRandom::Next() {
  state += 0x9E3779B97F4A7C15U;
  uint64_t mixed = state;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
  return mixed ^ (mixed >> 31);
}

int SceneRandom::Between(int low, int high) {
  const auto span = static_cast<uint64_t>(int64_t{high} - low + 1);
  return static_cast<int>(low + static_cast<int64_t>(Next() % span));
}

int SceneRandom::OneOf(std::initializer_list<int> values) {
  return values.begin()[Between(0, static_cast<int>(values.size()) - 1)];
}

ReferenceLight MakeLight(SceneRandom& random, int32_t type, SceneMood mood) {
  ReferenceLight light;
  light.type = type;
  light.center = MakePoint(random, 150, mood);
  light.handle1 = MakePoint(random, 110, mood);
  light.handle2 = MakePoint(random, 110, mood);
  if (type == REFERENCE_SPOT && !random.OneIn(4))
    light = ReferenceValidate(light);
  light.radius = Short(random.Between(0, 150));
  for (uint16_t& component : light.color)
    component = static_cast<uint16_t>(random.OneIn(3) ? 65535 : random.Between(0, 65535));
  light.intensity = Short(random.OneIn(5) ? random.Between(-127, 0) : random.Between(1, 128));
  light.spread = Short(random.Between(0, 255));
  if (mood == SceneMood::Wild) {
    if (random.OneIn(4))
      light.radius = Short(random.OneOf({0, 1, -30, 32767, -32768}));
    if (random.OneIn(4))
      light.intensity = Short(random.OneOf({-127, 128, -1, 0, 32767, -32768}));
    if (random.OneIn(3))
      light.spread = Short(random.OneOf({-42, -43, -44, -64, -128, -192, 400, 32767, -32768}));
  }
  return light;
}

Scene MakeScene(uint64_t seed, const SceneLimits& limits) {
  SceneRandom random(seed * 7919 + 1);
  const SceneMood mood = seed % 5 == 4 ? SceneMood::Wild : SceneMood::Usual;
  const bool relief = (seed / 2) % 2 == 1;
  Scene scene;
  MakeSizes(random, scene, limits);
  MakeGeometry(random, scene, mood);
  MakeSettings(random, scene.settings, mood, seed);
  MakeLights(random, scene.settings.lights, mood, seed);
  scene.settings.exposure = MakeExposure(random, scene.settings, mood);
  MakePictures(random, scene, relief);
  scene.name = "scene " + std::to_string(seed) + ": " + std::to_string(scene.width) + " x " +
               std::to_string(scene.height) + (relief ? ", relief, " : ", flat, ") +
               std::to_string(scene.settings.lights.size()) + " lights" +
               (mood == SceneMood::Wild ? ", wild" : "");
  return scene;
}

std::vector<uint8_t> RenderScene(const Scene& scene) {
  std::vector<uint8_t> out = scene.pixels;
  ReferenceRender(scene.settings, scene.geometry, scene.Image(), scene.Heights(), scene.area,
                  out.data(), scene.width * 3);
  return out;
}

uint64_t HashBytes(const std::vector<uint8_t>& bytes) {
  uint64_t hash = 0xCBF29CE484222325U;
  for (const uint8_t byte : bytes)
    hash = (hash ^ byte) * 0x100000001B3U;
  return hash;
}
