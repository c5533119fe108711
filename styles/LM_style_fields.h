// A style's fields by name, as JSON styles and the command line spell them.
//
// Keys: "gloss", "ambientColor.0", "light.2.handle1.1" and so on; lights count from 0. An array may
// also be named whole. Light types have the words "directional", "omni" and "spot", flags "true"
// and "false".
#ifndef LM_STYLE_FIELDS_H
#define LM_STYLE_FIELDS_H

#include <string>
#include <string_view>
#include <vector>

#include "LM_style.h"

// A style with no lights and the settings that a new dialog starts with.
LM_style LM_NewStyle();
// A light as the dialog's light well gives it, in the middle of the preview.
LM_style_light LM_NewStyleLight();

// Sets one field from a number. `why` tells what is wrong with the key or the value.
bool LM_SetStyleNumber(LM_style& style, std::string_view key, int64_t value, std::string& why);

// Sets one field, or an array of them, from text: "150", "omni", "true", "65535,40000,0". Setting a
// field of the light after the last one adds a light.
bool LM_SetStyleField(LM_style& style, std::string_view key, std::string_view value,
                      std::string& why);

// The word of a light type code, or an empty view.
std::string_view LM_LightTypeWord(uint16_t code);
// The code of a word, or 0.
uint16_t LM_LightTypeCode(std::string_view word);

// Every key that can be set, "N" standing for a light's number: for help texts.
std::vector<std::string> LM_StyleKeys();

#endif
