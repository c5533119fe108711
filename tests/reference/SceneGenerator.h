// Scenes for comparing shaders: settings, lights and pictures made from a number alone, the same on
// every machine and with every library.
#pragma once

#include "Reference.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

// A small random number generator (splitmix64); integer arithmetic only.
class SceneRandom {
public:
  explicit SceneRandom(uint64_t seed) : state(seed) {}
  uint64_t Next();
  int Between(int low, int high); // both included
  bool OneIn(int n) { return Between(1, n) == 1; }
  int OneOf(std::initializer_list<int> values);

private:
  uint64_t state;
};

// How far the settings go.
enum class SceneMood {
  Usual, // what the dialog's sliders and drags can reach
  Wild   // whatever a well-formed style file may hold
};

struct Scene {
  std::string name; // what to print when it fails
  ReferenceSettings settings;
  ReferenceGeometry geometry;
  int width = 0, height = 0;
  ReferenceArea area;           // in the image, never empty
  std::vector<uint8_t> pixels;  // width x height x 3
  std::vector<uint8_t> heights; // width x height, or empty: a flat surface

  ReferenceImage Image() const { return {width, height, pixels.data(), width * 3}; }
  ReferencePlane Heights() const { return {heights.empty() ? nullptr : heights.data(), width, 1}; }
};

struct SceneLimits {
  int maxEdge = 140;     // pixels
  int maxPixels = 10000; // of the whole image
};

// One light of the given type.
ReferenceLight MakeLight(SceneRandom& random, int32_t type, SceneMood mood);
// Scene number `seed`. Numbers in a row go through 1 to 16 lights (and none now and then), moods,
// flat and relief, and all three forms of material.
Scene MakeScene(uint64_t seed, const SceneLimits& limits = {});

// The picture that ReferenceRender makes of a scene: width x height x 3, the source around the
// area.
std::vector<uint8_t> RenderScene(const Scene& scene);
// 64-bit FNV-1a.
uint64_t HashBytes(const std::vector<uint8_t>& bytes);
