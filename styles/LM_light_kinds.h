// The kinds of light: what shading, style files and people call each.
#pragma once

#include <string_view>

#include "LM_light.h"
#include "LM_sentences.h"
#include "LM_style.h"

struct LM_light_kind {
  LM_light_type type;
  LM_style_light_type code;   // in style files, and the place in the dialog's menu
  std::string_view word;      // in JSON styles
  std::string_view plainWord; // which --set takes too
};

// Codes count from 1. The last one is what every other type or code counts as.
constexpr LM_light_kind LM_LIGHT_KINDS[] = {
    {LM_LIGHT_DIRECTIONAL, LM_STYLE_DIRECTIONAL, "directional", "sun"},
    {LM_LIGHT_OMNI, LM_STYLE_OMNI, "omni", "bulb"},
    {LM_LIGHT_SPOT, LM_STYLE_SPOT, "spot", "spotlight"}};

constexpr const LM_light_kind& LM_LightKindOfType(int32_t type) {
  for (const LM_light_kind& kind : LM_LIGHT_KINDS)
    if (kind.type == type)
      return kind;
  return *std::rbegin(LM_LIGHT_KINDS);
}

constexpr const LM_light_kind& LM_LightKindOfCode(int code) {
  for (const LM_light_kind& kind : LM_LIGHT_KINDS)
    if (kind.code == code)
      return kind;
  return *std::rbegin(LM_LIGHT_KINDS);
}

// All of them, as in "directional, omni or spot".
inline std::string LM_LightKindWords(std::string_view LM_light_kind::*word) {
  return LM_OneOf(LM_LIGHT_KINDS, word);
}
