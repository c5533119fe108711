// Double precision as the vector library has it. Compiled once for each instruction set; included
// by LM_vector_math-inl.h alone.
#if defined(LM_DOUBLES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_DOUBLES_INL_H
#undef LM_DOUBLES_INL_H
#else
#define LM_DOUBLES_INL_H
#endif

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

using DoubleTag = hn::Repartition<double, FloatTag>;
using HalfFloatTag = hn::Rebind<float, DoubleTag>;
using HalfIntTag = hn::Rebind<int32_t, DoubleTag>;
using Doubles = hn::Vec<DoubleTag>;
struct DoublePair {
  Doubles low, high;
};

HWY_INLINE Doubles SetDouble(double value) {
  return hn::Set(DoubleTag(), value);
}
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
HWY_INLINE Ints Truncate(const DoublePair& value) {
  return hn::Combine(IntTag(), hn::DemoteTo(HalfIntTag(), value.high),
                     hn::DemoteTo(HalfIntTag(), value.low));
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
