// The content of a style file as plain data: the whole lighting set-up, as the file has it.
#pragma once

#include "CVFilterRecord.h"
#include "LM_vectors.h"

constexpr uint16_t LM_STYLE_SIGNATURE = 0x4242;
constexpr uint32_t LM_STYLE_MAGIC = CV_FOUR_CHARS('C', 'V', 'L', 'M');
constexpr uint32_t LM_STYLE_VERSION = 144;
constexpr size_t LM_STYLE_HEADER_BYTES = 36;
constexpr size_t LM_STYLE_LIGHT_BYTES = 28;
constexpr size_t LM_STYLE_MAX_BYTES = LM_STYLE_HEADER_BYTES + LM_MAX_LIGHTS * LM_STYLE_LIGHT_BYTES;

// Light type codes of the file: the positions in the dialog's light type menu, not LM_light_type.
enum LM_style_light_type : uint16_t {
  LM_STYLE_DIRECTIONAL = 1,
  LM_STYLE_OMNI = 2,
  LM_STYLE_SPOT = 3 // any other code is read as a spot too
};

// Lengths are preview pixels of the preview the style was saved with; see LM_style::worldUnit. They
// are at most 16 bits and whole where they come from a file or the dialog; JSON has fractions too.
struct LM_style_light {
  LM_color48 color;
  int16_t intensity; // slider value minus 127
  int16_t spread;
  uint16_t on; // exactly 1: on
  uint16_t type;
  LM_vector2f center; // from the preview's centre, y growing downwards
  LM_vector2f handle1;
  LM_vector2f handle2;
  float radius;
};

struct LM_style {
  uint32_t version;
  int16_t bumpChannel;  // 1-based, 0 for none
  uint16_t whiteIsHigh; // not 0: true
  int16_t bumpAmplitude;
  LM_color48 ambientColor;
  int16_t material;
  int16_t gloss;
  int16_t exposure;
  int16_t ambientBrightness; // slider value minus 127
  uint16_t numLights;        // as the file says, which may be more than are kept
  uint16_t curLight;
  // Half the width of the preview frame when the style was saved, in preview pixels.
  int16_t worldUnit;
  LM_style_light lights[LM_MAX_LIGHTS];
  uint16_t lightsRead; // lights that are whole: at most numLights and LM_MAX_LIGHTS
};
