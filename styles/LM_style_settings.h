// Styles and the settings object.
#ifndef LM_STYLE_SETTINGS_H
#define LM_STYLE_SETTINGS_H

#include <cstdint>

class LM_globals;
struct LM_style;
struct foo;

// A length in preview pixels, from one world unit to another: value * toUnit / fromUnit, halves
// rounded away from zero for a positive unit; 0 when fromUnit is 0. The result is cut to 16 bits.
int16_t LM_TranslateWorldUnits(int16_t value, int16_t fromUnit, int16_t toUnit);

// Replaces the settings with the style's, its lights moved into the present preview. False, and
// nothing changed, when the style has no whole light.
bool LM_ApplyStyle(const LM_style& style, LM_globals& globals);

// The style that saving the present settings gives.
LM_style LM_StyleOfSettings(const LM_globals& globals);

// Fills a parameter block, header included, exactly as opening the dialog on an image, choosing
// this style and pressing OK does. areaWidth, areaHeight: the filter area, in image pixels.
// numChannels: channels of the document; a relief channel that it does not have, or that is
// negative, is none. False when the style has no whole light, or when memory is short.
bool LM_ParametersFromStyle(const LM_style& style, int areaWidth, int areaHeight, int numChannels,
                            foo* params);

// The relief channel, or 0 when a document of numChannels channels does not have it.
int16_t LM_ChannelOrNone(int16_t channel, int numChannels);

#endif
