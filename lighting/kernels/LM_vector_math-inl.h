// Arithmetic that several kernels share. Compiled once for each instruction set.
#if defined(LM_VECTOR_MATH_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_VECTOR_MATH_INL_H
#undef LM_VECTOR_MATH_INL_H
#else
#define LM_VECTOR_MATH_INL_H
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// A vector of samples is one vector of floats; all else is as many of other types.
using FloatTag = hn::ScalableTag<float>;
using IntTag = hn::RebindToSigned<FloatTag>;
using ByteTag = hn::Rebind<uint8_t, FloatTag>;
using Floats = hn::Vec<FloatTag>;
using Ints = hn::Vec<IntTag>;
using Mask = hn::Mask<FloatTag>;

HWY_INLINE int Lanes() {
  return static_cast<int>(hn::Lanes(FloatTag()));
}
HWY_INLINE Floats SetFloat(float value) {
  return hn::Set(FloatTag(), value);
}
HWY_INLINE Ints SetInt(int32_t value) {
  return hn::Set(IntTag(), value);
}

// Truncates values that fit 32 bits: on x86 the library would check for those that do not.
HWY_INLINE Ints Truncate(Floats value) {
#if HWY_TARGET == HWY_AVX3
  return Ints{_mm512_cvttps_epi32(value.raw)};
#elif HWY_TARGET == HWY_AVX2
  return Ints{_mm256_cvttps_epi32(value.raw)};
#elif HWY_TARGET == HWY_SSE4
  return Ints{_mm_cvttps_epi32(value.raw)};
#else
  return hn::ConvertTo(IntTag(), value);
#endif
}

// Truncates a product of less than LM_MOST_PRODUCT and adds PRODUCT_BIAS, which sums take away once
// for all. WebAssembly's own conversion, of any value, takes three times as many instructions: a
// whole number, added to one whose last place is 1, is the difference of their bits.
#if HWY_TARGET == HWY_WASM
constexpr int32_t PRODUCT_BIAS = 0x4B400000;
HWY_INLINE Ints TruncateBiased(Floats value) {
  return hn::BitCast(IntTag(), hn::Add(hn::Trunc(value), SetFloat(0x1.8p23F)));
}
#else
constexpr int32_t PRODUCT_BIAS = 0;
HWY_INLINE Ints TruncateBiased(Floats value) {
  return Truncate(value);
}
#endif
HWY_INLINE Ints TruncateProduct(Floats value) {
  return hn::Sub(TruncateBiased(value), SetInt(PRODUCT_BIAS));
}

// Truncates any value: one beyond 32 bits gives the nearest integer, NaN gives 0.
HWY_INLINE Ints TruncateAny(Floats value) {
  const Floats ceiling = SetFloat(2147483648.0F);
  const Mask inside = hn::And(hn::Ge(value, hn::Neg(ceiling)), hn::Lt(value, ceiling));
  const Ints beyond =
      hn::IfThenElseZero(RebindMask(IntTag(), hn::Ge(value, ceiling)), SetInt(INT32_MAX));
  const Ints below =
      hn::IfThenElseZero(RebindMask(IntTag(), hn::Lt(value, hn::Neg(ceiling))), SetInt(INT32_MIN));
  return hn::Or(Truncate(hn::IfThenElseZero(inside, value)), hn::Or(beyond, below));
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

// Doubles: half a vector, in double, and DoublePair: its two halves. What is done to Doubles goes
// by its name alone (Add, Mul, Sqrt), which is the library's or this build's own.
#if HWY_TARGET == HWY_WASM
#include "LM_wasm_doubles-inl.h"
#else
#include "LM_doubles-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

// Four vectors on their way through the same steps, one step for all before the next, so that none
// waits for another.
struct FourFloats {
  Floats v0, v1, v2, v3;
};
HWY_INLINE FourFloats Mul(const FourFloats& a, const FourFloats& b) {
  return {hn::Mul(a.v0, b.v0), hn::Mul(a.v1, b.v1), hn::Mul(a.v2, b.v2), hn::Mul(a.v3, b.v3)};
}
HWY_INLINE FourFloats MulAdd(const FourFloats& a, const FourFloats& b, const FourFloats& c) {
  return {hn::MulAdd(a.v0, b.v0, c.v0), hn::MulAdd(a.v1, b.v1, c.v1), hn::MulAdd(a.v2, b.v2, c.v2),
          hn::MulAdd(a.v3, b.v3, c.v3)};
}
HWY_INLINE FourFloats NegMulAdd(const FourFloats& a, const FourFloats& b, const FourFloats& c) {
  return {hn::NegMulAdd(a.v0, b.v0, c.v0), hn::NegMulAdd(a.v1, b.v1, c.v1),
          hn::NegMulAdd(a.v2, b.v2, c.v2), hn::NegMulAdd(a.v3, b.v3, c.v3)};
}
HWY_INLINE FourFloats MulSub(const FourFloats& a, const FourFloats& b, const FourFloats& c) {
  return {hn::MulSub(a.v0, b.v0, c.v0), hn::MulSub(a.v1, b.v1, c.v1), hn::MulSub(a.v2, b.v2, c.v2),
          hn::MulSub(a.v3, b.v3, c.v3)};
}
HWY_INLINE FourFloats ApproximateReciprocalSqrt(const FourFloats& a) {
  return {hn::ApproximateReciprocalSqrt(a.v0), hn::ApproximateReciprocalSqrt(a.v1),
          hn::ApproximateReciprocalSqrt(a.v2), hn::ApproximateReciprocalSqrt(a.v3)};
}
template <class Vectors> HWY_INLINE Vectors Repeat(float value);
template <> HWY_INLINE Floats Repeat<Floats>(float value) {
  return SetFloat(value);
}
template <> HWY_INLINE FourFloats Repeat<FourFloats>(float value) {
  const Floats all = SetFloat(value);
  return {all, all, all, all};
}

#if HWY_NATIVE_FMA && HWY_ARCH_X86
// (float)(1.0 / sqrt((double)value)), for values in [2^-96, 2^96]; `estimate` is within
// 1.5 * 2^-12 of it.
template <class Vectors>
HWY_INLINE Vectors RootFromEstimate(const Vectors& value, const Vectors& estimate) {
  const Vectors one = Repeat<Vectors>(1.0F);
  const Vectors half = Repeat<Vectors>(0.5F);
  const Vectors second = Repeat<Vectors>(0.375F);
  // One step of third order gives the root or one of its two neighbours.
  const Vectors error = NegMulAdd(Mul(value, estimate), estimate, one);
  const Vectors slope = MulAdd(second, error, half);
  const Vectors near = MulAdd(Mul(estimate, error), slope, estimate);
  // From each of these the same step reaches it: the error is found to twice the precision, and
  // what it makes is added in one rounding.
  const Vectors product = Mul(value, near);
  const Vectors lost = MulSub(value, near, product);
  const Vectors rest = NegMulAdd(lost, near, NegMulAdd(product, near, one));
  return MulAdd(Mul(near, rest), MulAdd(second, rest, half), near);
}
template <class Vectors> HWY_INLINE Vectors ReciprocalRoot(const Vectors& value) {
  return RootFromEstimate(value, ApproximateReciprocalSqrt(value));
}
#else
#if HWY_TARGET == HWY_WASM
// By a step from the root s in single precision: 2 s / (value + s s) is off by half the square of
// s's own error, less than 2^-49. Two thirds of the instructions of the way below, which divides in
// single precision.
HWY_INLINE Floats ReciprocalRoot(Floats value) {
  const DoublePair wide = Promote(value);
  const DoublePair root = Promote(hn::Sqrt(value));
  const Floats half = Demote({Div(root.low, MulAdd(root.low, root.low, wide.low)),
                              Div(root.high, MulAdd(root.high, root.high, wide.high))});
  return hn::Add(half, half);
}
#else
// Without a fused multiply-add, or with an estimate that is coarser than on x86: from single
// precision, which does twice as many at once, by a step of third order in double. The error that
// is left is that of a double's last place.
HWY_INLINE Doubles RefinedRoot(Doubles value, Doubles near) {
  const Doubles error = Sub(SetDouble(1.0), Mul(Mul(value, near), near));
  const Doubles slope = MulAdd(SetDouble(0.375), error, SetDouble(0.5));
  return MulAdd(Mul(near, error), slope, near);
}
HWY_INLINE Floats ReciprocalRoot(Floats value) {
  const DoublePair wide = Promote(value);
  const DoublePair near = Promote(hn::Div(SetFloat(1.0F), hn::Sqrt(value)));
  return Demote({RefinedRoot(wide.low, near.low), RefinedRoot(wide.high, near.high)});
}
#endif
HWY_INLINE Floats RootFromEstimate(Floats value, Floats) {
  return ReciprocalRoot(value);
}
HWY_INLINE FourFloats ReciprocalRoot(const FourFloats& value) {
  return {ReciprocalRoot(value.v0), ReciprocalRoot(value.v1), ReciprocalRoot(value.v2),
          ReciprocalRoot(value.v3)};
}
#endif

void ReciprocalRoots(const float* values, int n, float nudge, float* roots) {
  for (int i = 0; i < n; i += Lanes()) {
    const Floats value = hn::LoadU(FloatTag(), values + i);
    const Floats estimate = hn::ApproximateReciprocalSqrt(value);
    hn::StoreU(RootFromEstimate(value, hn::Mul(estimate, SetFloat(nudge))), FloatTag(), roots + i);
  }
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
