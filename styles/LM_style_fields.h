// A style's fields by name, as JSON styles and the command line spell them.
//
// Keys: "gloss", "ambientColor.0", "light.2.handle1.1" and so on; lights count from 0.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "LM_style.h"

// A style with no lights and the settings that a new dialog starts with.
LM_style LM_NewStyle();
// A light as the dialog's light well gives it, in the middle of the preview.
LM_style_light LM_NewStyleLight();

// Sets one field from a number, any that the field can hold; lengths take fractions. `why` tells
// what is wrong with the key or the value.
bool LM_SetStyleNumber(LM_style& style, std::string_view key, double value, std::string& why);

// Sets one field, or an array of them, from what a person wrote: "150", "omni", "true",
// "65535,40000,0". Keys and values may be the dialog's words: "ambience", "light.0.colour", "sun".
// Colours are as LM_ReadColor has them. What would be lit as something else, such as a value beyond
// its slider's ends, is refused, and so is "version". Setting a field of the light after the last
// one adds a light.
bool LM_SetStyleField(LM_style& style, std::string_view key, std::string_view value,
                      std::string& why);

// "1 light", "3 lights"
std::string LM_CountedLights(int count);

// Which settings of the style light as another value than they have, as a sentence; or nothing.
std::string LM_BeyondSliders(const LM_style& style);

struct LM_style_key {
  std::string name; // "N" standing for a light's number
  std::string word; // the dialog's, or empty
};
// Every key that can be set: for help texts.
std::vector<LM_style_key> LM_StyleKeys();
