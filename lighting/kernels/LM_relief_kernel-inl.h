// Rows in relief: heights from bytes, and light on the facets between them. Compiled once for each
// instruction set.
#if defined(LM_RELIEF_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_RELIEF_KERNEL_INL_H
#undef LM_RELIEF_KERNEL_INL_H
#else
#define LM_RELIEF_KERNEL_INL_H
#endif

#include "LM_flat_kernel-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

template <class Tap> HWY_INLINE Ints LoadTaps(const Tap* taps) {
  return hn::PromoteTo(IntTag(), hn::LoadU(hn::Rebind<Tap, FloatTag>(), taps));
}

// The weighted sums around the taps from the i-th on.
template <class Tap> HWY_INLINE Ints WeighTaps(const Tap* const taps[3], int i) {
  const Tap* above = taps[0] + i;
  const Tap* middle = taps[1] + i;
  const Tap* below = taps[2] + i;
  const Ints corners = hn::Add(hn::Add(LoadTaps(above), LoadTaps(above + 2)),
                               hn::Add(LoadTaps(below), LoadTaps(below + 2)));
  const Ints edges = hn::Add(hn::Add(LoadTaps(above + 1), LoadTaps(below + 1)),
                             hn::Add(LoadTaps(middle), LoadTaps(middle + 2)));
  const Ints center = hn::ShiftLeft<4>(LoadTaps(middle + 1));
  return hn::ShiftLeft<1>(hn::Add(hn::Add(corners, center), hn::ShiftLeft<2>(edges)));
}

// Quotients in double cannot round up to the next integer: they stay below 2^31, and a divisor
// below 2^15 leaves no remainder that small.
void FilterHeights(const uint8_t* const taps[3], int n, int32_t scale, int32_t* heights) {
  const Doubles gain = SetDouble(68.0);
  for (int i = 0; i < n; i += Lanes()) {
    const DoublePair wide = Promote(hn::Mul(WeighTaps(taps, i), SetInt(scale))); // wraps
    hn::StoreU(Truncate({Div(wide.low, gain), Div(wide.high, gain)}), IntTag(), heights + i);
  }
}

void FilterWordHeights(const uint16_t* const taps[3], int n, int32_t scale, int32_t* heights) {
  const Doubles gain = SetDouble(257.0 * 68.0);
  const Doubles factor = SetDouble(scale);
  for (int i = 0; i < n; i += Lanes()) {
    const DoublePair sum = Promote(WeighTaps(taps, i));
    hn::StoreU(Truncate({Div(Mul(sum.low, factor), gain), Div(Mul(sum.high, factor), gain)}),
               IntTag(), heights + i);
  }
}

struct Gradient {
  Ints x, y;
};
// Of the quad with corners a (top-left), b, c and d, clockwise.
HWY_INLINE Gradient QuadGradient(Ints a, Ints b, Ints c, Ints d) {
  const Ints falling = hn::Sub(b, d);
  const Ints rising = hn::Sub(c, a);
  return {hn::ShiftRight<1>(hn::Add(falling, rising)), hn::ShiftRight<1>(hn::Sub(falling, rising))};
}

// Gradients up to this one have squares that add up within 32 bits.
constexpr int32_t GENTLE = 32767;

// The squared length of a normal that is 4096 high, the sum of the squares rounded once.
HWY_INLINE Floats SquaredGentleNormal(const Gradient& gradient) {
  const Ints squares = hn::Add(hn::Mul(gradient.x, gradient.x), hn::Mul(gradient.y, gradient.y));
  return hn::Add(hn::ConvertTo(FloatTag(), squares), SetFloat(16777216.0F));
}
HWY_INLINE Floats SquaredNormal(const Gradient& gradient) {
  const DoublePair x = Promote(gradient.x);
  const DoublePair y = Promote(gradient.y);
  // Heights stay below 2^25, so all is exact, fused or not, until the sum is rounded to float.
  const Floats squares = Demote(
      {MulAdd(x.low, x.low, Mul(y.low, y.low)), MulAdd(x.high, x.high, Mul(y.high, y.high))});
  return hn::Add(squares, SetFloat(16777216.0F));
}

// Four vectors of facets between two rows of heights, from the i-th on.
struct FourQuads {
  Gradient quad[4];
  bool flat, gentle; // all of them
};
HWY_INLINE FourQuads QuadsAt(const int32_t* above, const int32_t* below, int i) {
  const IntTag ints;
  FourQuads out;
  Ints steepest = hn::Zero(ints);
  for (Gradient& quad : out.quad) {
    quad = QuadGradient(hn::LoadU(ints, above + i), hn::LoadU(ints, above + i + 1),
                        hn::LoadU(ints, below + i + 1), hn::LoadU(ints, below + i));
    steepest = hn::Max(steepest, hn::Max(hn::Abs(quad.x), hn::Abs(quad.y)));
    i += Lanes();
  }
  out.flat = hn::AllTrue(ints, hn::Eq(steepest, hn::Zero(ints)));
  out.gentle = hn::AllFalse(ints, hn::Gt(steepest, SetInt(GENTLE)));
  return out;
}

HWY_INLINE FourFloats InverseNormals(const FourQuads& quads) {
  const Gradient* quad = quads.quad;
  if (quads.flat)
    return Repeat<FourFloats>(0x1p-12F);
  if (quads.gentle)
    return ReciprocalRoot(FourFloats{SquaredGentleNormal(quad[0]), SquaredGentleNormal(quad[1]),
                                     SquaredGentleNormal(quad[2]), SquaredGentleNormal(quad[3])});
  return ReciprocalRoot(FourFloats{SquaredNormal(quad[0]), SquaredNormal(quad[1]),
                                   SquaredNormal(quad[2]), SquaredNormal(quad[3])});
}

HWY_INLINE void StoreNormal(const Gradient& gradient, Floats inverse, const LM_normal_row& normals,
                            int i) {
  const FloatTag tag;
  hn::StoreU(hn::Mul(hn::ConvertTo(tag, hn::Neg(gradient.x)), inverse), tag, normals.x + i);
  hn::StoreU(hn::Mul(hn::ConvertTo(tag, gradient.y), inverse), tag, normals.y + i);
  hn::StoreU(hn::Mul(SetFloat(4096.0F), inverse), tag, normals.z + i);
}

void MakeNormals(const int32_t* above, const int32_t* below, int n, const LM_normal_row& normals) {
  for (int i = 0; i < n; i += 4 * Lanes()) {
    const FourQuads quads = QuadsAt(above, below, i);
    const FourFloats inverse = InverseNormals(quads);
    StoreNormal(quads.quad[0], inverse.v0, normals, i);
    StoreNormal(quads.quad[1], inverse.v1, normals, i + Lanes());
    StoreNormal(quads.quad[2], inverse.v2, normals, i + 2 * Lanes());
    StoreNormal(quads.quad[3], inverse.v3, normals, i + 3 * Lanes());
  }
}

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
template <bool spot>
HWY_INLINE void FindShares(const SampleLights& at, int k, const Facet* facets,
                           FacetShares& shares) {
  const LM_kernel_light& light = *at.light[k];
  const Floats falloff = spot ? at.falloff[k] : at.inverse[k];
  shares.of[k][0] = ShareOf<spot>(light, facets[0], at.x[k], at.inverse[k], falloff);
  shares.of[k][1] = ShareOf<spot>(light, facets[1], at.x[k], at.inverse[k], falloff);
  shares.of[k][2] = ShareOf<spot>(light, facets[2], at.x[k], at.inverse[k], falloff);
  shares.of[k][3] = ShareOf<spot>(light, facets[3], at.x[k], at.inverse[k], falloff);
}
HWY_INLINE void FindShares(const SampleLights& at, const LM_normal_row* normals, int i,
                           FacetShares& shares) {
  const Facet facets[LM_FACETS] = {FacetAt(normals, i, 0), FacetAt(normals, i, 1),
                                   FacetAt(normals, i, 2), FacetAt(normals, i, 3)};
  int k = 0;
  for (; k < at.plain; ++k)
    FindShares<false>(at, k, facets, shares);
  for (; k < at.count; ++k)
    FindShares<true>(at, k, facets, shares);
}
HWY_INLINE LightSums LightFacet(LightSums sums, const SampleLights& at, const FacetShares& shares,
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
