// The one place where a style file's fields, their widths, their order and their names stand.
// Readers and writers of bytes, and of JSON, are visitors of these tables.
#pragma once

#include <algorithm>

#include "LM_light_kinds.h"
#include "LM_sliders.h"

// What a field stands for, beside its bits.
enum class LM_field {
  Number,
  Channel, // 1-based, 0 for none
  Flag,    // anything but 0, for a light exactly 1, is true
  LightType,
  Slider,         // beyond its slider's ends, see LM_EndsOf, it lights like the end
  MaterialSlider, // likewise
  CenteredSlider, // likewise
  Version,
  Length, // a float, of 16 bits in a file
  Count   // known from the list of lights
};

struct LM_field_ends {
  int64_t low, high;
};

// What a field can be set to by hand: where nothing is known but the bits, nothing narrower.
constexpr LM_field_ends LM_EndsOf(LM_field kind, LM_field_ends bits) {
  switch (kind) {
  case LM_field::Slider:
    return {0, LM_SLIDER_MAX};
  case LM_field::MaterialSlider:
    return {0, LM_MATERIAL_SLIDER_MAX};
  case LM_field::CenteredSlider:
    return {-LM_SLIDER_CENTER, LM_CENTERED_SLIDER_MAX - LM_SLIDER_CENTER};
  case LM_field::Channel:
    return {0, bits.high};
  case LM_field::Flag:
    return {0, 1};
  case LM_field::LightType:
    return {1, static_cast<int64_t>(std::size(LM_LIGHT_KINDS))};
  default:
    return bits;
  }
}

// The value that a field is lit as.
constexpr int64_t LM_LitAs(LM_field kind, int64_t value) {
  const bool isSlider = kind >= LM_field::Slider && kind <= LM_field::CenteredSlider;
  const LM_field_ends ends = LM_EndsOf(kind, {});
  return isSlider ? std::clamp(value, ends.low, ends.high) : value;
}

// Visits every field from offset 6 of the file to the lights. visit(name, value, kind) is called
// with a reference to a 16- or 32-bit integer, signed or not, and answers whether to go on.
template <class Style, class Visit> bool LM_VisitStyleHeader(Style& style, Visit visit) {
  return visit("version", style.version, LM_field::Version) &&
         visit("bumpChannel", style.bumpChannel, LM_field::Channel) &&
         visit("whiteIsHigh", style.whiteIsHigh, LM_field::Flag) &&
         visit("bumpAmplitude", style.bumpAmplitude, LM_field::Slider) &&
         visit("ambientColor.0", style.ambientColor.component[0], LM_field::Number) &&
         visit("ambientColor.1", style.ambientColor.component[1], LM_field::Number) &&
         visit("ambientColor.2", style.ambientColor.component[2], LM_field::Number) &&
         visit("material", style.material, LM_field::MaterialSlider) &&
         visit("gloss", style.gloss, LM_field::Slider) &&
         visit("exposure", style.exposure, LM_field::Slider) &&
         visit("ambientBrightness", style.ambientBrightness, LM_field::CenteredSlider) &&
         visit("numLights", style.numLights, LM_field::Count) &&
         visit("curLight", style.curLight, LM_field::Number) &&
         visit("worldUnit", style.worldUnit, LM_field::Number);
}

// The same for one light, whose lengths are floats.
template <class Light, class Visit> bool LM_VisitStyleLight(Light& light, Visit visit) {
  return visit("color.0", light.color.component[0], LM_field::Number) &&
         visit("color.1", light.color.component[1], LM_field::Number) &&
         visit("color.2", light.color.component[2], LM_field::Number) &&
         visit("intensity", light.intensity, LM_field::Number) &&
         visit("spread", light.spread, LM_field::Number) && visit("on", light.on, LM_field::Flag) &&
         visit("type", light.type, LM_field::LightType) &&
         visit("center.0", light.center.x, LM_field::Length) &&
         visit("center.1", light.center.y, LM_field::Length) &&
         visit("handle1.0", light.handle1.x, LM_field::Length) &&
         visit("handle1.1", light.handle1.y, LM_field::Length) &&
         visit("handle2.0", light.handle2.x, LM_field::Length) &&
         visit("handle2.1", light.handle2.y, LM_field::Length) &&
         visit("radius", light.radius, LM_field::Length);
}
