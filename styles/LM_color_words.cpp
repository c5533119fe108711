#include "LM_color_words.h"

#include <algorithm>
#include <vector>

#include "LM_nearest_word.h"
#include "LM_number_words.h"
#include "LM_sentences.h"

namespace {

struct NamedColor {
  std::string_view name;
  uint32_t rgb;
};
constexpr NamedColor NAMED_COLORS[] = {
#include "LM_css_colors.inc"
};

constexpr uint32_t FULL_BYTE = 255;
constexpr uint32_t FULL = 65535;

LM_color48 ColorOf(uint32_t rgb) {
  const auto plane = [rgb](int shift) {
    return static_cast<uint16_t>((rgb >> shift & FULL_BYTE) * (FULL / FULL_BYTE));
  };
  return {{plane(16), plane(8), plane(0)}};
}

// "ff8800" or "f80"
bool ReadHex(std::string_view digits, LM_color48& color) {
  uint32_t rgb = 0;
  if ((digits.size() != 3 && digits.size() != 6) || !LM_ReadInteger(digits, rgb, 16))
    return false;
  if (digits.size() == 3) // each stands for two
    rgb = ((rgb & 0xF00) << 8 | (rgb & 0xF0) << 4 | (rgb & 0xF)) * 0x11;
  color = ColorOf(rgb);
  return true;
}

bool ReadTriple(std::string_view text, uint32_t (&values)[LM_PLANES]) {
  for (int plane = 0; plane < LM_PLANES; ++plane) {
    const std::string_view part = text.substr(0, text.find(','));
    const bool isLast = part.size() == text.size();
    if (isLast != (plane == LM_PLANES - 1) || !LM_ReadInteger(part, values[plane]))
      return false;
    text.remove_prefix(isLast ? part.size() : part.size() + 1);
  }
  return true;
}

} // namespace

bool LM_ReadColor(std::string_view text, LM_color48& color, std::string& why) {
  if (text.starts_with('#') && ReadHex(text.substr(1), color))
    return true;
  std::vector<std::string> names;
  for (const NamedColor& named : NAMED_COLORS) {
    if (LM_SameWord(named.name, text)) {
      color = ColorOf(named.rgb);
      return true;
    }
    names.emplace_back(named.name);
  }
  const std::string_view triple = text.substr(0, text.find('/'));
  uint32_t values[LM_PLANES] = {};
  uint32_t full = FULL;
  const bool isSaid = triple.size() < text.size();
  if (!ReadTriple(triple, values) ||
      (isSaid && !LM_ReadInteger(text.substr(triple.size() + 1), full)) ||
      (full != FULL && full != FULL_BYTE))
    return LM_Fails(why,
                    "a colour is a name, #rrggbb, or three numbers with commas between, of 65535 "
                    "or, with /255 after them, of 255" +
                        LM_DidYouMean(text, names));
  const uint32_t greatest = *std::max_element(values, values + LM_PLANES);
  if (greatest > full)
    return LM_Fails(why, std::to_string(greatest) + " is more than " + std::to_string(full));
  const std::string said(triple);
  if (!isSaid && greatest > 0 && greatest <= FULL_BYTE)
    return LM_Fails(why, "of 255 or of 65535? Write " + said + "/255 or " + said + "/65535");
  for (int plane = 0; plane < LM_PLANES; ++plane)
    color.component[plane] = static_cast<uint16_t>(values[plane] * (FULL / full));
  return true;
}
