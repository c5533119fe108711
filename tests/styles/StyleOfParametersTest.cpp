// A style found from a parameter block lights every image alike, whatever the block was made of.
#include "LM_gallery.h"
#include "LM_handles.h"
#include "LM_parameters.h"
#include "LM_style_fields.h"
#include "LM_style_lengths.h"
#include "LM_style_of_parameters.h"
#include "LM_style_settings.h"

#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>

namespace {

constexpr int AREAS[][2] = {{6000, 4000}, {90, 60}, {31, 2000}};

void ExpectFound(const LM_style& style, const std::string& name) {
  const auto params = std::make_unique<foo>();
  const auto again = std::make_unique<foo>();
  for (const auto& [width, height] : AREAS) {
    ASSERT_TRUE(LM_ParametersFromStyle(style, width, height, 5, params.get()));
    LM_style found = {};
    ASSERT_TRUE(LM_StyleOfParameters(*params, width, height, found)) << name;
    ASSERT_TRUE(LM_ParametersFromStyle(found, width, height, 5, again.get()));
    EXPECT_TRUE(LM_SameShading(*params, *again)) << name;
  }
}

class Dice {
public:
  explicit Dice(unsigned seed) : _engine(seed) {}
  int16_t operator()(int low, int high) {
    return static_cast<int16_t>(low + static_cast<int>(_engine() % unsigned(high - low + 1)));
  }
  LM_color48 color() {
    LM_color48 made;
    for (uint16_t& component : made.component)
      component = static_cast<uint16_t>(_engine() % 3 == 0 ? 65535 : _engine() % 65536);
    return made;
  }

private:
  std::mt19937 _engine;
};

// Whatever the dialog's sliders and drags can make of a light.
LM_style_light RandomLight(Dice& dice) {
  LM_style_light light = LM_NewStyleLight();
  light.type = static_cast<uint16_t>(dice(1, 3));
  light.on = dice(0, 5) == 0 ? 0 : 1;
  light.color = dice.color();
  light.intensity = dice(-127, 128);
  light.spread = dice(0, 255);
  light.center = LM_vectori2{dice(-200, 200), dice(-200, 200)}.Floats();
  light.handle1 = LM_vectori2{dice(-150, 150), dice(-150, 150)}.Floats();
  const float share = static_cast<float>(dice(10, 100)) / 100.0F;
  light.handle2 =
      LM_QuarterTurn(light.handle1, dice(0, 1) == 0 ? share : -share, LM_handle_grid::Whole);
  light.radius = dice(1, 200);
  return light;
}

} // namespace

TEST(StyleOfParameters, FindsWhateverTheDialogMakes) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    Dice dice(seed);
    LM_style style = LM_NewStyle();
    style.ambientColor = dice.color();
    style.ambientBrightness = dice(-127, 128);
    style.gloss = dice(0, 255);
    style.material = dice(0, 256);
    style.bumpChannel = dice(0, 5);
    style.bumpAmplitude = dice(0, 255);
    style.whiteIsHigh = static_cast<uint16_t>(dice(0, 1));
    style.lightsRead = style.numLights = static_cast<uint16_t>(dice(1, 6));
    for (int i = 0; i < style.lightsRead; ++i)
      style.lights[i] = RandomLight(dice);
    ExpectFound(style, "seed " + std::to_string(seed));
  }
}

TEST(StyleOfParameters, FindsTheBundledStyles) {
  for (const std::string& name : LM_BundledStyleNames()) {
    LM_style style;
    ASSERT_TRUE(LM_BundledStyle(name, style));
    ExpectFound(style, name);
  }
}

TEST(StyleOfParameters, RefusesWhatNoStyleGives) {
  LM_style style = LM_NewStyle();
  style.lightsRead = style.numLights = 1;
  style.lights[0] = LM_NewStyleLight();
  const auto params = std::make_unique<foo>();
  ASSERT_TRUE(LM_ParametersFromStyle(style, 90, 60, 3, params.get()));
  LM_style found;
  EXPECT_FALSE(LM_StyleOfParameters(*params, 60, 90, found)) << "made for another area";
  params->lights[0].position.x = 0.1234567F;
  EXPECT_FALSE(LM_StyleOfParameters(*params, 90, 60, found));
  params->lights[0].position.x = std::numeric_limits<float>::quiet_NaN();
  params->lights[0].position.z = std::numeric_limits<float>::infinity();
  EXPECT_FALSE(LM_StyleOfParameters(*params, 90, 60, found));
}
