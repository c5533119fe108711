#include "LM_style_codec.h"

#include <algorithm>
#include <functional>

#include "LM_sentences.h"
#include "LM_style_layout.h"
#include "LM_style_lengths.h"

namespace {

class ByteReader {
public:
  ByteReader(const uint8_t* bytes, size_t size) : _bytes(bytes), _size(size) {}

  template <class Number> bool Read(Number& value) {
    using Stored = decltype(LM_StoredField(value));
    if (_size - _at < sizeof(Stored))
      return false;
    uint32_t bits = 0;
    for (size_t i = 0; i < sizeof(Stored); ++i)
      bits = bits << 8 | _bytes[_at++];
    value = static_cast<Stored>(bits);
    return true;
  }
  bool operator()(const char*, auto& value, LM_field) { return Read(value); }
  size_t At() const { return _at; }

private:
  const uint8_t* _bytes;
  size_t _size;
  size_t _at = 0;
};

class ByteWriter {
public:
  explicit ByteWriter(uint8_t* bytes) : _bytes(bytes) {}

  template <class Number> void Write(Number value) {
    const auto stored = LM_StoredField(value);
    for (size_t i = sizeof stored; i-- > 0;)
      _bytes[_at++] = static_cast<uint8_t>(static_cast<uint32_t>(stored) >> (8 * i));
  }
  bool operator()(const char*, const auto& value, LM_field) {
    Write(value);
    return true;
  }
  size_t At() const { return _at; }

private:
  uint8_t* _bytes;
  size_t _at = 0;
};

std::string CutOff(const std::string& what, size_t end, size_t size) {
  return "cut off: " + what + " ends at byte " + std::to_string(end) + " of " +
         std::to_string(size);
}

bool DecodeHeader(ByteReader& reader, size_t size, LM_style& style, std::string& why) {
  uint16_t signature = 0;
  uint32_t magic = 0;
  if (!reader.Read(signature) || signature != LM_STYLE_SIGNATURE)
    return LM_Fails(why, "not a style file: it does not begin with \"BB\"");
  if (!reader.Read(magic) || magic != LM_STYLE_MAGIC)
    return LM_Fails(why, "not a style file: \"CVLM\" is missing at byte 2");
  if (!LM_VisitStyleHeader(style, std::ref(reader)))
    return LM_Fails(why, CutOff("the header", LM_STYLE_HEADER_BYTES, size));
  if (style.version != LM_STYLE_VERSION)
    return LM_Fails(why, "format version " + std::to_string(style.version) + " is not " +
                             std::to_string(LM_STYLE_VERSION));
  return style.numLights > 0 || LM_Fails(why, "it holds no light");
}

} // namespace

bool LM_DecodeStyle(const uint8_t* bytes, size_t size, LM_style& style, std::string& why) {
  style = {};
  why.clear();
  ByteReader reader(bytes, size);
  if (!DecodeHeader(reader, size, style, why))
    return false;
  const int used = std::min<int>(style.numLights, LM_MAX_LIGHTS);
  for (int i = 0; i < used; ++i) {
    LM_style_light light = {};
    if (!LM_VisitStyleLight(light, std::ref(reader))) {
      const std::string which =
          "light " + std::to_string(i + 1) + " of " + std::to_string(style.numLights);
      const size_t end = LM_STYLE_HEADER_BYTES + LM_STYLE_LIGHT_BYTES * static_cast<size_t>(i + 1);
      why = CutOff(which, end, size);
      return i > 0;
    }
    style.lights[i] = light;
    style.lightsRead = static_cast<uint16_t>(i + 1);
  }
  if (style.numLights > LM_MAX_LIGHTS)
    why = "it holds " + std::to_string(style.numLights) + " lights, of which the first " +
          std::to_string(LM_MAX_LIGHTS) + " are used";
  else if (reader.At() != size)
    why = std::to_string(size - reader.At()) + " bytes follow the last light";
  return true;
}

size_t LM_EncodeStyle(const LM_style& style, uint8_t (&bytes)[LM_STYLE_MAX_BYTES]) {
  LM_style whole = style;
  whole.version = LM_STYLE_VERSION;
  whole.numLights = std::min<uint16_t>(style.lightsRead, LM_MAX_LIGHTS);
  ByteWriter writer(bytes);
  writer.Write(LM_STYLE_SIGNATURE);
  writer.Write(LM_STYLE_MAGIC);
  LM_VisitStyleHeader(whole, std::ref(writer));
  for (int i = 0; i < whole.numLights; ++i)
    LM_VisitStyleLight(whole.lights[i], std::ref(writer));
  return writer.At();
}
