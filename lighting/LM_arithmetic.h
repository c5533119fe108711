// The integer and conversion rules that output bytes depend on, the same on every machine.
#pragma once

#include <cstdint>

// 32-bit sums, differences and products wrap modulo 2^32.
constexpr int32_t LM_WrapAdd(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t LM_WrapSubtract(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
constexpr int32_t LM_WrapMultiply(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

// Truncates towards zero; values out of range give the nearest integer, NaN gives 0.
constexpr int32_t LM_Truncate(double value) {
  if (value >= 2147483648.0)
    return INT32_MAX;
  if (value > -2147483649.0)
    return static_cast<int32_t>(value);
  return value != value ? 0 : INT32_MIN;
}
constexpr int32_t LM_Truncate(float value) {
  return LM_Truncate(static_cast<double>(value));
}

// To the nearest of 0 to 65535, ties to even; NaN gives 0. From 2^23 on floats are whole numbers:
// std::nearbyint would be a call each time where the processor's instruction for it cannot be taken
// for granted.
constexpr uint16_t LM_RoundWord(float value) {
  constexpr float WHOLE = 0x1p23F;
  const float limited = !(value > 0.0F) ? 0.0F : value < 65535.0F ? value : 65535.0F;
  return static_cast<uint16_t>((limited + WHOLE) - WHOLE);
}

// The low 16 bits, as a store into a 16-bit field leaves them.
constexpr int16_t LM_Cut16(int32_t value) {
  return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint32_t>(value)));
}
// The nearest 16-bit value: for rectangle sides, which must not wrap round to the other side.
constexpr int16_t LM_Saturate16(int32_t value) {
  return static_cast<int16_t>(value > INT16_MAX   ? INT16_MAX
                              : value < INT16_MIN ? INT16_MIN
                                                  : value);
}
