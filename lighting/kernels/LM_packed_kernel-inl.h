// Lights over sums of others that are kept packed. Compiled once for each instruction set.
#if defined(LM_PACKED_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_PACKED_KERNEL_INL_H
#undef LM_PACKED_KERNEL_INL_H
#else
#define LM_PACKED_KERNEL_INL_H
#endif

#include <algorithm>

#include "LM_arithmetic.h"
#include "LM_relief_kernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

using HalfTag = hn::Rebind<uint16_t, IntTag>;
using UnsignedTag = hn::RebindToUnsigned<IntTag>;

// Room for the sums of a pack before they are packed, one LightSums after the other.
constexpr int UNPACKED = LM_PACKED_PIXELS * LM_FACETS * LM_KEPT_SUMS;

HWY_INLINE void StoreUnpacked(const LightSums& sums, int32_t* unpacked) {
  const IntTag ints;
  const Ints all[LM_KEPT_SUMS] = {sums.diffuse.p0,  sums.diffuse.p1,  sums.diffuse.p2,
                                  sums.specular.p0, sums.specular.p1, sums.specular.p2};
  for (int k = 0; k < LM_KEPT_SUMS; ++k)
    hn::StoreU(all[k], ints, unpacked + k * Lanes());
}

// The sums of at most LM_PACKED_PIXELS pixels. Answers how many LightSums they are.
HWY_INLINE int SumPack(const LM_kernel_lights& lights, const float* x, int n,
                       const LM_normal_row* normals, int32_t* unpacked) {
  SampleLights fourAt[4];
  int count = 0;
  const auto keep = [&](const LightSums& sums) {
    StoreUnpacked(sums, unpacked + LM_KEPT_SUMS * Lanes() * count++);
  };
  const LightSums begun = BeginSums(lights);
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i / Lanes() % 4;
    if (v == 0)
      LookAtLights(lights, x + i, fourAt);
    if (normals == nullptr) {
      keep(SumFlatLights(begun, fourAt[v]));
      continue;
    }
    FacetShares shares;
    FindShares(fourAt[v], normals, i, shares);
    for (int facet = 0; facet < LM_FACETS; ++facet)
      keep(LightFacet(begun, fourAt[v], shares, facet));
  }
  return count;
}

// Where of its part a sum lies: the first planes' are the one part, the others' the other.
struct PackedPlace {
  int part, place;
};
constexpr PackedPlace PlaceOf(int sum) {
  const int plane = sum % LM_PLANES;
  const int kind = sum / LM_PLANES;
  return plane == 0 ? PackedPlace{0, kind} : PackedPlace{1, kind * 2 + plane - 1};
}

// Packs `count` LightSums: those of white light by one plane, and upper halves where there are any.
HWY_INLINE void Pack(const int32_t* unpacked, int count, const LM_packed_run& packed) {
  const IntTag ints;
  const UnsignedTag words;
  LM_pack& pack = *packed.packs;
  const auto sumAt = [&](int i, int k) {
    return hn::LoadU(ints, unpacked + (i * LM_KEPT_SUMS + k) * Lanes());
  };
  const auto beyondLeast = [&](int i, int k) {
    return hn::BitCast(words, hn::Sub(sumAt(i, k), SetInt(pack.least[k])));
  };
  Ints differing = hn::Zero(ints);
  auto upper = hn::Zero(words);
  for (int k = 0; k < LM_KEPT_SUMS; ++k) {
    Ints least = sumAt(0, k);
    for (int i = 0; i < count; ++i) {
      least = hn::Min(least, sumAt(i, k));
      differing = hn::Or(differing, hn::Xor(sumAt(i, k), sumAt(i, k - k % LM_PLANES)));
    }
    pack.least[k] = hn::GetLane(hn::MinOfLanes(ints, least));
    for (int i = 0; i < count; ++i)
      upper = hn::Or(upper, hn::ShiftRight<16>(beyondLeast(i, k)));
  }
  pack.isGray = hn::AllTrue(ints, hn::Eq(differing, hn::Zero(ints)));
  pack.isWide = !hn::AllTrue(words, hn::Eq(upper, hn::Zero(words)));
  for (int k = 0; k < LM_KEPT_SUMS; ++k) {
    const auto [part, place] = PlaceOf(k);
    for (int i = 0; i < count && (part == 0 || !pack.isGray); ++i) {
      const auto beyond = beyondLeast(i, k);
      const int at = (i * LM_PACKED_SUMS[part] + place) * Lanes();
      hn::StoreU(hn::TruncateTo(HalfTag(), beyond), HalfTag(), packed.low[part] + at);
      if (pack.isWide)
        hn::StoreU(hn::TruncateTo(HalfTag(), hn::ShiftRight<16>(beyond)), HalfTag(),
                   packed.high[part] + at);
    }
  }
}

void KeepPacked(const LM_kernel_lights& lights, const float* x, int n, const LM_normal_row* normals,
                const LM_packed_run& packed) {
  HWY_ALIGN int32_t unpacked[UNPACKED];
  const int facets = normals == nullptr ? 1 : LM_FACETS;
  for (int i = 0; i < n; i += LM_PACKED_PIXELS) {
    LM_normal_row rows[2] = {};
    for (int row = 0; row < 2 && normals != nullptr; ++row)
      rows[row] = normals[row].From(i);
    const int count = SumPack(lights, x + i, std::min(n - i, LM_PACKED_PIXELS),
                              normals == nullptr ? nullptr : rows, unpacked);
    Pack(unpacked, count, packed.From(static_cast<size_t>(i / LM_PACKED_PIXELS), facets));
  }
}

// One sum of the i-th ones of a pack, without what is least in it.
template <int sum> HWY_INLINE Ints LoadBeyond(const LM_packed_run& packed, int i) {
  constexpr PackedPlace PLACE = PlaceOf(sum);
  const IntTag ints;
  const int at = (i * LM_PACKED_SUMS[PLACE.part] + PLACE.place) * Lanes();
  const Ints low = hn::PromoteTo(ints, hn::LoadU(HalfTag(), packed.low[PLACE.part] + at));
  if (HWY_LIKELY(!packed.packs->isWide))
    return low;
  const Ints high = hn::PromoteTo(ints, hn::LoadU(HalfTag(), packed.high[PLACE.part] + at));
  return hn::Or(low, hn::ShiftLeft<16>(high));
}

// Whether lights over gray sums make gray ones, but for the ambient light.
HWY_INLINE bool AreGray(const LM_kernel_lights& lights) {
  bool gray = lights.specular[1] == lights.specular[0] && lights.specular[2] == lights.specular[0];
  for (int k = 0; k < lights.Count(); ++k)
    gray = gray && lights.light[k].gray && !lights.light[k].strong;
  return gray;
}

// `sums` and the i-th ones of a pack, without what is least in it.
HWY_INLINE WhiteSums AddPacked(const WhiteSums& sums, const LM_packed_run& packed, int i) {
  return {hn::Add(sums.diffuse, LoadBeyond<0>(packed, i)),
          hn::Add(sums.specular, LoadBeyond<LM_PLANES>(packed, i))};
}
HWY_INLINE LightSums AddPacked(const LightSums& sums, const LM_packed_run& packed, int i) {
  const Ints diffuse = LoadBeyond<0>(packed, i);
  const Ints specular = LoadBeyond<LM_PLANES>(packed, i);
  if (packed.packs->isGray)
    return {{hn::Add(sums.diffuse.p0, diffuse), hn::Add(sums.diffuse.p1, diffuse),
             hn::Add(sums.diffuse.p2, diffuse)},
            {hn::Add(sums.specular.p0, specular), hn::Add(sums.specular.p1, specular),
             hn::Add(sums.specular.p2, specular)}};
  return {{hn::Add(sums.diffuse.p0, diffuse), hn::Add(sums.diffuse.p1, LoadBeyond<1>(packed, i)),
           hn::Add(sums.diffuse.p2, LoadBeyond<2>(packed, i))},
          {hn::Add(sums.specular.p0, specular),
           hn::Add(sums.specular.p1, LoadBeyond<LM_PLANES + 1>(packed, i)),
           hn::Add(sums.specular.p2, LoadBeyond<LM_PLANES + 2>(packed, i))}};
}

// A sample's sums begin with what all of its pack have, and end as its bytes. Those of white light
// are without what the planes have in common with no other.
HWY_INLINE void Begin(const LightSums& begun, LightSums& sums) {
  sums = begun;
}
HWY_INLINE void Begin(const LightSums& begun, WhiteSums& sums) {
  sums = {hn::Zero(IntTag()), begun.specular.p0};
}
template <class Combine>
HWY_INLINE PlaneInts Combined(const Combine& combine, const LightSums&, const LightSums& sums,
                              const PlaneInts& source) {
  return combine(sums, source);
}
template <class Combine>
HWY_INLINE PlaneInts Combined(const Combine& combine, const LightSums& begun, const WhiteSums& sums,
                              const PlaneInts& source) {
  const Ints highlight = hn::ShiftRight<8>(sums.specular);
  return {combine.Plane(hn::Add(sums.diffuse, begun.diffuse.p0), highlight, source.p0),
          combine.Plane(hn::Add(sums.diffuse, begun.diffuse.p1), highlight, source.p1),
          combine.Plane(hn::Add(sums.diffuse, begun.diffuse.p2), highlight, source.p2)};
}

// What every sample of a pack has before its own sums.
HWY_INLINE LightSums BeginPack(const LM_kernel_lights& lights, const LM_pack& pack) {
  return {{SetInt(LM_WrapAdd(lights.diffuse[0], pack.least[0])),
           SetInt(LM_WrapAdd(lights.diffuse[1], pack.least[1])),
           SetInt(LM_WrapAdd(lights.diffuse[2], pack.least[2]))},
          {SetInt(LM_WrapAdd(lights.specular[0], pack.least[3])),
           SetInt(LM_WrapAdd(lights.specular[1], pack.least[4])),
           SetInt(LM_WrapAdd(lights.specular[2], pack.least[5]))}};
}

// The vector of a pack's pixels that is its v-th, the first of them pixel i.
template <class Sums, class Combine>
HWY_INLINE PlaneInts LitOver(const LightSums& begun, const Combine& combine, const SampleLights& at,
                             const LM_packed_run& packed, int v, int i,
                             const LM_normal_row* normals, const PlaneInts& source) {
  Sums sums;
  Begin(begun, sums);
  if (normals == nullptr)
    return Combined(combine, begun, AddPacked(SumFlatLights(sums, at), packed, v), source);
  FacetShares shares;
  if (at.count > 0)
    FindShares(at, normals, i, shares);
  PlaneInts total = {SetInt(0), SetInt(0), SetInt(0)};
  for (int f = 0; f < LM_FACETS; ++f) {
    const Sums all = AddPacked(LightFacet(sums, at, shares, f), packed, v * LM_FACETS + f);
    const PlaneInts shaded = Combined(combine, begun, all, source);
    total = {hn::Add(total.p0, shaded.p0), hn::Add(total.p1, shaded.p1),
             hn::Add(total.p2, shaded.p2)};
  }
  return {hn::ShiftRight<2>(total.p0), hn::ShiftRight<2>(total.p1), hn::ShiftRight<2>(total.p2)};
}

template <class Combine>
HWY_INLINE void OverRow(const LM_kernel_lights& lights, const Combine& combine,
                        const LM_packed_run& packed, const float* x, int n,
                        const LM_normal_row* normals, const LM_kernel_planes& planes) {
  const int facets = normals == nullptr ? 1 : LM_FACETS;
  const bool areGray = AreGray(lights);
  SampleLights fourAt[4];
  LM_packed_run pack = {};
  LightSums begun = {};
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i % LM_PACKED_PIXELS / Lanes();
    if (v == 0) {
      pack = packed.From(static_cast<size_t>(i / LM_PACKED_PIXELS), facets);
      begun = BeginPack(lights, *pack.packs);
    }
    if (v % 4 == 0)
      LookAtLights(lights, x + i, fourAt);
    const SampleLights& at = fourAt[v % 4];
    const PlaneInts source = LoadPlanes(planes, i);
    if (areGray && pack.packs->isGray)
      StorePlanes(LitOver<WhiteSums>(begun, combine, at, pack, v, i, normals, source), planes, i);
    else
      StorePlanes(LitOver<LightSums>(begun, combine, at, pack, v, i, normals, source), planes, i);
  }
}

void LightOver(const LM_kernel_lights& lights, const LM_kernel_surface& surface,
               const LM_packed_run& packed, const float* x, int n, const LM_normal_row* normals,
               const LM_kernel_planes& planes) {
  WithCombiner(surface, [&](const auto& combine) {
    OverRow(lights, combine, packed, x, n, normals, planes);
  });
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
