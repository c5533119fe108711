#include "LM_style_fields.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "LM_preview_geometry.h"
#include "LM_style_layout.h"

namespace {

struct Word {
  std::string_view word;
  uint16_t code;
};
constexpr Word LIGHT_TYPES[] = {
    {"directional", LM_STYLE_DIRECTIONAL}, {"omni", LM_STYLE_OMNI}, {"spot", LM_STYLE_SPOT}};

bool Fails(std::string& why, std::string sentence) {
  why = std::move(sentence);
  return false;
}

bool ReadInteger(std::string_view text, int64_t& value) {
  if (!text.empty() && text.front() == '+')
    text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

// Splits "light.3.rest" into its parts.
bool SplitLightKey(std::string_view key, size_t& light, std::string_view& field) {
  constexpr std::string_view PREFIX = "light.";
  if (!key.starts_with(PREFIX))
    return false;
  key.remove_prefix(PREFIX.size());
  const size_t dot = key.find('.');
  int64_t number = 0;
  if (dot == std::string_view::npos || !ReadInteger(key.substr(0, dot), number) || number < 0)
    return false;
  light = static_cast<size_t>(number);
  field = key.substr(dot + 1);
  return true;
}

// Assigns to the field of that name; answers whether there is one. In `why` what is wrong with the
// value.
class FieldSetter {
public:
  FieldSetter(std::string_view name, int64_t value, std::string& why)
      : _name(name), _value(value), _why(why) {}

  template <class Integer> bool operator()(const char* name, Integer& field, LM_field kind) {
    if (_name != name || kind == LM_field::Count)
      return true;
    _found = true;
    using Limits = std::numeric_limits<Integer>;
    const int64_t low = static_cast<int64_t>(Limits::min());
    const int64_t high = static_cast<int64_t>(Limits::max());
    if (_value < low || _value > high)
      _why = std::to_string(_value) + " is not between " + std::to_string(low) + " and " +
             std::to_string(high);
    else
      field = static_cast<Integer>(_value);
    return false;
  }
  bool Found() const { return _found; }

private:
  std::string_view _name;
  int64_t _value;
  std::string& _why;
  bool _found = false;
};

template <class VisitAll>
bool SetNumber(VisitAll visitAll, std::string_view key, int64_t value, std::string& why) {
  why.clear();
  FieldSetter setter(key, value, why);
  visitAll(setter);
  if (!setter.Found())
    return Fails(why, "there is no such setting");
  return why.empty();
}

bool ValueOfText(std::string_view key, std::string_view text, int64_t& value) {
  if (key.ends_with("type")) {
    value = LM_LightTypeCode(text);
    if (value != 0)
      return true;
  }
  if (text == "true" || text == "false") {
    value = text == "true" ? 1 : 0;
    return true;
  }
  return ReadInteger(text, value);
}

// How many components the array of that name has, or 0.
int ComponentsOf(std::string_view key) {
  const std::string_view name =
      key.substr(key.rfind('.') == std::string_view::npos ? 0 : key.rfind('.') + 1);
  if (name == "color" || name == "ambientColor")
    return LM_PLANES;
  return name == "center" || name == "handle1" || name == "handle2" ? 2 : 0;
}

bool SetArray(LM_style& style, std::string_view key, std::string_view value, int components,
              std::string& why) {
  if (std::count(value.begin(), value.end(), ',') != components - 1)
    return Fails(why, "it takes " + std::to_string(components) + " numbers with commas between");
  for (int i = 0; i < components; ++i) {
    const std::string_view part = value.substr(0, value.find(','));
    value.remove_prefix(std::min(part.size() + 1, value.size()));
    if (!LM_SetStyleField(style, std::string(key) + "." + std::to_string(i), part, why))
      return false;
  }
  return true;
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

std::string_view LM_LightTypeWord(uint16_t code) {
  for (const Word& type : LIGHT_TYPES) {
    if (type.code == code)
      return type.word;
  }
  return {};
}

uint16_t LM_LightTypeCode(std::string_view word) {
  for (const Word& type : LIGHT_TYPES) {
    if (type.word == word)
      return type.code;
  }
  return 0;
}

bool LM_SetStyleNumber(LM_style& style, std::string_view key, int64_t value, std::string& why) {
  size_t light = 0;
  std::string_view field;
  if (!SplitLightKey(key, light, field))
    return SetNumber([&](FieldSetter& setter) { LM_VisitStyleHeader(style, std::ref(setter)); },
                     key, value, why);
  if (light >= LM_MAX_LIGHTS)
    return Fails(why, "lights count from 0 to " + std::to_string(LM_MAX_LIGHTS - 1));
  if (light > style.lightsRead)
    return Fails(why, "there are only " + std::to_string(style.lightsRead) + " lights");
  const bool isNew = light == style.lightsRead;
  LM_style_light changed = isNew ? LM_NewStyleLight() : style.lights[light];
  if (!SetNumber([&](FieldSetter& setter) { LM_VisitStyleLight(changed, std::ref(setter)); }, field,
                 value, why))
    return false;
  style.lights[light] = changed;
  if (isNew)
    style.numLights = ++style.lightsRead;
  return true;
}

bool LM_SetStyleField(LM_style& style, std::string_view key, std::string_view value,
                      std::string& why) {
  const int components = ComponentsOf(key);
  if (components > 0)
    return SetArray(style, key, value, components, why);
  int64_t number = 0;
  if (!ValueOfText(key, value, number))
    return Fails(why, "\"" + std::string(value) + "\" is not a whole number");
  return LM_SetStyleNumber(style, key, number, why);
}

std::vector<std::string> LM_StyleKeys() {
  std::vector<std::string> keys;
  const auto collect = [&](const std::string& prefix) {
    return [&keys, prefix](const char* name, const auto&, LM_field kind) {
      const std::string_view whole = name;
      const std::string key = prefix + std::string(whole.substr(0, whole.find('.')));
      if (kind != LM_field::Count && whole != "version" && (keys.empty() || keys.back() != key))
        keys.push_back(key);
      return true;
    };
  };
  const LM_style style = LM_NewStyle();
  LM_VisitStyleHeader(style, collect(""));
  LM_VisitStyleLight(style.lights[0], collect("light.N."));
  return keys;
}
