// Sums of light that are kept, and their combination with the pixels of one picture after the
// other. Compiled once for each instruction set.
#if defined(LM_KEPT_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_KEPT_KERNEL_INL_H
#undef LM_KEPT_KERNEL_INL_H
#else
#define LM_KEPT_KERNEL_INL_H
#endif

#include "LM_relief_kernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

HWY_INLINE void StorePlaneInts(const PlaneInts& values, int32_t* kept) {
  const IntTag ints;
  hn::StoreU(values.p0, ints, kept);
  hn::StoreU(values.p1, ints, kept + Lanes());
  hn::StoreU(values.p2, ints, kept + 2 * Lanes());
}
HWY_INLINE PlaneInts LoadPlaneInts(const int32_t* kept) {
  const IntTag ints;
  return {hn::LoadU(ints, kept), hn::LoadU(ints, kept + Lanes()),
          hn::LoadU(ints, kept + 2 * Lanes())};
}

HWY_INLINE void StoreSums(const LightSums& sums, int32_t* kept) {
  StorePlaneInts(sums.diffuse, kept);
  StorePlaneInts(sums.specular, kept + LM_PLANES * Lanes());
}

HWY_INLINE PlaneInts AddPlanes(const PlaneInts& a, const PlaneInts& b) {
  return {hn::Add(a.p0, b.p0), hn::Add(a.p1, b.p1), hn::Add(a.p2, b.p2)};
}

void KeepSums(const LM_kernel_lights& lights, const float* x, int n, const int32_t* const* heights,
              int32_t* kept) {
  SampleLights fourAt[4];
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i / Lanes() % 4;
    if (v == 0)
      LookAtLights(lights, x + i, fourAt);
    if (heights == nullptr) {
      StoreSums(SumFlatLights(BeginSums(lights), fourAt[v]), kept + i * LM_KEPT_SUMS);
      continue;
    }
    const PixelRelief relief = ReliefAt(heights, i);
    const FourFloats inverse = InverseNormals(relief);
    const Floats roots[LM_FACETS] = {inverse.v0, inverse.v1, inverse.v2, inverse.v3};
    int32_t* of = kept + i * LM_KEPT_SUMS * LM_FACETS;
    for (int facet = 0; facet < LM_FACETS; ++facet, of += LM_KEPT_SUMS * Lanes())
      StoreSums(LightFacet(BeginSums(lights), fourAt[v], FacetOf(relief.quad[facet], roots[facet])),
                of);
  }
}

void CombineKept(const LM_kernel_surface& surface, const int32_t* ambient, const int32_t* kept,
                 int facets, int n, const LM_kernel_planes& planes) {
  WithCombiner(surface, [&](const auto& combine) {
    const PlaneInts always = SetPlanes(ambient);
    for (int i = 0; i < n; i += Lanes()) {
      const PlaneInts source = LoadPlanes(planes, i);
      const auto lit = [&](int facet) {
        const int32_t* sums = kept + (i * facets + facet * Lanes()) * LM_KEPT_SUMS;
        return combine(LightSums{AddPlanes(LoadPlaneInts(sums), always),
                                 LoadPlaneInts(sums + LM_PLANES * Lanes())},
                       source);
      };
      PlaneInts out = lit(0);
      if (facets == LM_FACETS) {
        out = AddPlanes(AddPlanes(out, lit(1)), AddPlanes(lit(2), lit(3)));
        out = {hn::ShiftRight<2>(out.p0), hn::ShiftRight<2>(out.p1), hn::ShiftRight<2>(out.p2)};
      }
      StorePlanes(out, planes, i);
    }
  });
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
