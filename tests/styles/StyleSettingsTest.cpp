// Styles becoming settings, in previews of other sizes and images of other shapes.
#include "LM_globals.h"
#include "LM_preview_geometry.h"
#include "LM_style_json.h"
#include "LM_style_lengths.h"
#include "LM_style_settings.h"
#include "StyleSamples.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>

namespace {

TEST(WorldUnits, RoundHalvesAwayFromZero) {
  const struct {
    int16_t value, from, to, expected;
  } cases[] = {{3, 2, 3, 5},         {-3, 2, 3, -5},  {1, 4, 2, 1},
               {100, 140, 140, 100}, {7, 0, 140, 0},  {-32768, 1, 1, -32768},
               {32767, 1, 2, -2},    {10, -4, 2, -4}, {-10, -4, 2, 4}};
  for (const auto& c : cases)
    EXPECT_EQ(LM_TranslateWorldUnits(c.value, c.from, c.to), c.expected)
        << c.value << " from " << c.from << " to " << c.to;
}

// What the dialog's sliders cannot show, pressing OK does not keep.
TEST(StyleParameters, TakeTheSlidersLimitsAndTheImagesChannels) {
  LM_style style = DistinctStyle(2);
  style.gloss = 999;
  style.material = 300;
  style.exposure = -5;
  style.bumpAmplitude = 256;
  style.ambientBrightness = 200;
  style.ambientColor = {{64, 64, 64}};
  const struct {
    int16_t channel;
    int channels;
    int16_t expected;
  } cases[] = {{4, 4, 4}, {4, 3, 0}, {-1, 4, 0}, {0, 4, 0}};
  for (const auto& c : cases) {
    style.bumpChannel = c.channel;
    foo params;
    ASSERT_TRUE(LM_ParametersFromStyle(style, 640, 480, c.channels, &params));
    EXPECT_EQ(params.bumpChannel, c.expected);
    EXPECT_EQ(params.gloss, 255);
    EXPECT_EQ(params.material, 256);
    EXPECT_EQ(params.exposure, 0);
    EXPECT_EQ(params.bumpHeight, 510);
    EXPECT_EQ(params.ambient.component[0], 127);
    EXPECT_EQ(params.magic, LM_PARAMS_MAGIC);
  }
}

TEST(StyleParameters, FollowTheDialogsGeometry) {
  // 1024 x 300 is reduced by 4 to 256 x 75: 256 preview pixels over half a frame of 140.
  LM_style style = DistinctStyle(1);
  style.lights[0].type = LM_STYLE_OMNI;
  style.lights[0].on = 1;
  style.lights[0].center = {70, -35};
  style.lights[0].radius = 28;
  style.worldUnit = 70; // saved with a frame half as large
  foo params;
  ASSERT_TRUE(LM_ParametersFromStyle(style, 1024, 300, 3, &params));
  EXPECT_EQ(params.worldScale, 256.0F / 140.0F);
  EXPECT_EQ(params.lights[0].position.x, 1.0F);
  EXPECT_EQ(params.lights[0].position.y, -0.5F);
  EXPECT_EQ(params.lights[0].position.z, (56.0F / 140.0F) * 0.57735026F);
}

// Where one length of a light has a fraction, none of them is rounded on the way to light.
TEST(StyleParameters, KeepFractions) {
  LM_style style;
  std::string why;
  const std::string_view text =
      R"({"worldUnit": 70, "lights": [{"type": "omni", "center": [12.3, -35], "radius": 28.25}]})";
  ASSERT_TRUE(LM_StyleFromJson(text, style, why)) << why;
  foo params;
  ASSERT_TRUE(LM_ParametersFromStyle(style, 1024, 300, 3, &params));
  EXPECT_EQ(params.lights[0].position.x, 24.6F / 140.0F);
  EXPECT_EQ(params.lights[0].position.z, (56.5F / 140.0F) * 0.57735026F);
  LM_style again;
  ASSERT_TRUE(LM_StyleFromJson(LM_StyleToJson(style), again, why)) << why;
  EXPECT_EQ(again.lights[0].center.x, 12.3F);
  EXPECT_TRUE(LM_HasFractions(again));
  const std::vector<uint8_t> bytes = BytesOf(style);
  ASSERT_TRUE(LM_DecodeStyle(bytes.data(), bytes.size(), again, why)) << why;
  EXPECT_FALSE(LM_HasFractions(again));
  EXPECT_EQ(again.lights[0].radius, 28.0F);
}

// Without a settings object a style becomes the very block that the dialog's settings become.
TEST(StyleParameters, EqualThoseOfTheSettings) {
  for (int lights = 1; lights <= LM_MAX_LIGHTS; ++lights) {
    SCOPED_TRACE(lights);
    LM_style style = DistinctStyle(lights);
    style.gloss = 200;
    style.material = style.exposure = 77;
    style.ambientBrightness = -31;
    style.bumpAmplitude = 40;
    for (int i = 0; i < lights; ++i) {
      style.lights[i].on = static_cast<uint16_t>(i % 4 == 3 ? 2 : 1);
      style.lights[i].type = static_cast<uint16_t>(i % 5);
    }
    style.bumpChannel = static_cast<int16_t>(lights % 6 - 1);
    style.worldUnit = static_cast<int16_t>(lights % 2 == 0 ? 140 : 97);
    const LM_preview_geometry geometry = LM_FitPreviewInFrame(1500 + 37 * lights, 900);
    const std::unique_ptr<LM_globals, void (*)(LM_globals*)> globals(LM_NewGlobals(),
                                                                     LM_DestroyGlobals);
    LM_UsePreviewGeometry(geometry, globals.get());
    globals->Default();
    ASSERT_TRUE(LM_ApplyStyle(style, *globals));
    globals->SetBumpChannel(LM_ChannelOrNone(globals->BumpChannel(), 3));
    for (const LM_bool preview : {1, 0}) {
      foo expected, params;
      LM_InitParameters(&expected);
      globals->ConvertToParameters(&expected, preview);
      if (preview == 1)
        expected.bumpHeight = LM_PreviewHeight(expected.bumpHeight, geometry.scale);
      ASSERT_TRUE(preview == 1
                      ? LM_PreviewParametersFromStyle(style, geometry, 3, &params)
                      : LM_ParametersFromStyle(style, 1500 + 37 * lights, 900, 3, &params));
      EXPECT_EQ(std::memcmp(&params, &expected, sizeof params), 0) << preview;
    }
  }
}

} // namespace
