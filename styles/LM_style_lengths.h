// Lengths of styles: from one world unit to another, and to the whole pixels of files and dialogs.
#pragma once

#include <concepts>

#include "LM_style.h"
#include "LM_vectori2.h"

// A length in preview pixels, from one world unit to another: value * toUnit / fromUnit, halves
// rounded away from zero for a positive unit; 0 when fromUnit is 0. The result is cut to 16 bits.
int16_t LM_TranslateWorldUnits(int16_t value, int16_t fromUnit, int16_t toUnit);

// The style's light with all its lengths translated: rounded as above where all of them are whole,
// as in every style of the dialog, and exact where one has a fraction. Whether it is on is left to
// the caller.
LM_style_light LM_TranslateLight(const LM_style_light& light, int16_t fromUnit, int16_t toUnit);

// The nearest whole number of 16 bits, halves away from zero; 0 for NaN.
int16_t LM_WholeLength(float length);
LM_vectori2 LM_WholeLengths(const LM_vector2f& lengths);

// A field of a style as files hold it: lengths are whole there.
inline int16_t LM_StoredField(float length) {
  return LM_WholeLength(length);
}
template <std::integral Integer> Integer LM_StoredField(Integer value) {
  return value;
}

// Whether a style file, which has whole numbers alone, would lose something of the light.
bool LM_HasFractions(const LM_style_light& light);
bool LM_HasFractions(const LM_style& style);
