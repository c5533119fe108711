// Rows of a flat surface. Compiled once for each instruction set.
#if defined(LM_FLAT_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_FLAT_KERNEL_INL_H
#undef LM_FLAT_KERNEL_INL_H
#else
#define LM_FLAT_KERNEL_INL_H
#endif

#include "LM_pixel_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

HWY_INLINE Floats SquaredLength(const LM_kernel_light& light, Floats x) {
  return hn::Add(hn::Add(hn::Mul(x, x), SetFloat(light.ySquare)), SetFloat(light.zSquare));
}

// What a spot lets through to each sample: nothing outside its cone.
struct SpotFalloff {
  Mask inside;
  Floats falloff; // anything outside
};
HWY_INLINE SpotFalloff FalloffAt(const LM_kernel_light& light, Floats x, Floats inverse) {
  const Floats inPlane = hn::Add(hn::Mul(SetFloat(light.axisX), x), SetFloat(light.axisY));
  const Floats along = hn::Add(inPlane, SetFloat(light.axisZ));
  const Floats cosine = hn::Mul(hn::Neg(along), inverse);
  const Mask inside = hn::Gt(cosine, SetFloat(light.cosCutoff));
  if (hn::AllFalse(FloatTag(), inside))
    return {inside, hn::Zero(FloatTag())};
  const Floats entry =
      hn::Mul(hn::Sub(cosine, SetFloat(light.spreadMinCos)), SetFloat(light.spreadScale));
  // Clamped before it is truncated, which is the same for every number.
  const Floats last = SetFloat(static_cast<float>(LM_SPREAD_ENTRIES - 1));
  const Floats clamped = hn::Min(hn::Max(entry, hn::Zero(FloatTag())), last);
  return {inside, hn::GatherIndex(FloatTag(), light.spreadTable, Truncate(clamped))};
}

// The lights as one vector of samples sees them.
struct FlatLights {
  Floats inverse[LM_MAX_LIGHTS];
  SpotFalloff spot[LM_MAX_LIGHTS];
};

// For four vectors at once: roots take many steps, each of which waits for the one before.
HWY_INLINE void LookAtFlatLights(const LM_kernel_lights& lights, const float* places,
                                 FlatLights* at) {
  const Floats place0 = hn::LoadU(FloatTag(), places);
  const Floats place1 = hn::LoadU(FloatTag(), places + Lanes());
  const Floats place2 = hn::LoadU(FloatTag(), places + 2 * Lanes());
  const Floats place3 = hn::LoadU(FloatTag(), places + 3 * Lanes());
  for (int k = 0; k < lights.omnis + lights.spots; ++k) {
    const LM_kernel_light& light = lights.light[k];
    const Floats x = SetFloat(light.x);
    const FourFloats ways = {hn::Sub(x, place0), hn::Sub(x, place1), hn::Sub(x, place2),
                             hn::Sub(x, place3)};
    const FourFloats inverse =
        ReciprocalRoot(FourFloats{SquaredLength(light, ways.v0), SquaredLength(light, ways.v1),
                                  SquaredLength(light, ways.v2), SquaredLength(light, ways.v3)});
    at[0].inverse[k] = inverse.v0;
    at[1].inverse[k] = inverse.v1;
    at[2].inverse[k] = inverse.v2;
    at[3].inverse[k] = inverse.v3;
    if (k < lights.omnis)
      continue;
    at[0].spot[k] = FalloffAt(light, ways.v0, inverse.v0);
    at[1].spot[k] = FalloffAt(light, ways.v1, inverse.v1);
    at[2].spot[k] = FalloffAt(light, ways.v2, inverse.v2);
    at[3].spot[k] = FalloffAt(light, ways.v3, inverse.v3);
  }
}

HWY_INLINE void AddFlatOmni(LightSums& sums, const LM_kernel_light& light, Floats inverse) {
  AddColor(sums.diffuse, light, hn::Mul(SetFloat(light.z), inverse));
  AddColor(sums.specular, light, hn::Mul(SetFloat(light.zSquare), inverse));
}

HWY_INLINE void AddFlatSpot(LightSums& sums, const LM_kernel_light& light, Floats inverse,
                            const SpotFalloff& at) {
  if (hn::AllFalse(FloatTag(), at.inside))
    return;
  const Floats diffuse = hn::Mul(hn::Mul(SetFloat(light.z), at.falloff), inverse);
  const Floats specular = hn::Mul(hn::Mul(SetFloat(light.zSquare), inverse), at.falloff);
  AddColor(sums.diffuse, light, hn::IfThenElseZero(at.inside, diffuse));
  AddColor(sums.specular, light, hn::IfThenElseZero(at.inside, specular));
}

// The sums of one vector stay in registers across all lights.
HWY_INLINE LightSums SumFlatLights(const LM_kernel_lights& lights, const FlatLights& at) {
  LightSums sums = {SetPlanes(lights.diffuse), SetPlanes(lights.specular)};
  int k = 0;
  for (; k < lights.omnis; ++k)
    AddFlatOmni(sums, lights.light[k], at.inverse[k]);
  for (; k < lights.omnis + lights.spots; ++k)
    AddFlatSpot(sums, lights.light[k], at.inverse[k], at.spot[k]);
  return sums;
}

template <class Combine>
HWY_INLINE void FlatRow(const LM_kernel_lights& lights, const Combine& combine, const float* x,
                        int n, const LM_kernel_planes& planes) {
  FlatLights at[4];
  for (int first = 0; first < n; first += 4 * Lanes()) {
    LookAtFlatLights(lights, x + first, at);
    for (int v = 0; v < 4; ++v) {
      const int i = first + v * Lanes();
      StorePlanes(combine(SumFlatLights(lights, at[v]), LoadPlanes(planes, i)), planes, i);
    }
  }
}

void LightFlat(const LM_kernel_lights& lights, const LM_kernel_surface& surface, const float* x,
               int n, const LM_kernel_planes& planes) {
  WithCombiner(surface, [&](const auto& combine) { FlatRow(lights, combine, x, n, planes); });
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
