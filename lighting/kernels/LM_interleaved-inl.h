// Pixels of three components to planes, and back. Compiled once for each instruction set.
#if defined(LM_INTERLEAVED_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef LM_INTERLEAVED_INL_H
#undef LM_INTERLEAVED_INL_H
#else
#define LM_INTERLEAVED_INL_H
#endif

#include <utility>

#include "LM_vector_math-inl.h"

HWY_BEFORE_NAMESPACE();
namespace {
namespace HWY_NAMESPACE {

// As the vector library does it.
template <class Tag, class Vector = hn::Vec<Tag>>
HWY_INLINE void LoadThree(Tag tag, const hn::TFromD<Tag>* from, Vector& v0, Vector& v1,
                          Vector& v2) {
  hn::LoadInterleaved3(tag, from, v0, v1, v2);
}
template <class Tag, class Vector = hn::Vec<Tag>>
HWY_INLINE void StoreThree(Vector v0, Vector v1, Vector v2, Tag tag, hn::TFromD<Tag>* to) {
  hn::StoreInterleaved3(v0, v1, v2, tag, to);
}

// On WebAssembly it does bytes and words one by one, where two shuffles make a vector.
#if HWY_TARGET == HWY_WASM
using RawBytes = uint8_t __attribute__((vector_size(16)));
using RawWords = uint16_t __attribute__((vector_size(16)));
template <int lanes> using LaneNumbers = std::make_integer_sequence<int, lanes>;

// Every third byte of a, b and c, from `first` on.
template <int first, int... i>
HWY_INLINE v128_t EveryThird(RawBytes a, RawBytes b, RawBytes c, std::integer_sequence<int, i...>) {
  constexpr int LANES = sizeof...(i);
  const RawBytes two =
      __builtin_shufflevector(a, b, (first + 3 * i < 2 * LANES ? first + 3 * i : -1)...);
  return reinterpret_cast<v128_t>(
      __builtin_shufflevector(two, c, (first + 3 * i < 2 * LANES ? i : first + 3 * i - LANES)...));
}

// Lanes of v0, v1 and v2 in turn, a vector of what comes from the place `first` on.
template <int first, class Raw, int... i>
HWY_INLINE v128_t InTurn(Raw v0, Raw v1, Raw v2, std::integer_sequence<int, i...>) {
  constexpr int LANES = sizeof...(i);
  const Raw two = __builtin_shufflevector(
      v0, v1, ((first + i) % 3 == 2 ? -1 : (first + i) % 3 * LANES + (first + i) / 3)...);
  return reinterpret_cast<v128_t>(
      __builtin_shufflevector(two, v2, ((first + i) % 3 == 2 ? LANES + (first + i) / 3 : i)...));
}

using WasmBytes = hn::Full128<uint8_t>;
HWY_INLINE void LoadThree(WasmBytes tag, const uint8_t* from, hn::Vec<WasmBytes>& v0,
                          hn::Vec<WasmBytes>& v1, hn::Vec<WasmBytes>& v2) {
  const auto a = reinterpret_cast<RawBytes>(hn::LoadU(tag, from).raw);
  const auto b = reinterpret_cast<RawBytes>(hn::LoadU(tag, from + 16).raw);
  const auto c = reinterpret_cast<RawBytes>(hn::LoadU(tag, from + 32).raw);
  v0.raw = EveryThird<0>(a, b, c, LaneNumbers<16>());
  v1.raw = EveryThird<1>(a, b, c, LaneNumbers<16>());
  v2.raw = EveryThird<2>(a, b, c, LaneNumbers<16>());
}
HWY_INLINE void StoreThree(hn::Vec<WasmBytes> v0, hn::Vec<WasmBytes> v1, hn::Vec<WasmBytes> v2,
                           WasmBytes, uint8_t* to) {
  const auto a = reinterpret_cast<RawBytes>(v0.raw);
  const auto b = reinterpret_cast<RawBytes>(v1.raw);
  const auto c = reinterpret_cast<RawBytes>(v2.raw);
  wasm_v128_store(to, InTurn<0>(a, b, c, LaneNumbers<16>()));
  wasm_v128_store(to + 16, InTurn<16>(a, b, c, LaneNumbers<16>()));
  wasm_v128_store(to + 32, InTurn<32>(a, b, c, LaneNumbers<16>()));
}

// As many words as a vector has floats.
using WasmWords = hn::Full64<uint16_t>;
HWY_INLINE void StoreThree(hn::Vec<WasmWords> v0, hn::Vec<WasmWords> v1, hn::Vec<WasmWords> v2,
                           WasmWords, uint16_t* to) {
  const auto a = reinterpret_cast<RawWords>(v0.raw);
  const auto b = reinterpret_cast<RawWords>(v1.raw);
  const auto c = reinterpret_cast<RawWords>(v2.raw);
  wasm_v128_store(to, InTurn<0>(a, b, c, LaneNumbers<8>()));
  wasm_v128_store64_lane(to + 8, InTurn<8>(a, b, c, LaneNumbers<8>()), 0);
}
#endif

} // namespace HWY_NAMESPACE
} // namespace
HWY_AFTER_NAMESPACE();

#endif
