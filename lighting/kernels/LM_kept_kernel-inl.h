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

// Two vectors of pixels as one of 16 bits, in the order that the instruction set narrows them to.
using PairTag = hn::Repartition<int16_t, IntTag>;
using Pair = hn::Vec<PairTag>;
using PairBytes = hn::Rebind<uint8_t, PairTag>;

// Stores values of bytes, or such that become bytes when they are cut, in the order of the pixels.
HWY_INLINE void StorePair(Pair values, uint8_t* at) {
  const PairBytes bytes;
  const auto narrowed = hn::DemoteTo(bytes, values);
#if HWY_ARCH_X86 && HWY_TARGET != HWY_SSE4
  // They are narrowed in blocks of 128 bits: four of the one vector, four of the other.
  const hn::Repartition<int32_t, PairBytes> fours;
  constexpr int HALF = hn::MaxLanes(fours) / 2;
  HWY_ALIGN int32_t order[2 * HALF];
  for (int i = 0; i < HALF; ++i) {
    order[i] = 2 * i;
    order[HALF + i] = 2 * i + 1;
  }
  const auto sorted =
      hn::TableLookupLanes(hn::BitCast(fours, narrowed), hn::SetTableIndices(fours, order));
  hn::StoreU(hn::BitCast(bytes, sorted), bytes, at);
#else
  hn::StoreU(narrowed, bytes, at);
#endif
}

// One value for each plane of two vectors of pixels.
struct PlanePairs {
  Pair p0, p1, p2;
};

// One facet of two vectors of pixels from the first on, by what reads the sums of one of them.
template <class Combine, class Sums>
HWY_INLINE PlanePairs LitFacet(const Combine& combine, const Sums& sums, const KeptPlace& place,
                               const PlaneInts& always, const PlaneInts (&source)[2]) {
  const KeptPlace next = {place.first + Lanes(), place.facets, place.facet};
  const auto lit = [&](int plane, Ints more, Ints source0, Ints source1) HWY_ATTR {
    const Shine shine0 = sums(place, plane);
    const Shine shine1 = sums(next, plane);
    return hn::ReorderDemote2To(
        PairTag(), combine.Exposed(hn::Add(shine0.light, more), shine0.highlight, source0),
        combine.Exposed(hn::Add(shine1.light, more), shine1.highlight, source1));
  };
  return {lit(0, always.p0, source[0].p0, source[1].p0),
          lit(1, always.p1, source[0].p1, source[1].p1),
          lit(2, always.p2, source[0].p2, source[1].p2)};
}

HWY_INLINE Pair AddCut(Pair total, Pair value) {
  const PairTag tag;
  return hn::Add(total, hn::Min(hn::Max(value, hn::Zero(tag)), hn::Set(tag, 255)));
}

template <int facets, class Combine, class Sums>
HWY_INLINE void CombineRow(const Combine& combine, const Sums& sums, const PlaneInts& always, int n,
                           const LM_kernel_planes& planes) {
  for (int i = 0; i < n; i += 2 * Lanes()) {
    const PlaneInts source[2] = {LoadPlanes(planes, i), LoadPlanes(planes, i + Lanes())};
    PlanePairs total;
    if (facets == 1) {
      total = LitFacet(combine, sums, {i, 1, 0}, always, source);
    } else {
      const Pair none = hn::Zero(PairTag());
      total = {none, none, none};
      for (int facet = 0; facet < facets; ++facet) {
        const PlanePairs lit = LitFacet(combine, sums, {i, facets, facet}, always, source);
        total = {AddCut(total.p0, lit.p0), AddCut(total.p1, lit.p1), AddCut(total.p2, lit.p2)};
      }
      total = {hn::ShiftRight<2>(total.p0), hn::ShiftRight<2>(total.p1),
               hn::ShiftRight<2>(total.p2)};
    }
    StorePair(total.p0, planes.plane[0] + i);
    StorePair(total.p1, planes.plane[1] + i);
    StorePair(total.p2, planes.plane[2] + i);
  }
}

template <class Combine, class Sums>
HWY_INLINE void CombineFacets(const Combine& combine, const Sums& sums, const PlaneInts& always,
                              int facets, int n, const LM_kernel_planes& planes) {
  if (facets == 1)
    CombineRow<1>(combine, sums, always, n, planes);
  else
    CombineRow<LM_FACETS>(combine, sums, always, n, planes);
}

void CombineKept(const LM_kernel_surface& surface, const int32_t* ambient, const LM_kept_run& kept,
                 int facets, int n, const LM_kernel_planes& planes) {
  const PlaneInts always = SetPlanes(ambient);
  WithCombiner(surface, [&](const auto& combine) {
    if (kept.tails == nullptr)
      CombineFacets(combine, WideSums(kept), always, facets, n, planes);
    else if (kept.planes == 1)
      CombineFacets(combine, TightSums<1>(kept), always, facets, n, planes);
    else
      CombineFacets(combine, TightSums<LM_PLANES>(kept), always, facets, n, planes);
  });
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
