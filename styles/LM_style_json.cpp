#include "LM_style_json.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "LM_height_words.h"
#include "LM_light_kinds.h"
#include "LM_number_words.h"
#include "LM_sentences.h"
#include "LM_style_fields.h"
#include "LM_style_layout.h"
#include "MacStrings.h"

namespace {

// Keys that describe the file and set nothing.
bool IsRemark(std::string_view key) {
  return key == "$schema" || key == "name" || key == "description";
}

// The object that a recipe has beside its style's settings.
constexpr const char* RECIPE = "lit";

// Takes the parser's events straight into the style; nothing of the text is kept but the present
// key.
class StyleReader : public nlohmann::json_sax<nlohmann::json> {
public:
  StyleReader(LM_style& style, LM_height_source& relief, std::string& why)
      : _style(style), _relief(relief), _why(why) {}

  bool null() override { return _place == Place::Remark || Fail("null is no value"); }
  bool boolean(bool value) override { return Number(value ? 1 : 0); }
  bool number_integer(number_integer_t value) override {
    return Number(static_cast<double>(value));
  }
  bool number_unsigned(number_unsigned_t value) override {
    return value <= INT64_MAX || _place == Place::Remark ? Number(static_cast<double>(value))
                                                         : Fail("the number is too large");
  }
  bool number_float(number_float_t value, const string_t&) override { return Number(value); }
  bool string(string_t& value) override {
    if (_place == Place::Remark || (_place == Place::Style && IsRemark(_key)))
      return true;
    if (_place == Place::Light && _key == "type") {
      for (const LM_light_kind& kind : LM_LIGHT_KINDS)
        if (kind.word == value)
          return Number(kind.code);
      return Fail("it is " + LM_LightKindWords(&LM_light_kind::word));
    }
    if (_place == Place::Relief && _key == "source")
      return LM_SetHeightSource(_relief, value) ||
             Fail("it is a channel's number, or " + LM_HeightSourceWords());
    return Fail("it takes a number, not text");
  }
  bool binary(binary_t&) override { return Fail("it takes a number"); }

  bool start_object(size_t) override {
    if (_place == Place::Remark || (_place == Place::Style && _key == RECIPE))
      return StartRemark();
    if (_place == Place::Outside) {
      _place = Place::Style;
      return true;
    }
    if (_place == Place::Style && _key == "relief") {
      _place = Place::Relief;
      return true;
    }
    if (_place != Place::Lights)
      return Fail("it takes no object");
    if (_style.lightsRead == LM_MAX_LIGHTS)
      return Fail("there are more than " + std::to_string(LM_MAX_LIGHTS) + " lights");
    _style.lights[_style.lightsRead] = LM_NewStyleLight();
    _style.numLights = ++_style.lightsRead;
    _place = Place::Light;
    return true;
  }
  bool key(string_t& value) override {
    if (_place == Place::Remark)
      return true;
    _key = TB_CutUTF8(value, LONGEST_KEY);
    // It would end the sentence about it where that is read as C text.
    std::replace(_key.begin(), _key.end(), '\0', '?');
    return true;
  }
  bool end_object() override {
    if (_place == Place::Remark)
      return EndRemark();
    _place = _place == Place::Light    ? Place::Lights
             : _place == Place::Relief ? Place::Style
                                       : Place::Outside;
    _key = "lights";
    return true;
  }
  bool start_array(size_t) override {
    if (_place == Place::Remark)
      return StartRemark();
    if (_place == Place::Style && _key == "lights") {
      _place = Place::Lights;
      return true;
    }
    if (_place != Place::Style && _place != Place::Light)
      return Fail("it takes no list");
    _arrayIn = _place;
    _place = Place::Array;
    _index = 0;
    return true;
  }
  bool end_array() override {
    if (_place == Place::Remark)
      return EndRemark();
    _place = _place == Place::Array ? _arrayIn : Place::Style;
    return true;
  }
  bool parse_error(size_t, const std::string&, const nlohmann::detail::exception& error) override {
    if (_why.empty())
      _why = Sentence(error.what());
    return false;
  }

private:
  enum class Place { Outside, Style, Relief, Lights, Light, Array, Remark };
  static constexpr size_t LONGEST_KEY = 40;

  // The parser's message without its own error number, and without what it read last where that is
  // more than a line.
  static std::string Sentence(std::string_view message) {
    constexpr size_t LONGEST = 240;
    const size_t end = message.find("] ");
    message.remove_prefix(end == std::string_view::npos ? 0 : end + 2);
    return std::string(
        message.substr(0, message.size() > LONGEST ? message.find("; last read") : message.size()));
  }

  std::string Path() const {
    const Place place = _place == Place::Array ? _arrayIn : _place;
    std::string path =
        place == Place::Light || place == Place::Lights
            ? "light." + std::to_string(std::max<int>(_style.lightsRead, 1) - 1) + "."
        : place == Place::Relief ? "relief."
                                 : "";
    path += _key;
    return _place == Place::Array ? path + "." + std::to_string(_index) : path;
  }

  bool Fail(const std::string& what) {
    _why = (_place == Place::Outside ? "the style is not an object" : Path() + ": " + what);
    return false;
  }

  // What was lit and how, which a style alone does not say, is passed over.
  bool StartRemark() {
    _place = Place::Remark;
    ++_depth;
    return true;
  }
  bool EndRemark() {
    if (--_depth == 0)
      _place = Place::Style;
    return true;
  }

  bool Number(double value) {
    if (_place == Place::Remark)
      return true;
    if (_place == Place::Outside || _place == Place::Lights)
      return Fail("it takes no number");
    std::string what;
    if (_place == Place::Relief) {
      // Beyond any of its settings, and still a number of 64 bits.
      constexpr double MOST = 1e15;
      if (std::trunc(value) != value)
        return Fail("it takes a whole number");
      const auto whole = static_cast<int64_t>(std::clamp(value, -MOST, MOST));
      return LM_SetHeightNumber(_relief, _key, whole, what) || Fail(what);
    }
    if (!LM_SetStyleNumber(_style, Path(), value, what))
      return Fail(what);
    ++_index;
    return true;
  }

  LM_style& _style;
  LM_height_source& _relief;
  std::string& _why;
  Place _place = Place::Outside;
  Place _arrayIn = Place::Style;
  std::string _key;
  int _index = 0;
  size_t _depth = 0; // of a remark
};

// Writes fields as `"name": value` lines; consecutive components of one array go into brackets.
class JsonWriter {
public:
  JsonWriter(std::string& text, std::string indent) : _text(text), _indent(std::move(indent)) {}

  template <class Number> bool operator()(const char* field, const Number& value, LM_field kind) {
    if (kind == LM_field::Count || kind == LM_field::Version)
      return true;
    const std::string_view whole = field;
    const size_t dot = whole.find('.');
    const std::string_view name = whole.substr(0, dot);
    const bool inArray = dot != std::string_view::npos;
    if (inArray && name == _array) {
      _text += ", ";
    } else {
      Finish();
      _text += (_first ? "\n" : ",\n") + _indent + "\"" + std::string(name) +
               "\": " + (inArray ? "[" : "");
      _array = inArray ? name : std::string_view();
    }
    _first = false;
    _text += Value(value, kind);
    return true;
  }
  void Finish() {
    if (!_array.empty())
      _text += "]";
    _array = {};
  }

private:
  // A flag or type that its word would not bring back is written as the number it is.
  template <class Integer> static std::string Value(Integer value, LM_field kind) {
    if (kind == LM_field::Flag && (value == 0 || value == 1))
      return value == 1 ? "true" : "false";
    if (kind == LM_field::LightType) {
      const LM_light_kind& light = LM_LightKindOfCode(value);
      if (light.code == value)
        return "\"" + std::string(light.word) + "\"";
    }
    return std::to_string(value);
  }
  static std::string Value(float length, LM_field) { return LM_ShortFixed(length); }

  std::string& _text;
  std::string _indent;
  std::string_view _array;
  bool _first = true;
};

} // namespace

bool LM_StyleFromJson(std::string_view text, LM_style& style, std::string& why,
                      LM_height_source* relief) {
  style = LM_NewStyle();
  why.clear();
  LM_height_source heights;
  StyleReader reader(style, heights, why);
  if (!nlohmann::json::sax_parse(text.begin(), text.end(), &reader))
    return false;
  if (style.version != LM_STYLE_VERSION)
    return LM_Fails(why, "version: it is not " + std::to_string(LM_STYLE_VERSION));
  if (heights.kind == LM_height_kind::Style && heights != LM_height_source())
    return LM_Fails(why, "relief: it has no source");
  if (relief != nullptr)
    *relief = heights;
  return style.lightsRead > 0 || LM_Fails(why, "it holds no light");
}

std::string LM_StyleToJson(const LM_style& style, const LM_height_source& relief) {
  std::string text = "{";
  JsonWriter header(text, "  ");
  LM_VisitStyleHeader(style, std::ref(header));
  header.Finish();
  if (const std::string words = LM_HeightSourceToJson(relief); !words.empty())
    text += ",\n  \"relief\": " + words;
  text += ",\n  \"lights\": [";
  for (int i = 0; i < style.lightsRead; ++i) {
    text += i == 0 ? "\n    {" : ",\n    {";
    JsonWriter light(text, "      ");
    LM_VisitStyleLight(style.lights[i], std::ref(light));
    light.Finish();
    text += "\n    }";
  }
  return text + "\n  ]\n}\n";
}
