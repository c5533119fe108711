// What a row's lights are to its samples, whatever the surface. Compiled once for each instruction
// set.
#if defined(LM_LIGHT_KERNELS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_LIGHT_KERNELS_INL_H
#undef LM_LIGHT_KERNELS_INL_H
#else
#define LM_LIGHT_KERNELS_INL_H
#endif

#include "LM_kernels.h"
#include "LM_vector_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

HWY_INLINE Floats SquaredLength(const LM_kernel_light& light, Floats x) {
  return hn::Add(hn::Add(hn::Mul(x, x), SetFloat(light.ySquare)), SetFloat(light.zSquare));
}

// A table's entries at each index, and after it.
struct Neighbours {
  Floats here, next;
};
HWY_INLINE Neighbours GatherNeighbours(const float* table, Ints index) {
#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3
  // Both in one load of 64 bits, since loads are what a gather costs.
  const hn::RepartitionToWide<IntTag> wide;
  const auto* entries = reinterpret_cast<const int64_t*>(table);
  const auto gather = [&](auto half) {
    const auto offset = hn::ShiftLeft<2>(hn::PromoteTo(wide, half));
    return hn::BitCast(FloatTag(), hn::GatherOffset(wide, entries, offset));
  };
  const Floats low = gather(hn::LowerHalf(HalfIntTag(), index));
  const Floats high = gather(hn::UpperHalf(HalfIntTag(), index));
  return {hn::ConcatEven(FloatTag(), high, low), hn::ConcatOdd(FloatTag(), high, low)};
#else
  return {hn::GatherIndex(FloatTag(), table, index), hn::GatherIndex(FloatTag(), table + 1, index)};
#endif
}

// What a spot lets through to each sample: nothing outside its cone.
struct SpotFalloff {
  Mask inside;
  Floats falloff; // anything outside
};
// smooth: between the table's entries too, for deep pixels.
template <bool smooth>
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
  const Ints index = Truncate(clamped);
  if constexpr (!smooth)
    return {inside, hn::GatherIndex(FloatTag(), light.spreadTable, index)};
  // The last entry stands for itself.
  const Ints first = hn::Min(index, SetInt(LM_SPREAD_ENTRIES - 2));
  const auto [here, next] = GatherNeighbours(light.spreadTable, first);
  const Floats way = hn::Sub(clamped, hn::ConvertTo(FloatTag(), first));
  const Floats between = hn::Add(here, hn::Mul(hn::Sub(next, here), way));
  return {inside, hn::IfThenElse(hn::Eq(clamped, last), next, between)};
}

// The lights as the samples of one vector see them: omnis and directional ones, then those spots
// whose cones reach one of the samples. The first `white` ones are white omnis, the first `weak`
// ones omnis that are not strong, the former among them. Neither is known where the order is the
// block's.
struct SampleLights {
  int white, weak, plain, count;
  const LM_kernel_light* light[LM_MAX_LIGHTS];
  Floats x[LM_MAX_LIGHTS], inverse[LM_MAX_LIGHTS];
  Floats falloff[LM_MAX_LIGHTS]; // of spots
};

template <bool smooth>
HWY_INLINE void AddSpotInReach(const LM_kernel_light& light, Floats x, Floats inverse,
                               SampleLights& at) {
  const SpotFalloff reach = FalloffAt<smooth>(light, x, inverse);
  if (hn::AllFalse(FloatTag(), reach.inside))
    return;
  const int k = at.count++;
  at.light[k] = &light;
  at.x[k] = x;
  at.inverse[k] = inverse;
  at.falloff[k] = hn::IfThenElseZero(reach.inside, reach.falloff);
}

// The way from four vectors of samples to a light, and the inverse lengths.
struct FourWays {
  FourFloats x, inverse;
};
HWY_INLINE FourWays WaysTo(const LM_kernel_light& light, const FourFloats& places) {
  const Floats x = SetFloat(light.x);
  const FourFloats ways = {hn::Sub(x, places.v0), hn::Sub(x, places.v1), hn::Sub(x, places.v2),
                           hn::Sub(x, places.v3)};
  return {ways,
          ReciprocalRoot(FourFloats{SquaredLength(light, ways.v0), SquaredLength(light, ways.v1),
                                    SquaredLength(light, ways.v2), SquaredLength(light, ways.v3)})};
}

HWY_INLINE void AddPlainLight(const LM_kernel_light& light, Floats x, Floats inverse,
                              SampleLights& at) {
  const int k = at.count++;
  at.light[k] = &light;
  at.x[k] = x;
  at.inverse[k] = inverse;
}

HWY_INLINE void AddPlainLights(const LM_kernel_light& light, const FourWays& ways,
                               SampleLights* at) {
  AddPlainLight(light, ways.x.v0, ways.inverse.v0, at[0]);
  AddPlainLight(light, ways.x.v1, ways.inverse.v1, at[1]);
  AddPlainLight(light, ways.x.v2, ways.inverse.v2, at[2]);
  AddPlainLight(light, ways.x.v3, ways.inverse.v3, at[3]);
}
template <bool smooth>
HWY_INLINE void AddSpotsInReach(const LM_kernel_light& light, const FourWays& ways,
                                SampleLights* at) {
  AddSpotInReach<smooth>(light, ways.x.v0, ways.inverse.v0, at[0]);
  AddSpotInReach<smooth>(light, ways.x.v1, ways.inverse.v1, at[1]);
  AddSpotInReach<smooth>(light, ways.x.v2, ways.inverse.v2, at[2]);
  AddSpotInReach<smooth>(light, ways.x.v3, ways.inverse.v3, at[3]);
}

// For four vectors of samples at once, so that their roots do not wait for each other.
HWY_INLINE void LookAtLights(const LM_kernel_lights& lights, const float* places,
                             SampleLights* at) {
  const FloatTag tag;
  const FourFloats four = {hn::LoadU(tag, places), hn::LoadU(tag, places + Lanes()),
                           hn::LoadU(tag, places + 2 * Lanes()),
                           hn::LoadU(tag, places + 3 * Lanes())};
  const LM_kernel_light* const spots = lights.light + lights.omnis;
  const LM_kernel_light* const directionals = spots + lights.spots;
  for (int v = 0; v < 4; ++v)
    at[v].count = 0;
  for (const LM_kernel_light* light = lights.light; light != spots; ++light)
    AddPlainLights(*light, WaysTo(*light, four), at);
  for (const LM_kernel_light* light = directionals; light != lights.light + lights.Count();
       ++light) {
    for (int v = 0; v < 4; ++v)
      AddPlainLight(*light, SetFloat(light->x), SetFloat(light->inverse), at[v]);
  }
  int white = 0;
  while (white < lights.omnis && lights.light[white].gray && !lights.light[white].strong)
    ++white;
  int weak = white;
  while (weak < lights.omnis && !lights.light[weak].strong)
    ++weak;
  for (int v = 0; v < 4; ++v) {
    at[v].white = white;
    at[v].weak = weak;
    at[v].plain = at[v].count;
  }
  for (const LM_kernel_light* light = spots; light != directionals; ++light)
    AddSpotsInReach<false>(*light, WaysTo(*light, four), at);
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
