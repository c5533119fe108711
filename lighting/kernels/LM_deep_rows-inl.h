// Pixels of more than 8 bits, to planes of floats and back. Compiled once for each instruction set.
#if defined(LM_DEEP_ROWS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_DEEP_ROWS_INL_H
#undef LM_DEEP_ROWS_INL_H
#else
#define LM_DEEP_ROWS_INL_H
#endif

#include <cfloat>

#include "LM_deep_pixels.h"
#include "LM_interleaved-inl.h"
#include "LM_vector_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

using WordTag = hn::Rebind<uint16_t, FloatTag>;

// value / divisor, for values that are 0 or between 2^-90 and the largest number. The remainder of
// the first quotient is exact, so that one step gives the nearest float.
template <int divisor> HWY_INLINE Floats Quotient(Floats value) {
#if HWY_NATIVE_FMA
  const Floats inverse = SetFloat(1.0F / divisor);
  const Floats near = hn::Mul(value, inverse);
  const Floats rest = hn::NegMulAdd(near, SetFloat(divisor), value);
  return hn::MulAdd(rest, inverse, near);
#else
  return hn::Div(value, SetFloat(divisor));
#endif
}

// What LM_deep_pixels.h says of words and of floats.
struct WordRow {
  using Tag = WordTag;
  static HWY_INLINE Floats Load(hn::Vec<WordTag> words) {
    return Quotient<257>(hn::ConvertTo(FloatTag(), hn::PromoteTo(IntTag(), words)));
  }
  static HWY_INLINE hn::Vec<WordTag> Store(Floats value) {
    const Floats zero = hn::Zero(FloatTag());
    const Floats word = hn::Mul(value, SetFloat(257.0F));
    const Floats limited = hn::IfThenElse(hn::Gt(word, zero), word, zero);
    // From 2^23 on floats are whole numbers, and their last digits are the integer.
    const Floats rounded = hn::Add(hn::Min(limited, SetFloat(65535.0F)), SetFloat(0x1p23F));
    const Ints bits = hn::And(hn::BitCast(IntTag(), rounded), SetInt(0xFFFF));
    return hn::DemoteTo(WordTag(), bits);
  }
};
struct FloatRow {
  using Tag = FloatTag;
  static HWY_INLINE Floats Load(Floats values) {
    const Floats most = SetFloat(FLT_MAX);
    const Floats scaled = hn::Mul(values, SetFloat(255.0F));
    const Floats limited = hn::Min(hn::Max(scaled, hn::Neg(most)), most);
    return hn::IfThenElseZero(hn::Eq(scaled, scaled), limited);
  }
  static HWY_INLINE Floats Store(Floats value) {
    const Floats size = hn::Abs(value);
    const Mask zero = hn::Eq(value, hn::Zero(FloatTag()));
    const Mask plain = hn::And(hn::Ge(size, SetFloat(0x1p-90F)), hn::Le(size, SetFloat(FLT_MAX)));
    if (HWY_LIKELY(hn::AllTrue(FloatTag(), hn::Or(zero, plain))))
      return hn::IfThenElse(zero, value, Quotient<255>(value)); // the sign of 0 stays
    return hn::IfThenElseZero(hn::Eq(value, value), hn::Div(value, SetFloat(255.0F)));
  }
};

// Components in vectors need their alignment.
template <class Component>
HWY_INLINE bool HasComponents(const uint8_t* pixels, ptrdiff_t step, int components) {
  return step == components * static_cast<ptrdiff_t>(sizeof(Component)) &&
         reinterpret_cast<uintptr_t>(pixels) % alignof(Component) == 0;
}

// Both return how many pixels they did. With four components a pixel the last one is left: its
// fourth may not be there.
template <class Row>
int LoadVectors(const uint8_t* pixels, ptrdiff_t step, int n, const LM_deep_planes& planes) {
  using Component = hn::TFromD<typename Row::Tag>;
  const typename Row::Tag tag;
  const auto* components = reinterpret_cast<const Component*>(pixels);
  const auto store = [&](int plane, int i, hn::Vec<typename Row::Tag> values) {
    hn::StoreU(Row::Load(values), FloatTag(), planes.plane[plane] + i);
  };
  const bool three = HasComponents<Component>(pixels, step, 3);
  const bool four = HasComponents<Component>(pixels, step, 4);
  hn::Vec<typename Row::Tag> v0, v1, v2, v3;
  int i = 0;
  for (; three && i + Lanes() <= n; i += Lanes()) {
    LoadThree(tag, components + ptrdiff_t{i} * 3, v0, v1, v2);
    store(0, i, v0), store(1, i, v1), store(2, i, v2);
  }
  for (; four && i + Lanes() < n; i += Lanes()) {
    hn::LoadInterleaved4(tag, components + ptrdiff_t{i} * 4, v0, v1, v2, v3);
    store(0, i, v0), store(1, i, v1), store(2, i, v2);
  }
  return i;
}
template <class Row>
int StoreVectors(const LM_deep_planes& planes, int n, uint8_t* pixels, ptrdiff_t step) {
  using Component = hn::TFromD<typename Row::Tag>;
  const typename Row::Tag tag;
  auto* components = reinterpret_cast<Component*>(pixels);
  const auto plane = [&](int which, int i) {
    return Row::Store(hn::LoadU(FloatTag(), planes.plane[which] + i));
  };
  const bool three = HasComponents<Component>(pixels, step, 3);
  const bool four = HasComponents<Component>(pixels, step, 4);
  int i = 0;
  for (; three && i + Lanes() <= n; i += Lanes())
    StoreThree(plane(0, i), plane(1, i), plane(2, i), tag, components + ptrdiff_t{i} * 3);
  for (; four && i + Lanes() < n; i += Lanes()) {
    Component* out = components + ptrdiff_t{i} * 4;
    hn::Vec<typename Row::Tag> v0, v1, v2, beside;
    hn::LoadInterleaved4(tag, out, v0, v1, v2, beside);
    hn::StoreInterleaved4(plane(0, i), plane(1, i), plane(2, i), beside, tag, out);
  }
  return i;
}

// From the pixel i on.
HWY_INLINE LM_deep_planes PlanesFrom(const LM_deep_planes& planes, int i) {
  return {{planes.plane[0] + i, planes.plane[1] + i, planes.plane[2] + i}};
}

void LoadDeep(const uint8_t* pixels, ptrdiff_t step, LM_pixel_kind kind, int n,
              const LM_deep_planes& planes) {
  const int done = kind == LM_pixel_kind::Words ? LoadVectors<WordRow>(pixels, step, n, planes)
                                                : LoadVectors<FloatRow>(pixels, step, n, planes);
  LM_LoadDeep(pixels + done * step, step, kind, n - done, PlanesFrom(planes, done));
}

void StoreDeep(const LM_deep_planes& planes, int n, LM_pixel_kind kind, uint8_t* pixels,
               ptrdiff_t step) {
  const int done = kind == LM_pixel_kind::Words ? StoreVectors<WordRow>(planes, n, pixels, step)
                                                : StoreVectors<FloatRow>(planes, n, pixels, step);
  LM_StoreDeep(PlanesFrom(planes, done), n - done, kind, pixels + done * step, step);
}

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
