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

HWY_INLINE Floats InverseLength(const LM_kernel_light& light, Floats x) {
  const Floats inPlane = hn::Add(hn::Mul(x, x), SetFloat(light.ySquare));
  return ReciprocalRoot(hn::Add(inPlane, SetFloat(light.zSquare)));
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

HWY_INLINE void AddFlatOmni(LightSums& sums, const LM_kernel_light& light, Floats place) {
  const Floats x = hn::Sub(SetFloat(light.x), place);
  const Floats inverse = InverseLength(light, x);
  AddColor(sums.diffuse, light, hn::Mul(SetFloat(light.z), inverse));
  AddColor(sums.specular, light, hn::Mul(SetFloat(light.zSquare), inverse));
}

HWY_INLINE void AddFlatSpot(LightSums& sums, const LM_kernel_light& light, Floats place) {
  const Floats x = hn::Sub(SetFloat(light.x), place);
  const Floats inverse = InverseLength(light, x);
  const SpotFalloff at = FalloffAt(light, x, inverse);
  if (hn::AllFalse(FloatTag(), at.inside))
    return;
  const Floats diffuse = hn::Mul(hn::Mul(SetFloat(light.z), at.falloff), inverse);
  const Floats specular = hn::Mul(hn::Mul(SetFloat(light.zSquare), inverse), at.falloff);
  AddColor(sums.diffuse, light, hn::IfThenElseZero(at.inside, diffuse));
  AddColor(sums.specular, light, hn::IfThenElseZero(at.inside, specular));
}

// The sums of one vector stay in registers across all lights.
template <class Combine>
HWY_INLINE void FlatRow(const LM_kernel_lights& lights, const Combine& combine, const float* x,
                        int n, const LM_kernel_planes& planes) {
  const LM_kernel_light* const firstSpot = lights.light + lights.omnis;
  const LM_kernel_light* const end = firstSpot + lights.spots;
  for (int i = 0; i < n; i += Lanes()) {
    const Floats place = hn::LoadU(FloatTag(), x + i);
    LightSums sums = {SetPlanes(lights.diffuse), SetPlanes(lights.specular)};
    for (const LM_kernel_light* light = lights.light; light != firstSpot; ++light)
      AddFlatOmni(sums, *light, place);
    for (const LM_kernel_light* light = firstSpot; light != end; ++light)
      AddFlatSpot(sums, *light, place);
    StorePlanes(combine(sums, LoadPlanes(planes, i)), planes, i);
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
