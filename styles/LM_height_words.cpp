#include "LM_height_words.h"

#include <limits>

#include "LM_number_words.h"
#include "LM_sentences.h"

namespace {

struct SourceWord {
  std::string_view word;
  LM_height_kind kind;
  int channel = 0;
};

constexpr SourceWord WORDS[] = {
    {"auto", LM_height_kind::Auto},       {"luminance", LM_height_kind::Luminance},
    {"red", LM_height_kind::Channel, 1},  {"green", LM_height_kind::Channel, 2},
    {"blue", LM_height_kind::Channel, 3}, {"none", LM_height_kind::None}};

constexpr int MOST_CHANNEL = std::numeric_limits<int16_t>::max();

bool SetNumber(int& field, int64_t value, int least, int most, std::string& why) {
  if (value < least || value > most)
    return LM_Fails(why, "it is " + std::to_string(least) + " to " + std::to_string(most));
  field = static_cast<int>(value);
  return true;
}

bool SetFlag(bool& field, int64_t value, std::string& why) {
  int number = 0;
  if (!SetNumber(number, value, 0, 1, why))
    return false;
  field = number == 1;
  return true;
}

} // namespace

bool LM_SetHeightSource(LM_height_source& source, std::string_view word) {
  for (const SourceWord& known : WORDS)
    if (known.word == word) {
      source.kind = known.kind;
      source.channel = known.channel;
      return true;
    }
  int number = 0;
  std::string why;
  return LM_ReadInteger(word, number) && LM_SetHeightNumber(source, "source", number, why);
}

std::string LM_HeightSourceWords() {
  return LM_OneOf(WORDS, &SourceWord::word);
}

bool LM_SetHeightNumber(LM_height_source& source, std::string_view key, int64_t value,
                        std::string& why) {
  if (key == "smoothing")
    return SetNumber(source.smoothing, value, 0, LM_MOST_SMOOTHING, why);
  if (key == "detail")
    return SetNumber(source.detail, value, 0, LM_MOST_DETAIL, why);
  if (key == "fit")
    return SetFlag(source.fit, value, why);
  if (key == "invert")
    return SetFlag(source.invert, value, why);
  if (key != "source")
    return LM_Fails(why, "there is no such setting");
  if (!SetNumber(source.channel, value, 1, MOST_CHANNEL, why))
    return false;
  source.kind = LM_height_kind::Channel;
  return true;
}

std::string LM_HeightSourceToJson(const LM_height_source& source) {
  if (source.kind == LM_height_kind::Style || source.kind == LM_height_kind::File)
    return {};
  std::string text = "{ \"source\": ";
  std::string word = std::to_string(source.channel);
  for (const SourceWord& known : WORDS)
    if (known.kind == source.kind && known.channel == source.channel)
      word = '"' + std::string(known.word) + '"';
  text += word;
  if (source.smoothing != LM_USUAL)
    text += ", \"smoothing\": " + std::to_string(source.smoothing);
  if (source.detail != LM_USUAL)
    text += ", \"detail\": " + std::to_string(source.detail);
  if (source.fit)
    text += ", \"fit\": true";
  if (source.invert)
    text += ", \"invert\": true";
  return text + " }";
}
