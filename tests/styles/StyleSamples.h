// Styles that the tests share.
#pragma once

#include "LM_style_codec.h"
#include "LM_style_fields.h"
#include "LM_style_layout.h"

#include <vector>

// A style with `lights` lights whose every field has a value of its own.
inline LM_style DistinctStyle(int lights) {
  LM_style style = LM_NewStyle();
  int next = -7001;
  const auto fill = [&](const char*, auto& value, LM_field kind) {
    next += 13;
    switch (kind) {
    case LM_field::Flag:
      value = 1;
      break;
    case LM_field::LightType:
      value = static_cast<std::remove_reference_t<decltype(value)>>(1 + (next & 0xffff) % 3);
      break;
    case LM_field::Count:
      break;
    default:
      value = static_cast<std::remove_reference_t<decltype(value)>>(next);
    }
    return true;
  };
  LM_VisitStyleHeader(style, fill);
  for (int i = 0; i < lights; ++i)
    LM_VisitStyleLight(style.lights[i], fill);
  style.version = LM_STYLE_VERSION;
  style.curLight = 0;
  style.worldUnit = 140;
  style.numLights = style.lightsRead = static_cast<uint16_t>(lights);
  return style;
}

inline std::vector<uint8_t> BytesOf(const LM_style& style) {
  uint8_t bytes[LM_STYLE_MAX_BYTES];
  const size_t size = LM_EncodeStyle(style, bytes);
  return {bytes, bytes + size};
}
