// Rows in relief: light on the facets between heights. Compiled once for each instruction set.
#if defined(LM_RELIEF_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_RELIEF_KERNEL_INL_H
#undef LM_RELIEF_KERNEL_INL_H
#else
#define LM_RELIEF_KERNEL_INL_H
#endif

#include "LM_facet_kernel-inl.h"
#include "LM_flat_kernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

// One facet of each pixel: its normal, and the view direction (0, 0, 1) mirrored at it.
struct Facet {
  Floats x, y, z;
  Floats mirroredX, mirroredY;
  DoublePair mirroredZ;
};

// What follows from a facet's normal.
HWY_INLINE void CompleteFacet(Facet& facet) {
  const Floats twice = hn::Add(facet.z, facet.z);
  facet.mirroredX = hn::Mul(twice, facet.x);
  facet.mirroredY = hn::Mul(twice, facet.y);
  const DoublePair upwards = Promote(hn::Mul(twice, facet.z));
  const Doubles one = SetDouble(1.0);
  facet.mirroredZ = {Sub(upwards.low, one), Sub(upwards.high, one)};
}

// Of the four facets of each pixel from the i-th on, clockwise from the upper left.
struct Corner {
  int row, column; // of the normals, beyond the pixel's
};
constexpr Corner CORNERS[LM_FACETS] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};

HWY_INLINE Facet FacetAt(const LM_normal_row* normals, int i, int corner) {
  const LM_normal_row& row = normals[CORNERS[corner].row];
  const int at = i + CORNERS[corner].column;
  const FloatTag tag;
  Facet out;
  out.x = hn::LoadU(tag, row.x + at);
  out.y = hn::LoadU(tag, row.y + at);
  out.z = hn::LoadU(tag, row.z + at);
  CompleteFacet(out);
  return out;
}

// Whether all facets around a vector of pixels are level.
HWY_INLINE bool IsLevel(const LM_normal_row* normals, int i) {
  const IntTag ints;
  Ints leaning = hn::Zero(ints);
  for (const Corner& corner : CORNERS) {
    const LM_normal_row& row = normals[corner.row];
    for (const float* component : {row.x, row.y})
      leaning =
          hn::Or(leaning, hn::BitCast(ints, hn::LoadU(FloatTag(), component + i + corner.column)));
  }
  return hn::AllTrue(ints, hn::Eq(leaning, hn::Zero(ints)));
}

// How much of a light's colour a facet gives back, scattered and mirrored.
struct FacetShare {
  Floats diffuse, specular;
};
template <bool spot>
HWY_INLINE FacetShare ShareOf(const LM_kernel_light& light, const Facet& facet, Floats x,
                              Floats inverse, Floats falloff) {
  const Floats zero = hn::Zero(FloatTag());
  const Floats y = SetFloat(light.y);
  const Floats inPlane = hn::Add(hn::Mul(facet.x, x), hn::Mul(facet.y, y));
  const Floats facing = hn::Add(inPlane, hn::Mul(facet.z, SetFloat(light.z)));
  const Floats lit = hn::Max(facing, zero);

  const DoublePair sideways =
      Promote(hn::Add(hn::Mul(facet.mirroredX, x), hn::Mul(facet.mirroredY, y)));
  const Doubles z = SetDouble(light.zWide);
  const Floats mirrored = Demote({Add(sideways.low, Mul(facet.mirroredZ.low, z)),
                                  Add(sideways.high, Mul(facet.mirroredZ.high, z))});
  const Floats seen = hn::IfThenElseZero(hn::Gt(facing, zero), hn::Max(mirrored, zero));
  const Floats highlight = hn::Mul(hn::Mul(seen, seen), inverse);
  return {hn::Mul(spot ? hn::Mul(lit, falloff) : lit, inverse),
          spot ? hn::Mul(highlight, falloff) : highlight};
}

template <bool spot, class Sums>
HWY_INLINE void AddFacetLight(Sums& sums, const LM_kernel_light& light, const Facet& facet,
                              Floats x, Floats inverse, Floats falloff) {
  const FacetShare share = ShareOf<spot>(light, facet, x, inverse, falloff);
  AddColor(sums.diffuse, light, share.diffuse);
  AddColor(sums.specular, light, share.specular);
}

HWY_INLINE LightSums LightFacet(LightSums sums, const SampleLights& at, const Facet& facet) {
  const Floats none = hn::Zero(FloatTag());
  int k = 0;
  for (; k < at.plain; ++k)
    AddFacetLight<false>(sums, *at.light[k], facet, at.x[k], at.inverse[k], none);
  for (; k < at.count; ++k)
    AddFacetLight<true>(sums, *at.light[k], facet, at.x[k], at.inverse[k], at.falloff[k]);
  return sums;
}

// What each light gives to each facet of a vector of pixels. All are found before one is combined:
// the way from a facet to its bytes is long, and none waits for another.
struct FacetShares {
  FacetShare of[LM_MAX_LIGHTS][LM_FACETS];
};
struct FourFacets {
  Facet of[LM_FACETS];
};
HWY_INLINE FourFacets FacetsAt(const LM_normal_row* normals, int i) {
  return {{FacetAt(normals, i, 0), FacetAt(normals, i, 1), FacetAt(normals, i, 2),
           FacetAt(normals, i, 3)}};
}
template <bool spot>
HWY_INLINE void FindShares(const SampleLights& at, int k, const FourFacets& facets,
                           FacetShares& shares) {
  const LM_kernel_light& light = *at.light[k];
  const Floats falloff = spot ? at.falloff[k] : at.inverse[k];
  shares.of[k][0] = ShareOf<spot>(light, facets.of[0], at.x[k], at.inverse[k], falloff);
  shares.of[k][1] = ShareOf<spot>(light, facets.of[1], at.x[k], at.inverse[k], falloff);
  shares.of[k][2] = ShareOf<spot>(light, facets.of[2], at.x[k], at.inverse[k], falloff);
  shares.of[k][3] = ShareOf<spot>(light, facets.of[3], at.x[k], at.inverse[k], falloff);
}
// Not inlined, here and in the deep kernel: it is long, and each form of material would hold it.
HWY_NOINLINE void FindShares(const SampleLights& at, const LM_normal_row* normals, int i,
                             FacetShares& shares) {
  const FourFacets facets = FacetsAt(normals, i);
  int k = 0;
  for (; k < at.plain; ++k)
    FindShares<false>(at, k, facets, shares);
  for (; k < at.count; ++k)
    FindShares<true>(at, k, facets, shares);
}
template <class Sums>
HWY_INLINE Sums LightFacet(Sums sums, const SampleLights& at, const FacetShares& shares,
                           int facet) {
  for (int k = 0; k < at.count; ++k) {
    AddColor(sums.diffuse, *at.light[k], shares.of[k][facet].diffuse);
    AddColor(sums.specular, *at.light[k], shares.of[k][facet].specular);
  }
  return sums;
}

// Four facets of the same weight: flat ones that the plain code merges have the same colour, so the
// mean is the same.
template <class Combine>
HWY_INLINE void ReliefRow(const LM_kernel_lights& lights, const Combine& combine, const float* x,
                          int n, const LM_normal_row* normals, const LM_kernel_planes& planes) {
  SampleLights fourAt[4];
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i / Lanes() % 4;
    if (v == 0)
      LookAtLights(lights, x + i, fourAt);
    const SampleLights& at = fourAt[v];
    const PlaneInts source = LoadPlanes(planes, i);
    if (IsLevel(normals, i)) {
      const Facet level = FacetAt(normals, i, 0);
      StorePlanes(combine(LightFacet(BeginSums(lights), at, level), source), planes, i);
      continue;
    }
    PlaneInts total = {SetInt(0), SetInt(0), SetInt(0)};
    FacetShares shares;
    FindShares(at, normals, i, shares);
    for (int facet = 0; facet < LM_FACETS; ++facet) {
      const PlaneInts shaded = combine(LightFacet(BeginSums(lights), at, shares, facet), source);
      total.p0 = hn::Add(total.p0, shaded.p0);
      total.p1 = hn::Add(total.p1, shaded.p1);
      total.p2 = hn::Add(total.p2, shaded.p2);
    }
    StorePlanes(
        {hn::ShiftRight<2>(total.p0), hn::ShiftRight<2>(total.p1), hn::ShiftRight<2>(total.p2)},
        planes, i);
  }
}

void LightRelief(const LM_kernel_lights& lights, const LM_kernel_surface& surface, const float* x,
                 int n, const LM_normal_row* normals, const LM_kernel_planes& planes) {
  WithCombiner(surface,
               [&](const auto& combine) { ReliefRow(lights, combine, x, n, normals, planes); });
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
