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

using TailTag = hn::Rebind<int8_t, FloatTag>;

// A vector of samples among the kept ones: that facet, of `facets`, of the pixels from the first
// on.
struct KeptPlace {
  int first, facets, facet;
  // Of one of `planes` planes, in words where each sample of a plane has one.
  HWY_INLINE ptrdiff_t Of(int plane, int planes) const {
    return ptrdiff_t{first} * facets * planes + ptrdiff_t{plane * facets + facet} * Lanes();
  }
};

// One plane of sums, kept in the `plane`-th place.
HWY_INLINE void StorePlane(Ints diffuse, Ints specular, const LM_kept_run& kept,
                           const KeptPlace& place, int plane) {
  if (kept.tails == nullptr) {
    int32_t* const at = kept.words + 2 * place.Of(plane, LM_PLANES);
    hn::StoreU(diffuse, IntTag(), at);
    hn::StoreU(specular, IntTag(), at + Lanes());
    return;
  }
  const ptrdiff_t at = place.Of(plane, kept.planes);
  const Ints low = hn::And(hn::ShiftRight<8>(specular), SetInt(255));
  hn::StoreU(hn::Or(hn::ShiftLeft<8>(diffuse), low), IntTag(), kept.words + at);
  hn::StoreU(hn::DemoteTo(TailTag(), hn::ShiftRight<16>(specular)), TailTag(), kept.tails + at);
}

HWY_INLINE void StoreSums(const LightSums& sums, const LM_kept_run& kept, const KeptPlace& place) {
  StorePlane(sums.diffuse.p0, sums.specular.p0, kept, place, 0);
  if (kept.planes == 1)
    return;
  StorePlane(sums.diffuse.p1, sums.specular.p1, kept, place, 1);
  StorePlane(sums.diffuse.p2, sums.specular.p2, kept, place, 2);
}

void KeepSums(const LM_kernel_lights& lights, const float* x, int n, const LM_normal_row* normals,
              const LM_kept_run& kept) {
  SampleLights fourAt[4];
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i / Lanes() % 4;
    if (v == 0)
      LookAtLights(lights, x + i, fourAt);
    if (normals == nullptr) {
      StoreSums(SumFlatLights(BeginSums(lights), fourAt[v]), kept, {i, 1, 0});
      continue;
    }
    FacetShares shares;
    FindShares(fourAt[v], normals, i, shares);
    for (int facet = 0; facet < LM_FACETS; ++facet)
      StoreSums(LightFacet(BeginSums(lights), fourAt[v], shares, facet), kept,
                {i, LM_FACETS, facet});
  }
}

// One plane of a vector of samples.
struct Shine {
  Ints light, highlight;
};

struct WideSums {
  explicit WideSums(const LM_kept_run& run) : words(run.words) {}
  HWY_INLINE Shine operator()(const KeptPlace& place, int plane) const {
    const int32_t* const at = words + 2 * place.Of(plane, LM_PLANES);
    return {hn::LoadU(IntTag(), at), hn::ShiftRight<8>(hn::LoadU(IntTag(), at + Lanes()))};
  }
  const int32_t* words;
};

template <int planes> struct TightSums {
  explicit TightSums(const LM_kept_run& run) : words(run.words), tails(run.tails) {}
  HWY_INLINE Shine operator()(const KeptPlace& place, int plane) const {
    const ptrdiff_t at = place.Of(planes == 1 ? 0 : plane, planes);
    const Ints word = hn::LoadU(IntTag(), words + at);
    const Ints tail = hn::PromoteTo(IntTag(), hn::LoadU(TailTag(), tails + at));
    const Ints low = hn::And(word, SetInt(255));
    return {hn::ShiftRight<8>(word), hn::Or(hn::ShiftLeft<8>(tail), low)};
  }
  const int32_t* words;
  const int8_t* tails;
};

// One plane of the vector of pixels from the first on.
template <class Combine, class Sums>
HWY_INLINE Ints LitPlane(const Combine& combine, const Sums& sums, int first, int facets, int plane,
                         Ints always, Ints source) {
  const auto lit = [&](int facet) HWY_ATTR {
    const Shine shine = sums(KeptPlace{first, facets, facet}, plane);
    return combine.Plane(hn::Add(shine.light, always), shine.highlight, source);
  };
  if (facets == 1)
    return lit(0);
  return hn::ShiftRight<2>(hn::Add(hn::Add(lit(0), lit(1)), hn::Add(lit(2), lit(3))));
}

// Plane by plane, so that all stays in registers.
template <class Combine, class Sums>
HWY_INLINE void CombineRow(const Combine& combine, const Sums& sums, const PlaneInts& always,
                           int facets, int n, const LM_kernel_planes& planes) {
  for (int i = 0; i < n; i += Lanes()) {
    const PlaneInts source = LoadPlanes(planes, i);
    StorePlanes({LitPlane(combine, sums, i, facets, 0, always.p0, source.p0),
                 LitPlane(combine, sums, i, facets, 1, always.p1, source.p1),
                 LitPlane(combine, sums, i, facets, 2, always.p2, source.p2)},
                planes, i);
  }
}

void CombineKept(const LM_kernel_surface& surface, const int32_t* ambient, const LM_kept_run& kept,
                 int facets, int n, const LM_kernel_planes& planes) {
  const PlaneInts always = SetPlanes(ambient);
  WithCombiner(surface, [&](const auto& combine) {
    if (kept.tails == nullptr)
      CombineRow(combine, WideSums(kept), always, facets, n, planes);
    else if (kept.planes == 1)
      CombineRow(combine, TightSums<1>(kept), always, facets, n, planes);
    else
      CombineRow(combine, TightSums<LM_PLANES>(kept), always, facets, n, planes);
  });
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
