// Sums of light for samples that are kept with what each light gives them. Compiled once for each
// instruction set.
#if defined(LM_SUM_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_SUM_KERNEL_INL_H
#undef LM_SUM_KERNEL_INL_H
#else
#define LM_SUM_KERNEL_INL_H
#endif

#include <algorithm>

#include "LM_relief_kernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

HWY_INLINE void StoreSums(const PlaneInts& sums, LM_color96* out) {
  hn::StoreInterleaved4(sums.p0, sums.p1, sums.p2, hn::Zero(IntTag()), IntTag(), out->component);
}
HWY_INLINE PlaneInts LoadSums(const LM_color96* sums) {
  PlaneInts out;
  Ints unused;
  hn::LoadInterleaved4(IntTag(), sums->component, out.p0, out.p1, out.p2, unused);
  return out;
}
HWY_INLINE PlaneInts Add(const PlaneInts& a, const PlaneInts& b) {
  return {hn::Add(a.p0, b.p0), hn::Add(a.p1, b.p1), hn::Add(a.p2, b.p2)};
}
HWY_INLINE LightSums NoLight() {
  const Ints none = hn::Zero(IntTag());
  return {{none, none, none}, {none, none, none}};
}

HWY_INLINE Facet LoadFacet(const LM_vector3f* normals) {
  Facet out;
  hn::LoadInterleaved3(FloatTag(), &normals->x, out.x, out.y, out.z);
  CompleteFacet(out);
  return out;
}

// What one light gives to a vector of samples. facet: read in relief only.
template <bool relief>
HWY_INLINE LightSums PlainPart(const LM_kernel_light& light, Floats x, Floats inverse,
                               const Facet& facet) {
  LightSums part = NoLight();
  if constexpr (relief)
    AddFacetLight<false>(part, light, facet, x, inverse, inverse);
  else
    AddFlatOmni(part, light, inverse);
  return part;
}
template <bool relief>
HWY_INLINE LightSums SpotPart(const LM_kernel_light& light, Floats x, Floats inverse,
                              const Facet& facet) {
  LightSums part = NoLight();
  const SpotFalloff reach = FalloffAt<false>(light, x, inverse);
  if (hn::AllFalse(FloatTag(), reach.inside))
    return part;
  const Floats falloff = hn::IfThenElseZero(reach.inside, reach.falloff);
  if constexpr (relief)
    AddFacetLight<true>(part, light, facet, x, inverse, falloff);
  else
    AddFlatSpot(part, light, inverse, falloff);
  return part;
}

HWY_INLINE void KeepPart(const LM_kernel_part& kept, int i, const LightSums& part,
                         LightSums& sums) {
  sums.diffuse = Add(sums.diffuse, part.diffuse);
  sums.specular = Add(sums.specular, part.specular);
  if (kept.diffuse == nullptr)
    return;
  StoreSums(part.diffuse, kept.diffuse + i);
  StoreSums(part.specular, kept.specular + i);
}

// One vector of samples, the first of them sample i.
template <bool relief>
HWY_INLINE void SumVector(const LM_kernel_lights& lights, const LM_kernel_part* parts,
                          const LM_kernel_samples& samples, int i) {
  Floats place, row;
  hn::LoadInterleaved2(FloatTag(), &samples.positions[i].x, place, row);
  Facet facet = {};
  if constexpr (relief)
    facet = LoadFacet(samples.normals + i);
  LightSums sums = {LoadSums(samples.diffuse + i), LoadSums(samples.specular + i)};
  const int local = lights.omnis + lights.spots;
  for (int k = 0; k < local; ++k) {
    const LM_kernel_light& light = lights.light[k];
    const Floats x = hn::Sub(SetFloat(light.x), place);
    const Floats inverse = ReciprocalRoot(SquaredLength(light, x));
    KeepPart(parts[k], i,
             k < lights.omnis ? PlainPart<relief>(light, x, inverse, facet)
                              : SpotPart<relief>(light, x, inverse, facet),
             sums);
  }
  for (int k = local; k < lights.Count(); ++k) {
    const LM_kernel_light& light = lights.light[k];
    KeepPart(parts[k], i,
             PlainPart<relief>(light, SetFloat(light.x), SetFloat(light.inverse), facet), sums);
  }
  StoreSums(sums.diffuse, samples.diffuse + i);
  StoreSums(sums.specular, samples.specular + i);
}

// The last samples, less than a vector: in room of their own, since nothing lies after them.
template <bool relief>
void SumRest(const LM_kernel_lights& lights, const LM_kernel_part* parts,
             const LM_kernel_samples& samples, int first) {
  constexpr int ROOM = static_cast<int>(hn::MaxLanes(FloatTag()));
  const int n = samples.count - first;
  LM_vector2f positions[ROOM];
  LM_vector3f normals[ROOM];
  LM_color96 diffuse[ROOM] = {}, specular[ROOM] = {};
  LM_color96 parted[2 * LM_MAX_LIGHTS][ROOM];
  LM_kernel_part own[LM_MAX_LIGHTS] = {};
  for (int i = 0; i < ROOM; ++i) {
    const int from = first + std::min(i, n - 1);
    positions[i] = samples.positions[from];
    if (relief)
      normals[i] = samples.normals[from];
  }
  std::copy_n(samples.diffuse + first, n, diffuse);
  std::copy_n(samples.specular + first, n, specular);
  for (int k = 0; k < lights.Count(); ++k) {
    if (parts[k].diffuse != nullptr)
      own[k] = {parted[2 * k], parted[2 * k + 1]};
  }
  SumVector<relief>(lights, own, {positions, normals, n, diffuse, specular}, 0);
  std::copy_n(diffuse, n, samples.diffuse + first);
  std::copy_n(specular, n, samples.specular + first);
  for (int k = 0; k < lights.Count(); ++k) {
    if (parts[k].diffuse == nullptr)
      continue;
    std::copy_n(own[k].diffuse, n, parts[k].diffuse + first);
    std::copy_n(own[k].specular, n, parts[k].specular + first);
  }
}

template <bool relief>
void SumRow(const LM_kernel_lights& lights, const LM_kernel_part* parts,
            const LM_kernel_samples& samples) {
  int i = 0;
  for (; i + Lanes() <= samples.count; i += Lanes())
    SumVector<relief>(lights, parts, samples, i);
  if (i < samples.count)
    SumRest<relief>(lights, parts, samples, i);
}

void SumLights(const LM_kernel_lights& lights, const LM_kernel_part* parts,
               const LM_kernel_samples& samples) {
  if (samples.normals != nullptr)
    SumRow<true>(lights, parts, samples);
  else
    SumRow<false>(lights, parts, samples);
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
