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
using DoubleTag = hn::Repartition<double, FloatTag>;
using HalfFloatTag = hn::Rebind<float, DoubleTag>;
using HalfIntTag = hn::Rebind<int32_t, DoubleTag>;
using Floats = hn::Vec<FloatTag>;
using Ints = hn::Vec<IntTag>;
using Doubles = hn::Vec<DoubleTag>;
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

// Two halves of a vector, in double.
struct DoublePair {
  Doubles low, high;
};
HWY_INLINE DoublePair Promote(Floats value) {
  return {hn::PromoteTo(DoubleTag(), hn::LowerHalf(HalfFloatTag(), value)),
          hn::PromoteTo(DoubleTag(), hn::UpperHalf(HalfFloatTag(), value))};
}
HWY_INLINE DoublePair Promote(Ints value) {
  return {hn::PromoteTo(DoubleTag(), hn::LowerHalf(HalfIntTag(), value)),
          hn::PromoteTo(DoubleTag(), hn::UpperHalf(HalfIntTag(), value))};
}
HWY_INLINE Floats Demote(const DoublePair& value) {
  return hn::Combine(FloatTag(), hn::DemoteTo(HalfFloatTag(), value.high),
                     hn::DemoteTo(HalfFloatTag(), value.low));
}

// (float)(1.0 / sqrt((double)value)), for values in [2^-96, 2^96]; `estimate` is within
// 1.5 * 2^-12 of it. Elsewhere than on x86 estimates are coarser, so the root is taken in double.
HWY_INLINE Floats RootFromEstimate(Floats value, Floats estimate) {
#if HWY_NATIVE_FMA && HWY_ARCH_X86
  // One step of third order gives the root or one of its two neighbours.
  const Floats half = SetFloat(0.5F);
  const Floats second = SetFloat(0.375F);
  const Floats error = hn::NegMulAdd(hn::Mul(value, estimate), estimate, SetFloat(1.0F));
  const Floats slope = hn::MulAdd(second, error, half);
  const Floats near = hn::MulAdd(hn::Mul(estimate, error), slope, estimate);
  // From each of these the same step reaches it: the error is found to twice the precision, and
  // what it makes is added in one rounding.
  const Floats product = hn::Mul(value, near);
  const Floats lost = hn::MulSub(value, near, product);
  const Floats rest = hn::NegMulAdd(lost, near, hn::NegMulAdd(product, near, SetFloat(1.0F)));
  return hn::MulAdd(hn::Mul(near, rest), hn::MulAdd(second, rest, half), near);
#else
  (void)estimate;
  const DoublePair wide = Promote(value);
  const Doubles one = hn::Set(DoubleTag(), 1.0);
  return Demote({hn::Div(one, hn::Sqrt(wide.low)), hn::Div(one, hn::Sqrt(wide.high))});
#endif
}
HWY_INLINE Floats ReciprocalRoot(Floats value) {
  return RootFromEstimate(value, hn::ApproximateReciprocalSqrt(value));
}

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
