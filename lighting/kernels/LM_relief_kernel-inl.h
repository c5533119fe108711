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

// One facet of each pixel: its normal, and the view direction (0, 0, 1) mirrored at it.
struct Facet {
  Floats x, y, z;
  Floats mirroredX, mirroredY;
  DoublePair mirroredZ;
};

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

// What follows from a facet's normal.
HWY_INLINE void CompleteFacet(Facet& facet) {
  const Floats twice = hn::Add(facet.z, facet.z);
  facet.mirroredX = hn::Mul(twice, facet.x);
  facet.mirroredY = hn::Mul(twice, facet.y);
  const DoublePair upwards = Promote(hn::Mul(twice, facet.z));
  const Doubles one = SetDouble(1.0);
  facet.mirroredZ = {Sub(upwards.low, one), Sub(upwards.high, one)};
}

HWY_INLINE Facet FacetOf(const Gradient& gradient, Floats inverse) {
  Facet out;
  out.x = hn::Mul(hn::ConvertTo(FloatTag(), hn::Neg(gradient.x)), inverse);
  out.y = hn::Mul(hn::ConvertTo(FloatTag(), gradient.y), inverse);
  out.z = hn::Mul(SetFloat(4096.0F), inverse);
  CompleteFacet(out);
  return out;
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

// The gradients of the four facets of each pixel.
struct PixelRelief {
  Gradient quad[4];
  bool flat, gentle; // all of all pixels
};

HWY_INLINE PixelRelief ReliefAt(const int32_t* const heights[3], int i) {
  const IntTag ints;
  const auto height = [&](int row, int column) {
    return hn::LoadU(ints, heights[row] + i + column);
  };
  const Ints center = height(1, 1);
  const Ints top = height(0, 1);
  const Ints left = height(1, 0);
  const Ints right = height(1, 2);
  const Ints bottom = height(2, 1);
  PixelRelief out;
  out.quad[0] = QuadGradient(height(0, 0), top, center, left);
  out.quad[1] = QuadGradient(top, height(0, 2), right, center);
  out.quad[2] = QuadGradient(center, right, height(2, 2), bottom);
  out.quad[3] = QuadGradient(left, center, bottom, height(2, 0));
  Ints steepest = hn::Zero(ints);
  for (const Gradient& quad : out.quad)
    steepest = hn::Max(steepest, hn::Max(hn::Abs(quad.x), hn::Abs(quad.y)));
  out.flat = hn::AllTrue(ints, hn::Eq(steepest, hn::Zero(ints)));
  out.gentle = hn::AllFalse(ints, hn::Gt(steepest, SetInt(GENTLE)));
  return out;
}

HWY_INLINE FourFloats InverseNormals(const PixelRelief& relief) {
  const Gradient* quad = relief.quad;
  if (relief.gentle)
    return ReciprocalRoot(FourFloats{SquaredGentleNormal(quad[0]), SquaredGentleNormal(quad[1]),
                                     SquaredGentleNormal(quad[2]), SquaredGentleNormal(quad[3])});
  return ReciprocalRoot(FourFloats{SquaredNormal(quad[0]), SquaredNormal(quad[1]),
                                   SquaredNormal(quad[2]), SquaredNormal(quad[3])});
}

// Four facets of the same weight: flat ones that the plain code merges have the same colour, so the
// mean is the same.
template <class Combine>
HWY_INLINE void ReliefRow(const LM_kernel_lights& lights, const Combine& combine, const float* x,
                          int n, const int32_t* const heights[3], const LM_kernel_planes& planes) {
  SampleLights fourAt[4];
  for (int i = 0; i < n; i += Lanes()) {
    const int v = i / Lanes() % 4;
    if (v == 0)
      LookAtLights(lights, x + i, fourAt);
    const SampleLights& at = fourAt[v];
    const PixelRelief relief = ReliefAt(heights, i);
    const PlaneInts source = LoadPlanes(planes, i);
    if (relief.flat) {
      const Facet level = FacetOf(relief.quad[0], SetFloat(0x1p-12F));
      StorePlanes(combine(LightFacet(BeginSums(lights), at, level), source), planes, i);
      continue;
    }
    const FourFloats inverse = InverseNormals(relief);
    const Facet facets[4] = {
        FacetOf(relief.quad[0], inverse.v0), FacetOf(relief.quad[1], inverse.v1),
        FacetOf(relief.quad[2], inverse.v2), FacetOf(relief.quad[3], inverse.v3)};
    PlaneInts total = {SetInt(0), SetInt(0), SetInt(0)};
    for (const Facet& facet : facets) {
      const PlaneInts shaded = combine(LightFacet(BeginSums(lights), at, facet), source);
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
                 int n, const int32_t* const heights[3], const LM_kernel_planes& planes) {
  WithCombiner(surface,
               [&](const auto& combine) { ReliefRow(lights, combine, x, n, heights, planes); });
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
