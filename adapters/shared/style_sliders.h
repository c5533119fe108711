/* The parameters that the adapters share: a style, and sliders for its main settings. */
#pragma once

#include <limn.h>

#define STYLE_EXPLANATION "A style file, or the name of a bundled style"
#define STYLE_DEFAULT "Default"

/* A slider runs from 0 to 1. In the middle, where it stands first, the style's own value stays; 0
 * and 1 are the least and the most that the setting can be, and between them it goes evenly. So a
 * host that sets every slider to its default changes nothing. */
enum { STYLE_SLIDERS = 5 };
#define STYLE_SLIDER_DEFAULT 0.5

typedef struct StyleSlider {
  const char* name;
  const char* explanation;
  const char* key; /* of limn_settings_set */
  int least, most;
} StyleSlider;

extern const StyleSlider STYLE_SLIDER[STYLE_SLIDERS];

/* The value that a slider keeps: 0 to 1, the default for a NaN. */
double StyleSliderValue(double given);

/* Settings of a style, changed by the sliders, each a value of StyleSliderValue. style: a file, or
 * the name of a bundled style; "" for a new dialog's settings. Null with an error. Freed by the
 * caller. */
limn_settings* LoadStyle(const char* style, const double slider[STYLE_SLIDERS], limn_error* error);
