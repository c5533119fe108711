// Length-prefixed strings of UTF-8: comparing, copying, and the way to C++ strings.
#pragma once

#include "MacTypes.h"

#include <string>
#include <string_view>

// A Str255 that can be returned and stored; passes wherever a ConstStr255Param is wanted.
struct TB_Str255 {
  Str255 bytes;
  operator ConstStr255Param() const { return bytes; }
};

// 1 when the strings are equal. caseSens 0: capital and small letters are the same (Latin, Greek,
// Cyrillic). diacSens 0: Latin letters equal their unmarked ones, combining marks are skipped.
// Bytes that are not UTF-8 equal only themselves.
TB_EXPORT Boolean EqualString(ConstStr255Param a, ConstStr255Param b, Boolean caseSens,
                              Boolean diacSens);
// The decimal digits of a number.
TB_EXPORT void NumToString(int32_t number, StringPtr dest);
// Copies source with its length byte; dest holds 256 bytes or as many as the source needs.
TB_EXPORT StringPtr PLstrcpy(StringPtr dest, ConstStr255Param source);

// A length-prefixed copy, cut to 255 bytes, never within a character.
TB_EXPORT TB_Str255 TB_PString(std::string_view text);
TB_EXPORT std::string TB_StdString(ConstStr255Param text);
// Cuts text in place to at most maxBytes bytes, never within a character of UTF-8.
TB_EXPORT void TB_CutPString(StringPtr text, unsigned maxBytes);
// The longest beginning of text of at most maxBytes bytes that does not split a character.
TB_EXPORT std::string_view TB_CutUTF8(std::string_view text, size_t maxBytes);
// Below 0, 0 or above 0: alphabetical order, where case and marks decide only between names that
// are otherwise equal. A total order: 0 only for identical bytes.
TB_EXPORT int TB_CompareNames(std::string_view a, std::string_view b);
