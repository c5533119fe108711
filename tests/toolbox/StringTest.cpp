// Length-prefixed strings.
#include "MacStrings.h"

#include <gtest/gtest.h>

TEST(String, EqualUnderEachSetting) {
  struct Case {
    const char* a;
    const char* b;
    bool exact, anyCase, anyMarks, either;
  };
  const Case cases[] = {
      {"", "", true, true, true, true},
      {"Sunset", "Sunset", true, true, true, true},
      {"Sunset", "sUNSET", false, true, false, true},
      {"Sunset", "Sunsets", false, false, false, false},
      {"été", "ete", false, false, true, true},
      {"ÉTÉ", "été", false, true, false, true},
      {"ÉTÉ", "ete", false, false, false, true},
      {"e\xcc\x81t\xc3\xa9", "ete", false, false, true, true},
      {"ŁÓDŹ", "łódź", false, true, false, true},
      {"ŁÓDŹ", "lodz", false, false, false, true},
      {"ÿ", "Ÿ", false, true, false, true},
      {"Ĺĺ", "ĺĹ", false, true, false, true},
      {"Ķķ", "ķĶ", false, true, false, true},
      {"ŷŶ", "Ŷŷ", false, true, false, true},
      {"Žž", "žŽ", false, true, false, true},
      {"İ", "i", false, false, false, true},
      {"×", "÷", false, false, false, false},
      {"ß", "ss", false, false, false, false},
      {"Æ", "æ", false, true, false, true},
      {"Æ", "A", false, false, false, false},
      {"ΣΩ", "σω", false, true, false, true},
      {"ЁЖ", "ёж", false, true, false, true},
      {"\xff", "\xff", true, true, true, true},
      {"\xff", "ÿ", false, false, false, false},
      {"\xc3", "\xe3", false, false, false, false},
  };
  for (const Case& c : cases) {
    const TB_Str255 a = TB_PString(c.a);
    const TB_Str255 b = TB_PString(c.b);
    const bool results[] = {EqualString(a, b, 1, 1) != 0, EqualString(a, b, 0, 1) != 0,
                            EqualString(a, b, 1, 0) != 0, EqualString(a, b, 0, 0) != 0};
    const bool reversed[] = {EqualString(b, a, 1, 1) != 0, EqualString(b, a, 0, 1) != 0,
                             EqualString(b, a, 1, 0) != 0, EqualString(b, a, 0, 0) != 0};
    const bool expected[] = {c.exact, c.anyCase, c.anyMarks, c.either};
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(results[i], expected[i]) << c.a << " and " << c.b << ", setting " << i;
      EXPECT_EQ(reversed[i], expected[i]) << c.b << " and " << c.a << ", setting " << i;
    }
  }
}

TEST(String, CutsBetweenCharacters) {
  struct Case {
    std::string_view text;
    size_t bytes;
    std::string_view result;
  };
  const Case cases[] = {
      {"abc", 3, "abc"},   {"abc", 2, "ab"},  {"aé", 2, "a"},
      {"aé", 3, "aé"},     {"a€b", 3, "a"},   {"a€b", 4, "a€"},
      {"😀", 3, ""},        {"x😀", 4, "x"},    {"\x80\x80\x80\x80", 3, "\x80\x80\x80"},
      {"ab\xc3", 2, "ab"}, {"a\xc3", 1, "a"}, {"éé", 0, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(TB_CutUTF8(c.text, c.bytes), c.result) << c.text << " to " << c.bytes;
  }
  TB_Str255 name = TB_PString("1234567890123456789012345678901é");
  TB_CutPString(name.bytes, 32);
  EXPECT_EQ(TB_StdString(name), "1234567890123456789012345678901");
}

TEST(String, LongTextsAreCutAtTheEndOfTheRecord) {
  const std::string longest(254, 'x');
  EXPECT_EQ(TB_StdString(TB_PString(longest + "é")), longest);
}

TEST(String, Numbers) {
  const std::pair<int32_t, const char*> cases[] = {
      {0, "0"}, {-100, "-100"}, {INT32_MAX, "2147483647"}, {INT32_MIN, "-2147483648"}};
  for (const auto& [number, text] : cases) {
    Str255 digits;
    NumToString(number, digits);
    EXPECT_EQ(TB_StdString(digits), text);
  }
}

TEST(String, NamesHaveOneOrder) {
  // Each before all that follow it.
  const char* names[] = {"", "1", "A", "a", "À", "à", "a b", "ab", "B", "b", "Œ", "\x80"};
  for (size_t i = 0; i < std::size(names); ++i) {
    for (size_t j = 0; j < std::size(names); ++j) {
      const int order = TB_CompareNames(names[i], names[j]);
      EXPECT_EQ(order < 0, i < j) << names[i] << " and " << names[j];
      EXPECT_EQ(order > 0, i > j) << names[i] << " and " << names[j];
    }
  }
}
