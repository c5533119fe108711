// Styles as JSON, and single settings by name.
#include "LM_style_json.h"
#include "LM_style_lengths.h"
#include "StyleSamples.h"

#include <gtest/gtest.h>

namespace {

TEST(StyleJson, EveryFieldSurvivesBothWays) {
  LM_style odd = DistinctStyle(3);
  odd.whiteIsHigh = 2;
  odd.lights[0].type = 7;
  odd.lights[1].on = 65535;
  for (const LM_style& style : {DistinctStyle(1), DistinctStyle(16), odd}) {
    LM_style read;
    std::string why;
    ASSERT_TRUE(LM_StyleFromJson(LM_StyleToJson(style), read, why)) << why;
    EXPECT_EQ(BytesOf(read), BytesOf(style));
  }
}

TEST(StyleJson, ReliefSurvivesBothWays) {
  LM_height_source all;
  all.kind = LM_height_kind::Channel;
  all.channel = 7;
  all.smoothing = 0;
  all.detail = 1000;
  all.fit = all.invert = true;
  LM_height_source usual;
  usual.kind = LM_height_kind::Auto;
  for (const LM_height_source& relief : {all, usual, LM_height_source()}) {
    LM_style read;
    LM_height_source found = all;
    std::string why;
    ASSERT_TRUE(LM_StyleFromJson(LM_StyleToJson(DistinctStyle(2), relief), read, why, &found))
        << why;
    EXPECT_EQ(found, relief);
    EXPECT_EQ(BytesOf(read), BytesOf(DistinctStyle(2)));
  }
}

TEST(StyleJson, WhatIsWrongIsNamed) {
  std::string many = R"({"lights": [{})";
  for (int i = 0; i < 16; ++i)
    many += ", {}";
  const struct {
    std::string text, expected;
  } cases[] = {
      {"", "parse error"},
      {"[]", "not an object"},
      {"7", "not an object"},
      {R"({"gloss": 40000, "lights": [{}]})", "gloss: 40000 is not between"},
      {R"({"gloss": 1.5, "lights": [{}]})", "gloss: it takes a whole number"},
      {R"({"glos": 1, "lights": [{}]})", "glos: there is no such setting"},
      {R"({"glo\u0000s": 1, "lights": [{}]})", "glo?s: there is no such setting"},
      {R"({"a234567890123456789012345678901234567ßß": 1, "lights": [{}]})", "4567ß: there is no"},
      {R"({"numLights": 3, "lights": [{}]})", "numLights: there is no such setting"},
      {R"({"ambientColor": [1, 2, 3, 4], "lights": [{}]})",
       "ambientColor.3: there is no such setting"},
      {R"({"lights": [{}, {"type": "laser"}]})", "light.1.type: it is directional, omni or spot"},
      {R"({"lights": [{"color": [[1]]}]})", "it takes no list"},
      {R"({"lights": [{"on": null}]})", "light.0.on: null"},
      {R"({"lights": []})", "no light"},
      {R"({"relief": {"source": "file.png"}, "lights": [{}]})", "relief.source: it is a channel's"},
      {R"({"relief": {"source": 0}, "lights": [{}]})", "relief.source: it is 1 to 32767"},
      {R"({"relief": {"detail": 1001}, "lights": [{}]})", "relief.detail: it is 0 to 1000"},
      {R"({"relief": {"lights": [{}]}})", "it takes no list"},
      {R"({"relief": {"fit": true}, "lights": [{}]})", "relief: it has no source"},
      {R"({"lights": [{}]} x)", "parse error"},
      {R"({"version": 145, "lights": [{}]})", "version"},
      {many + "]}", "more than 16 lights"},
      {std::string(5000000, '['), "not an object"},
      {R"({"lights": )" + std::string(5000000, '['), "it takes no list"},
  };
  for (const auto& bad : cases) {
    LM_style style;
    std::string why;
    EXPECT_FALSE(LM_StyleFromJson(bad.text, style, why)) << bad.text.substr(0, 60);
    EXPECT_NE(why.find(bad.expected), std::string::npos) << bad.text.substr(0, 60) << ": " << why;
  }
}

TEST(StyleFields, SetByNameOrRefusedWithAReason) {
  const struct {
    const char *key, *value, *error;
  } cases[] = {{"exposure", "150", ""},
               {"whiteIsHigh", "false", ""},
               {"ambienceColour", "1,2,300", ""},
               {"ambience", "127", ""},
               {"ambience", "128", "not between -127 and 127"},
               {"light.0.type", "bulb", ""},
               {"light.0.type", "7", "directional, omni or spot"},
               {"light.0.colour", "255,136,0/255", ""},
               {"light.0.color", "255,136,0", "255,136,0/255 or 255,136,0/65535"},
               {"light.0.color", "256,0,0/255", "256 is more than 255"},
               {"light.0.color", "1,2,3/9", "a colour is"},
               {"light.0.color", "1,2", "a colour is"},
               {"light.0.color", "#ff88", "a colour is"},
               {"light.0.intensity", "-90", ""},
               {"light.1.center", "10,-20", ""}, // the light after the last one is added
               {"light.3.on", "true", "only 2 lights"},
               {"light.16.on", "true", "0 to 15"},
               {"light.0.centre", "1", "2 numbers"},
               {"exposure", "bright", "not a whole number"},
               {"exposure", "99999999999999999999", "not between"},
               {"light.0.radius", "12.5", ""},
               {"light.0.radius", "nan", "not between"},
               {"light.0.radius", "32768", "not between"},
               {"light.0.intensity", "1.5", "not a whole number"},
               {"light.0.colours", "1", "did you mean light.0.colour?"},
               {"version", "144", "no such setting"},
               {"light.-1.on", "1", "no such setting"},
               {"numLights", "2", "no such setting"}};
  LM_style style = DistinctStyle(1);
  for (const auto& set : cases) {
    std::string why;
    EXPECT_EQ(LM_SetStyleField(style, set.key, set.value, why), *set.error == 0)
        << set.key << ": " << why;
    EXPECT_NE(why.find(set.error), std::string::npos) << set.key << ": " << why;
  }
  EXPECT_EQ(style.exposure, 150);
  EXPECT_EQ(style.whiteIsHigh, 0);
  EXPECT_EQ(style.ambientColor.component[2], 300);
  EXPECT_EQ(style.ambientBrightness, 127);
  EXPECT_EQ(style.lights[0].color.component[1], 136 * 257);
  EXPECT_EQ(style.lights[0].type, LM_STYLE_OMNI);
  EXPECT_EQ(style.lights[0].intensity, -90);
  EXPECT_EQ(style.lights[0].radius, 12.5F);
  EXPECT_EQ(style.lightsRead, 2);
  EXPECT_EQ(LM_WholeLengths(style.lights[1].center), (LM_vectori2{10, -20}));
}

TEST(StyleFields, ColoursAreAsCssHasThem) {
  const struct {
    const char* text;
    uint16_t red, green, blue;
  } colors[] = {{"#ff8800", 255, 136, 0},     {"#f80", 255, 136, 0},           {"green", 0, 128, 0},
                {"SlateGrey", 112, 128, 144}, {"rebeccapurple", 102, 51, 153}, {"0,0,0", 0, 0, 0}};
  for (const auto& [text, red, green, blue] : colors) {
    LM_style style = DistinctStyle(1);
    std::string why;
    EXPECT_TRUE(LM_SetStyleField(style, "light.0.colour", text, why)) << text << ": " << why;
    const uint16_t(&got)[3] = style.lights[0].color.component;
    EXPECT_TRUE(got[0] == red * 257 && got[1] == green * 257 && got[2] == blue * 257) << text;
  }
}

} // namespace
