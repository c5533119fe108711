#include "LM_style_fields.h"

#include <algorithm>
#include <cmath>
#include <concepts>
#include <limits>
#include <type_traits>

#include "LM_color_words.h"
#include "LM_light_kinds.h"
#include "LM_nearest_word.h"
#include "LM_number_words.h"
#include "LM_preview_geometry.h"
#include "LM_sentences.h"
#include "LM_style_layout.h"

namespace {

constexpr std::string_view LIGHT_PREFIX = "light.";
constexpr std::string_view NO_SUCH_SETTING = "there is no such setting";

// The dialog's words for fields and arrays, without a light's number.
struct Synonym {
  std::string_view word, name;
};
constexpr Synonym SYNONYMS[] = {{"ambience", "ambientBrightness"},
                                {"ambienceColour", "ambientColor"},
                                {"relief", "bumpChannel"},
                                {"height", "bumpAmplitude"},
                                {"colour", "color"},
                                {"centre", "center"}};

struct Word {
  LM_field kind;
  std::string_view word;
  int64_t value;
};
constexpr Word WORDS[] = {{LM_field::Flag, "true", 1},     {LM_field::Flag, "false", 0},
                          {LM_field::Flag, "on", 1},       {LM_field::Flag, "off", 0},
                          {LM_field::Channel, "none", 0},  {LM_field::Channel, "red", 1},
                          {LM_field::Channel, "green", 2}, {LM_field::Channel, "blue", 3}};

std::string_view WithoutPlus(std::string_view number) {
  return number.substr(number.starts_with('+') ? 1 : 0);
}

// Splits "light.3.rest" into its parts.
bool SplitLightKey(std::string_view key, size_t& light, std::string_view& field) {
  if (!key.starts_with(LIGHT_PREFIX))
    return false;
  key.remove_prefix(LIGHT_PREFIX.size());
  const size_t dot = key.find('.');
  int64_t number = 0;
  if (dot == std::string_view::npos || !LM_ReadInteger(WithoutPlus(key.substr(0, dot)), number) ||
      number < 0)
    return false;
  light = static_cast<size_t>(number);
  field = key.substr(dot + 1);
  return true;
}

// What a field of that type holds. A length of a style is a float, but no longer than in a file.
template <class Number> constexpr LM_field_ends BitsOf() {
  using Limits = std::numeric_limits<std::conditional_t<std::integral<Number>, Number, int16_t>>;
  return {static_cast<int64_t>(Limits::min()), static_cast<int64_t>(Limits::max())};
}

std::string OutsideOf(double value, LM_field_ends ends) {
  return LM_ShortText(value) + " is not between " + std::to_string(ends.low) + " and " +
         std::to_string(ends.high);
}

// NaN is outside of everything.
bool IsOutside(double value, LM_field_ends ends) {
  return !(value >= static_cast<double>(ends.low) && value <= static_cast<double>(ends.high));
}

bool MayBe(double value, LM_field kind) {
  return kind == LM_field::Length || std::trunc(value) == value;
}

// Gives the field of that key, in a light that is added if need be, the value that
// assign(kind, bits, value) makes; unless that answers what is wrong.
template <class Assign>
bool SetField(LM_style& style, std::string_view key, std::string& why, const Assign& assign) {
  size_t light = 0;
  std::string_view name = key;
  const bool isOfLight = SplitLightKey(key, light, name);
  why = NO_SUCH_SETTING;
  const auto visit = [&]<class Number>(const char* known, Number& field, LM_field kind) {
    if (name != known || kind == LM_field::Count)
      return true;
    double value = 0;
    why = assign(kind, BitsOf<Number>(), value);
    if (why.empty())
      field = static_cast<Number>(value);
    return false;
  };
  if (!isOfLight) {
    LM_VisitStyleHeader(style, visit);
    return why.empty();
  }
  if (light >= LM_MAX_LIGHTS)
    return LM_Fails(why, "lights count from 0 to " + std::to_string(LM_MAX_LIGHTS - 1));
  if (light > style.lightsRead)
    return LM_Fails(why, (style.lightsRead == 1 ? "there is only " : "there are only ") +
                             LM_CountedLights(style.lightsRead));
  const bool isNew = light == style.lightsRead;
  LM_style_light changed = isNew ? LM_NewStyleLight() : style.lights[light];
  LM_VisitStyleLight(changed, visit);
  if (!why.empty())
    return false;
  style.lights[light] = changed;
  if (isNew)
    style.numLights = ++style.lightsRead;
  return true;
}

// The value of a word or a number, and what is wrong with it.
std::string ReadValue(std::string_view text, LM_field kind, LM_field_ends bits, double& value) {
  for (const Word& word : WORDS)
    if (word.kind == kind && word.word == text) {
      value = static_cast<double>(word.value);
      return "";
    }
  for (const LM_light_kind& light : LM_LIGHT_KINDS)
    if (kind == LM_field::LightType && (light.word == text || light.plainWord == text)) {
      value = light.code;
      return "";
    }
  const bool isNumber = LM_ReadFraction(WithoutPlus(text), value) && MayBe(value, kind);
  if (isNumber && !IsOutside(value, LM_EndsOf(kind, bits)))
    return "";
  if (kind == LM_field::LightType)
    return "it is " + LM_LightKindWords(&LM_light_kind::word) + ", or " +
           LM_LightKindWords(&LM_light_kind::plainWord);
  if (kind == LM_field::Flag)
    return "it is true or false";
  return isNumber ? OutsideOf(value, LM_EndsOf(kind, bits))
                  : "\"" + std::string(text) + "\" is not a " +
                        (kind == LM_field::Length ? "number" : "whole number");
}

// The key as styles have it.
std::string Translated(std::string_view key) {
  size_t light = 0;
  std::string_view name = key;
  SplitLightKey(key, light, name);
  const std::string_view array = name.substr(0, name.find('.'));
  for (const Synonym& synonym : SYNONYMS)
    if (array == synonym.word)
      return std::string(key.substr(0, key.size() - name.size()))
          .append(synonym.name)
          .append(name.substr(array.size()));
  return std::string(key);
}

enum class Words { Styles, Dialogs };

// What is wrong with a key, and the one that may be meant. Its last part counts, so that a light's
// setting is found without its light.
std::string UnknownKey(std::string_view key, Words words) {
  size_t light = 0;
  std::string_view name = key;
  SplitLightKey(key, light, name);
  std::vector<std::string> names;
  std::vector<std::string> keys;
  const auto add = [&](const std::string& known) {
    const size_t dot = known.rfind('.');
    names.push_back(known.substr(dot + 1)); // the whole, where there is no dot
    keys.push_back(dot == std::string::npos
                       ? known
                       : std::string(LIGHT_PREFIX) + std::to_string(light) + "." + names.back());
  };
  for (const LM_style_key& known : LM_StyleKeys()) {
    add(known.name);
    if (words == Words::Dialogs && !known.word.empty())
      add(known.word);
  }
  return std::string(NO_SUCH_SETTING) + LM_DidYouMean(name, names, keys);
}

bool SetColor(LM_style& style, const std::string& key, std::string_view value, std::string& why) {
  LM_color48 color = {};
  bool isSet = LM_ReadColor(value, color, why);
  for (int plane = 0; plane < LM_PLANES && isSet; ++plane)
    isSet =
        LM_SetStyleNumber(style, key + "." + std::to_string(plane), color.component[plane], why);
  return isSet;
}

bool SetPoint(LM_style& style, const std::string& key, std::string_view value, std::string& why) {
  const size_t comma = value.find(',');
  if (comma == std::string_view::npos || value.find(',', comma + 1) != std::string_view::npos)
    return LM_Fails(why, "it takes 2 numbers with a comma between");
  return LM_SetStyleField(style, key + ".0", value.substr(0, comma), why) &&
         LM_SetStyleField(style, key + ".1", value.substr(comma + 1), why);
}

} // namespace

LM_style LM_NewStyle() {
  LM_style style = {};
  style.version = LM_STYLE_VERSION;
  style.whiteIsHigh = 1;
  style.bumpAmplitude = 128;
  style.ambientColor = {{65535, 65535, 65535}};
  style.gloss = 128;
  style.exposure = 128;
  style.ambientBrightness = 16;
  style.worldUnit = LM_FRAME_SIZE / 2;
  return style;
}

LM_style_light LM_NewStyleLight() {
  LM_style_light light = {};
  light.color = {{65535, 65535, 65535}};
  light.intensity = 66;
  light.spread = 128;
  light.on = 1;
  light.type = LM_STYLE_SPOT;
  light.handle1 = {30, 30};
  light.handle2 = {-15, 15};
  light.radius = 30;
  return light;
}

std::string LM_CountedLights(int count) {
  return std::to_string(count) + (count == 1 ? " light" : " lights");
}

bool LM_SetStyleNumber(LM_style& style, std::string_view key, double value, std::string& why) {
  const bool isSet =
      SetField(style, key, why, [&](LM_field kind, LM_field_ends bits, double& field) {
        field = value;
        return !MayBe(value, kind)      ? std::string("it takes a whole number")
               : IsOutside(value, bits) ? OutsideOf(value, bits)
                                        : std::string();
      });
  if (why == NO_SUCH_SETTING)
    why = UnknownKey(key, Words::Styles);
  return isSet;
}

bool LM_SetStyleField(LM_style& style, std::string_view key, std::string_view value,
                      std::string& why) {
  const std::string whole = Translated(key);
  const std::string_view name = std::string_view(whole).substr(whole.rfind('.') + 1);
  if (name == "color" || name == "ambientColor")
    return SetColor(style, whole, value, why);
  if (name == "center" || name == "handle1" || name == "handle2")
    return SetPoint(style, whole, value, why);
  const bool isSet =
      SetField(style, whole, why, [&](LM_field kind, LM_field_ends bits, double& field) {
        return kind == LM_field::Version ? std::string(NO_SUCH_SETTING)
                                         : ReadValue(value, kind, bits, field);
      });
  if (why == NO_SUCH_SETTING)
    why = UnknownKey(key, Words::Dialogs);
  return isSet;
}

std::string LM_BeyondSliders(const LM_style& style) {
  std::string told;
  LM_VisitStyleHeader(style, [&](const char* name, int64_t value, LM_field kind) {
    if (const int64_t lit = LM_LitAs(kind, value); lit != value)
      told += (told.empty() ? "" : ", ") + std::string(name) + " " + std::to_string(value) +
              " is lit as " + std::to_string(lit);
    return true;
  });
  return told;
}

std::vector<LM_style_key> LM_StyleKeys() {
  std::vector<LM_style_key> keys;
  const auto collect = [&](const std::string& prefix) {
    return [&keys, prefix](const char* field, const auto&, LM_field kind) {
      const std::string_view whole = field;
      const std::string name(whole.substr(0, whole.find('.')));
      const bool isKnown = !keys.empty() && keys.back().name == prefix + name;
      if (kind == LM_field::Count || kind == LM_field::Version || isKnown)
        return true;
      const auto* const synonym =
          std::find_if(std::begin(SYNONYMS), std::end(SYNONYMS),
                       [&](const Synonym& one) { return one.name == name; });
      keys.push_back({prefix + name, synonym == std::end(SYNONYMS)
                                         ? std::string()
                                         : prefix + std::string(synonym->word)});
      return true;
    };
  };
  const LM_style style = LM_NewStyle();
  LM_VisitStyleHeader(style, collect(""));
  LM_VisitStyleLight(style.lights[0], collect("light.N."));
  return keys;
}
