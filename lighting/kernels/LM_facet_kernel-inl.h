// Heights from bytes, and the facets between heights. Compiled once for each instruction set.
#if defined(LM_FACET_KERNEL_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_FACET_KERNEL_INL_H
#undef LM_FACET_KERNEL_INL_H
#else
#define LM_FACET_KERNEL_INL_H
#endif

#include "LM_kernels.h"
#include "LM_vector_math-inl.h"

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

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
