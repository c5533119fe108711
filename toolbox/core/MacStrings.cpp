#include "MacStrings.h"

#include "TB_Text.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace {

constexpr size_t LONGEST = 255;

// The letters U+00C0 to U+017F without their marks; '.' stands for those that have none to lose.
constexpr std::string_view UNMARKED = "AAAAAA.CEEEEIIII.NOOOOO.OUUUUY.."
                                      "aaaaaa.ceeeeiiii.nooooo.ouuuuy.y"
                                      "AaAaAaCcCcCcCcDdDdEeEeEeEeEeGgGg"
                                      "GgGgHhHhIiIiIiIiIi..JjKk.LlLlLlL"
                                      "lLlNnNnNn...OoOoOo..RrRrRrSsSsSs"
                                      "SsTtTtTtUuUuUuUuUuUuWwYyYZzZzZz.";
static_assert(UNMARKED.size() == 0x180 - 0xC0);

char32_t WithoutMarks(char32_t code) {
  const bool listed = code >= 0xC0 && code < 0x180 && UNMARKED[code - 0xC0] != '.';
  return listed ? static_cast<char32_t>(UNMARKED[code - 0xC0]) : code;
}

bool IsCombiningMark(char32_t code) {
  return code >= 0x300 && code <= 0x36F;
}

// The small letter of a capital one: Latin to U+017F, Greek, Cyrillic.
char32_t SmallLetter(char32_t code) {
  auto within = [code](char32_t first, char32_t last) { return code >= first && code <= last; };
  if (within('A', 'Z') || (within(0xC0, 0xDE) && code != 0xD7) ||
      (within(0x391, 0x3A9) && code != 0x3A2) || within(0x410, 0x42F))
    return code + 0x20;
  if (within(0x400, 0x40F))
    return code + 0x50;
  if (code == 0x178)
    return 0xFF;
  if (code == 0x17F)
    return 's';
  // Capital and small letters alternate; in two stretches the capitals are the odd ones. The
  // dotted and the dotless i are letters of their own.
  const bool evenCapitals = (within(0x100, 0x137) && !within(0x130, 0x131)) || within(0x14A, 0x177);
  const bool oddCapitals = within(0x139, 0x148) || within(0x179, 0x17E);
  const bool even = code % 2 == 0;
  return (evenCapitals && even) || (oddCapitals && !even) ? code + 1 : code;
}

// How two texts are compared; what is not distinguished is folded away.
struct Folding {
  bool keepCase;
  bool keepMarks;
};

// Takes the next character that counts off the text; false at its end.
bool TakeFolded(std::string_view* text, Folding folding, char32_t* code) {
  while (!text->empty()) {
    TB_Character next = TB_FirstCharacter(*text);
    text->remove_prefix(next.length);
    if (!folding.keepMarks && IsCombiningMark(next.code))
      continue;
    *code = folding.keepMarks ? next.code : WithoutMarks(next.code);
    *code = folding.keepCase ? *code : SmallLetter(*code);
    return true;
  }
  return false;
}

int CompareFolded(std::string_view a, std::string_view b, Folding folding) {
  for (;;) {
    char32_t codeOfA = 0;
    char32_t codeOfB = 0;
    const bool moreOfA = TakeFolded(&a, folding, &codeOfA);
    const bool moreOfB = TakeFolded(&b, folding, &codeOfB);
    if (!moreOfA || !moreOfB)
      return static_cast<int>(moreOfA) - static_cast<int>(moreOfB);
    if (codeOfA != codeOfB)
      return codeOfA < codeOfB ? -1 : 1;
  }
}

std::string_view View(ConstStr255Param text) {
  return {reinterpret_cast<const char*>(text) + 1, text[0]};
}

void Store(StringPtr dest, std::string_view text) {
  memmove(dest + 1, text.data(), text.size());
  dest[0] = static_cast<unsigned char>(text.size());
}

} // namespace

Boolean EqualString(ConstStr255Param a, ConstStr255Param b, Boolean caseSens, Boolean diacSens) {
  return CompareFolded(View(a), View(b), {caseSens != 0, diacSens != 0}) == 0;
}

int TB_CompareNames(std::string_view a, std::string_view b) {
  for (Folding folding : {Folding{false, false}, Folding{false, true}})
    if (int order = CompareFolded(a, b, folding))
      return order;
  return a.compare(b);
}

void NumToString(int32_t number, StringPtr dest) {
  char digits[16];
  char* end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  Store(dest, {digits, static_cast<size_t>(end - digits)});
}

StringPtr PLstrcpy(StringPtr dest, ConstStr255Param source) {
  Store(dest, View(source));
  return dest;
}

TB_Str255 TB_PString(std::string_view text) {
  TB_Str255 result{};
  Store(result.bytes, TB_CutUTF8(text, LONGEST));
  return result;
}

std::string TB_StdString(ConstStr255Param text) {
  return std::string(View(text));
}

void TB_CutPString(StringPtr text, unsigned maxBytes) {
  text[0] = static_cast<unsigned char>(TB_CutUTF8(View(text), maxBytes).size());
}

std::string_view TB_CutUTF8(std::string_view text, size_t maxBytes) {
  if (text.size() <= maxBytes)
    return text;
  // A character is at most four bytes long, so its start is no more than three bytes back.
  for (size_t start = maxBytes - std::min<size_t>(maxBytes, 3); start < maxBytes; ++start) {
    TB_Character character = TB_FirstCharacter(text.substr(start));
    if (character.length > 1 && start + character.length > maxBytes)
      return text.substr(0, start);
  }
  return text.substr(0, maxBytes);
}
