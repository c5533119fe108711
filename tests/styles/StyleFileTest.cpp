// The bytes of style files, read and written through the codec and through the streams.
#include "LM_preview_geometry.h"
#include "LM_style_lengths.h"
#include "LM_style_settings.h"
#include "StyleFolder.h"
#include "StyleSamples.h"
#include "TemporaryFolder.h"

namespace {

// Written by hand from the format's description: one directional light.
const std::vector<uint8_t> HAND_MADE = {
    0x42, 0x42, 'C',  'V',  'L',  'M',  0x00, 0x00, 0x00, 0x90, // signature, magic, version 144
    0x00, 0x04, 0x00, 0x01, 0x00, 0xC8,             // channel 4, white is high, amplitude 200
    0xFF, 0xFF, 0x80, 0x00, 0x00, 0x01,             // ambient colour
    0x01, 0x00, 0x00, 0x80, 0x00, 0x7F, 0xFF, 0x81, // material 256, gloss, exposure, -127
    0x00, 0x01, 0x00, 0x00, 0x00, 0x8C,             // one light, current 0, world unit 140
    0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC,             // colour
    0xFF, 0xFE, 0x00, 0x40, 0x00, 0x01, 0x00, 0x01, // intensity -2, spread 64, on, directional
    0xFF, 0xF6, 0x00, 0x14, 0x00, 0x1E, 0xFF, 0xD8, // centre -10, 20; handle1 30, -40
    0x00, 0x05, 0x00, 0x06, 0x00, 0x07};            // handle2 5, 6; radius 7

class StyleFile : public StyleFolder<TemporaryFolder> {
protected:
  void SetUp() override {
    StyleFolder::SetUp();
    Use();
    LM_UsePreviewGeometry(LM_FitPreviewInFrame(1000, 800), settings);
    settings->Default();
  }
  void Put(const std::string& name, const std::vector<uint8_t>& bytes) const {
    Write(name, {bytes.begin(), bytes.end()});
  }
  LM_bool Load(std::string_view name) const {
    TB_Str255 copy = TB_PString(name);
    return LM_LoadStyle(copy.bytes, settings);
  }
  LM_bool Save(std::string_view name) const {
    TB_Str255 copy = TB_PString(name);
    return LM_SaveStyle(copy.bytes, settings);
  }
};

TEST(StyleCodec, HandMadeFileReadsFieldByFieldAndWritesTheSameBytes) {
  LM_style style;
  std::string why;
  ASSERT_TRUE(LM_DecodeStyle(HAND_MADE.data(), HAND_MADE.size(), style, why)) << why;
  EXPECT_EQ(why, "");
  EXPECT_EQ(style.bumpChannel, 4);
  EXPECT_EQ(style.bumpAmplitude, 200);
  EXPECT_EQ(style.ambientColor.component[1], 0x8000);
  EXPECT_EQ(style.material, 256);
  EXPECT_EQ(style.exposure, 127);
  EXPECT_EQ(style.ambientBrightness, -127);
  const LM_style_light& light = style.lights[0];
  EXPECT_EQ(light.color.component[2], 0x9ABC);
  EXPECT_EQ(light.intensity, -2);
  EXPECT_EQ(light.type, LM_STYLE_DIRECTIONAL);
  EXPECT_EQ(LM_WholeLengths(light.center), (LM_vectori2{-10, 20}));
  EXPECT_EQ(LM_WholeLengths(light.handle1), (LM_vectori2{30, -40}));
  EXPECT_EQ(light.radius, 7);
  EXPECT_EQ(BytesOf(style), HAND_MADE);
}

TEST(StyleCodec, EveryTruncationIsToldAndKeepsWholeLights) {
  const std::vector<uint8_t> whole = BytesOf(DistinctStyle(3));
  for (size_t size = 0; size < whole.size(); ++size) {
    LM_style style;
    std::string why;
    // A copy of exactly that size, so that a stray read is caught.
    const std::vector<uint8_t> cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
    const size_t lights = size < 36 ? 0 : (size - 36) / 28;
    EXPECT_EQ(LM_DecodeStyle(cut.data(), cut.size(), style, why), lights > 0) << size;
    EXPECT_EQ(style.lightsRead, lights) << size;
    EXPECT_NE(why, "") << size;
  }
}

TEST_F(StyleFile, SettingsSurviveTheFileAndItsBytesAreTheCodecs) {
  for (const int lights : {1, 7, 16}) {
    ASSERT_TRUE(LM_ApplyStyle(DistinctStyle(lights), *settings));
    const std::string name = "Style " + std::to_string(lights);
    ASSERT_EQ(Save(name), 1);
    EXPECT_EQ(Bytes(name), StyleBytes(LM_StyleOfSettings(*settings)));
    EXPECT_EQ(Bytes(name).size(), 36U + 28U * static_cast<size_t>(lights));
    settings->Default();
    ASSERT_EQ(Load(name), 1);
    EXPECT_EQ(BytesOf(LM_StyleOfSettings(*settings)), BytesOf(DistinctStyle(lights)));
    EXPECT_EQ(Save(name), 0) << "an existing style is never overwritten";
  }
}

TEST_F(StyleFile, WhatIsNoStyleDoesNotLoadAndChangesNothing) {
  const auto with = [](size_t at, uint8_t byte) {
    std::vector<uint8_t> bytes = HAND_MADE;
    bytes[at] = byte;
    return bytes;
  };
  const struct {
    const char* name;
    std::vector<uint8_t> bytes;
  } cases[] = {{"signature", with(1, 0x43)},
               {"magic", with(5, 'm')},
               {"version", with(9, 0x91)},
               {"no lights", with(31, 0)},
               {"cut in the first light", {HAND_MADE.begin(), HAND_MADE.end() - 1}},
               {"empty", {}}};
  const std::vector<uint8_t> before = BytesOf(LM_StyleOfSettings(*settings));
  for (const auto& bad : cases) {
    Put(bad.name, bad.bytes);
    EXPECT_EQ(Load(bad.name), 0) << bad.name;
    EXPECT_EQ(BytesOf(LM_StyleOfSettings(*settings)), before) << bad.name;
    LM_style style;
    std::string why;
    EXPECT_FALSE(LM_DecodeStyle(bad.bytes.data(), bad.bytes.size(), style, why)) << bad.name;
  }
}

TEST_F(StyleFile, OddValuesLoadAsTheyAlwaysDid) {
  LM_style style = DistinctStyle(3);
  style.whiteIsHigh = 2;
  style.curLight = 3;
  style.lights[0].type = 0;
  style.lights[1].type = 7;
  style.lights[2].on = 2;
  Put("odd", BytesOf(style));
  ASSERT_EQ(Load("odd"), 1);
  EXPECT_EQ(settings->WhiteIsHigh(), 1);
  EXPECT_EQ(settings->curLight, 0);
  EXPECT_EQ(settings->lights[0].type, LM_LIGHT_SPOT);
  EXPECT_EQ(settings->lights[1].type, LM_LIGHT_SPOT);
  EXPECT_EQ(settings->lights[2].on, 0);
  EXPECT_EQ(settings->lights[0].anchor, (LM_vectori2{140, 140}));

  std::vector<uint8_t> twenty = BytesOf(DistinctStyle(16));
  twenty[31] = 20;
  twenty.resize(36 + 20 * 28, 0xEE);
  Put("twenty", twenty);
  ASSERT_EQ(Load("twenty"), 1);
  EXPECT_EQ(settings->numLights, 16);

  twenty.resize(36 + 2 * 28 + 27);
  Put("cut", twenty);
  ASSERT_EQ(Load("cut"), 1);
  EXPECT_EQ(settings->numLights, 2);
}

} // namespace
