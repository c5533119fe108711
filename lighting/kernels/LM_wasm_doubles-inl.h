// Double precision on WebAssembly, for which the vector library has none. Compiled once for each
// instruction set; included by LM_vector_math-inl.h alone.
#if defined(LM_WASM_DOUBLES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_WASM_DOUBLES_INL_H
#undef LM_WASM_DOUBLES_INL_H
#else
#define LM_WASM_DOUBLES_INL_H
#endif

#include <wasm_simd128.h>

#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

struct Doubles {
  v128_t raw;
};
struct DoublePair {
  Doubles low, high;
};

HWY_INLINE Doubles SetDouble(double value) {
  return {wasm_f64x2_splat(value)};
}
HWY_INLINE Doubles Add(Doubles a, Doubles b) {
  return {wasm_f64x2_add(a.raw, b.raw)};
}
HWY_INLINE Doubles Sub(Doubles a, Doubles b) {
  return {wasm_f64x2_sub(a.raw, b.raw)};
}
HWY_INLINE Doubles Mul(Doubles a, Doubles b) {
  return {wasm_f64x2_mul(a.raw, b.raw)};
}
HWY_INLINE Doubles Div(Doubles a, Doubles b) {
  return {wasm_f64x2_div(a.raw, b.raw)};
}
HWY_INLINE Doubles Sqrt(Doubles a) {
  return {wasm_f64x2_sqrt(a.raw)};
}
// In two roundings: a fused one would be the relaxed instruction, which each processor does in its
// own way.
HWY_INLINE Doubles MulAdd(Doubles a, Doubles b, Doubles c) {
  return Add(Mul(a, b), c);
}

HWY_INLINE DoublePair Promote(Floats value) {
  const v128_t high = wasm_i32x4_shuffle(value.raw, value.raw, 2, 3, 2, 3);
  return {{wasm_f64x2_promote_low_f32x4(value.raw)}, {wasm_f64x2_promote_low_f32x4(high)}};
}
HWY_INLINE DoublePair Promote(Ints value) {
  const v128_t high = wasm_i32x4_shuffle(value.raw, value.raw, 2, 3, 2, 3);
  return {{wasm_f64x2_convert_low_i32x4(value.raw)}, {wasm_f64x2_convert_low_i32x4(high)}};
}
HWY_INLINE Floats Demote(const DoublePair& value) {
  return Floats{wasm_i32x4_shuffle(wasm_f32x4_demote_f64x2_zero(value.low.raw),
                                   wasm_f32x4_demote_f64x2_zero(value.high.raw), 0, 1, 4, 5)};
}
HWY_INLINE Ints Truncate(const DoublePair& value) {
  return Ints{wasm_i32x4_shuffle(wasm_i32x4_trunc_sat_f64x2_zero(value.low.raw),
                                 wasm_i32x4_trunc_sat_f64x2_zero(value.high.raw), 0, 1, 4, 5)};
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
