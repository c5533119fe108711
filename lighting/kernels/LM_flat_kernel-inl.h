// Rows of a flat surface. Compiled once for each instruction set.
#if defined(LM_FLAT_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_FLAT_KERNEL_INL_H
#undef LM_FLAT_KERNEL_INL_H
#else
#define LM_FLAT_KERNEL_INL_H
#endif

#include "LM_arithmetic.h"
#include "LM_light_kernels-inl.h"
#include "LM_pixel_kernels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

// sums: LightSums, or those of deep pixels.
template <class Sums>
HWY_INLINE void AddFlatOmni(Sums& sums, const LM_kernel_light& light, Floats inverse) {
  AddColor(sums.diffuse, light, hn::Mul(SetFloat(light.z), inverse));
  AddColor(sums.specular, light, hn::Mul(SetFloat(light.zSquare), inverse));
}

template <class Sums>
HWY_INLINE void AddFlatSpot(Sums& sums, const LM_kernel_light& light, Floats inverse,
                            Floats falloff) {
  AddColor(sums.diffuse, light, hn::Mul(hn::Mul(SetFloat(light.z), falloff), inverse));
  AddColor(sums.specular, light, hn::Mul(hn::Mul(SetFloat(light.zSquare), inverse), falloff));
}

// What every sample has before its lights.
HWY_INLINE LightSums BeginSums(const LM_kernel_lights& lights) {
  return {SetPlanes(lights.diffuse), SetPlanes(lights.specular)};
}

// Lights from the k-th to the one before `end`, none of them strong; each adds PRODUCT_BIAS.
template <class Sums>
HWY_INLINE void AddFlatOmnis(Sums& sums, const SampleLights& at, int k, int end) {
  for (; k < end; ++k) {
    const LM_kernel_light& light = *at.light[k];
    AddBiased(sums.diffuse, light, hn::Mul(SetFloat(light.z), at.inverse[k]));
    AddBiased(sums.specular, light, hn::Mul(SetFloat(light.zSquare), at.inverse[k]));
  }
}

// The lights that are not strong.
HWY_INLINE LightSums SumWeakOmnis(LightSums sums, const SampleLights& at) {
  WhiteSums white = {hn::Zero(IntTag()), hn::Zero(IntTag())};
  AddFlatOmnis(white, at, 0, at.white);
  AddFlatOmnis(sums, at, at.white, at.weak);
  const Ints bias = SetInt(LM_WrapMultiply(at.weak, PRODUCT_BIAS));
  return {AddToAll(sums.diffuse, hn::Sub(white.diffuse, bias)),
          AddToAll(sums.specular, hn::Sub(white.specular, bias))};
}

// From the k-th light on.
template <class Sums> HWY_INLINE Sums SumFlatLightsFrom(int k, Sums sums, const SampleLights& at) {
  for (; k < at.plain; ++k)
    AddFlatOmni(sums, *at.light[k], at.inverse[k]);
  for (; k < at.count; ++k)
    AddFlatSpot(sums, *at.light[k], at.inverse[k], at.falloff[k]);
  return sums;
}

// The sums of one vector stay in registers across all lights.
HWY_INLINE LightSums SumFlatLights(const LightSums& sums, const SampleLights& at) {
  return SumFlatLightsFrom(at.weak, at.weak > 0 ? SumWeakOmnis(sums, at) : sums, at);
}
HWY_INLINE WhiteSums SumFlatLights(const WhiteSums& sums, const SampleLights& at) {
  return SumFlatLightsFrom(0, sums, at);
}

template <class Combine>
HWY_INLINE void FlatRow(const LM_kernel_lights& lights, const Combine& combine, const float* x,
                        int n, const LM_kernel_planes& planes) {
  SampleLights at[4];
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i / Lanes() % 4;
    if (v == 0)
      LookAtLights(lights, x + i, at);
    StorePlanes(combine(SumFlatLights(BeginSums(lights), at[v]), LoadPlanes(planes, i)), planes, i);
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
