// The one place where a style file's fields, their widths, their order and their names stand.
// Readers and writers of bytes, and of JSON, are visitors of these tables.
#ifndef LM_STYLE_LAYOUT_H
#define LM_STYLE_LAYOUT_H

#include "LM_style.h"

// What a field stands for, beside its bits.
enum class LM_field {
  Number,
  Channel, // 1-based, 0 for none
  Flag,    // anything but 0, for a light exactly 1, is true
  LightType,
  Count // known from the list of lights
};

// Visits every field from offset 6 of the file to the lights. visit(name, value, kind) is called
// with a reference to a 16- or 32-bit integer, signed or not, and answers whether to go on.
template <class Style, class Visit> bool LM_VisitStyleHeader(Style& style, Visit visit) {
  return visit("version", style.version, LM_field::Number) &&
         visit("bumpChannel", style.bumpChannel, LM_field::Channel) &&
         visit("whiteIsHigh", style.whiteIsHigh, LM_field::Flag) &&
         visit("bumpAmplitude", style.bumpAmplitude, LM_field::Number) &&
         visit("ambientColor.0", style.ambientColor.component[0], LM_field::Number) &&
         visit("ambientColor.1", style.ambientColor.component[1], LM_field::Number) &&
         visit("ambientColor.2", style.ambientColor.component[2], LM_field::Number) &&
         visit("material", style.material, LM_field::Number) &&
         visit("gloss", style.gloss, LM_field::Number) &&
         visit("exposure", style.exposure, LM_field::Number) &&
         visit("ambientBrightness", style.ambientBrightness, LM_field::Number) &&
         visit("numLights", style.numLights, LM_field::Count) &&
         visit("curLight", style.curLight, LM_field::Number) &&
         visit("worldUnit", style.worldUnit, LM_field::Number);
}

// The same for one light.
template <class Light, class Visit> bool LM_VisitStyleLight(Light& light, Visit visit) {
  return visit("color.0", light.color.component[0], LM_field::Number) &&
         visit("color.1", light.color.component[1], LM_field::Number) &&
         visit("color.2", light.color.component[2], LM_field::Number) &&
         visit("intensity", light.intensity, LM_field::Number) &&
         visit("spread", light.spread, LM_field::Number) && visit("on", light.on, LM_field::Flag) &&
         visit("type", light.type, LM_field::LightType) &&
         visit("center.0", light.center.h, LM_field::Number) &&
         visit("center.1", light.center.v, LM_field::Number) &&
         visit("handle1.0", light.handle1.h, LM_field::Number) &&
         visit("handle1.1", light.handle1.v, LM_field::Number) &&
         visit("handle2.0", light.handle2.h, LM_field::Number) &&
         visit("handle2.1", light.handle2.v, LM_field::Number) &&
         visit("radius", light.radius, LM_field::Number);
}

#endif
