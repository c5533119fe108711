// The shading parameter block: all that lighting an image depends on, but for the pixels.
#pragma once

#include <cstddef>

#include "LM_light.h"

constexpr int32_t LM_PARAMS_MAGIC = 0x05BF44FD;
constexpr int32_t LM_PARAMS_VERSION = 1;

// Plain data in this machine's own layout. A host keeps one between the plug-in's runs.
struct foo {
  int32_t magic;
  int32_t version;
  int16_t reserved;
  int16_t gloss;
  // Below 1: white highlights; above 255: coloured by the surface; between: a blend.
  int16_t material;
  int16_t exposure;   // final gain
  LM_color96 ambient; // ambient colour times ambience over 64
  float worldScale;   // shading units across the filter rectangle
  uint16_t numLights;
  LM_light lights[LM_MAX_LIGHTS]; // the switched-on lights, packed from 0
  int16_t bumpChannel;            // 1-based, 0 for none
  int32_t bumpHeight;             // twice the amplitude, negative when black is high
};

#if UINTPTR_MAX == 0xffffffffu
static_assert(offsetof(foo, gloss) == 10 && offsetof(foo, material) == 12 &&
              offsetof(foo, exposure) == 14);
static_assert(offsetof(foo, ambient) == 16 && offsetof(foo, worldScale) == 32);
static_assert(offsetof(foo, numLights) == 36 && offsetof(foo, lights) == 40);
static_assert(offsetof(foo, bumpChannel) == 66728 && offsetof(foo, bumpHeight) == 66732);
static_assert(sizeof(foo) == 66736);
#endif

// Clears a block and writes its header.
void LM_InitParameters(foo* params);

// Marks of lights: bit j stands for the block's light j.
constexpr uint32_t LM_ALL_LIGHTS = ~0U;

// Lights in the block, never more than it holds.
inline int LM_LightCount(const foo* params) {
  return params->numLights < LM_MAX_LIGHTS ? params->numLights : LM_MAX_LIGHTS;
}

// Forgets the cache pointers of all lights: they belong to a preview, and a kept block outlives it.
void LM_DetachParameterCaches(foo* params);
