#include "style_sliders.h"

#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define EXPLAIN(what) what "; 0.5: as in the style, 0: least, 1: most"

const StyleSlider STYLE_SLIDER[STYLE_SLIDERS] = {
    {"gloss", EXPLAIN("How glossy the surface is"), "gloss", 0, 255},
    {"material", EXPLAIN("From white highlights to coloured ones"), "material", 0, 256},
    {"exposure", EXPLAIN("Exposure"), "exposure", 0, 255},
    {"ambience", EXPLAIN("Light from everywhere"), "ambientBrightness", -127, 127},
    {"relief", EXPLAIN("Height of the relief"), "bumpAmplitude", 0, 255}};

double StyleSliderValue(double given) {
  return given == given ? fmax(0, fmin(given, 1)) : STYLE_SLIDER_DEFAULT;
}

/* A file that cannot be read may be the name of a bundled style. When it is neither, the file's
 * error says more about a path, and the style's about a name. */
static limn_settings* FindStyle(const char* style, limn_error* error) {
  limn_error notBundled;
  limn_settings* settings;
  if (style[0] == '\0')
    return limn_settings_new(error);
  settings = limn_settings_load(style, error);
  if (settings != NULL || error->code != LIMN_CANNOT_READ)
    return settings;
  settings = limn_settings_bundled(style, &notBundled);
  if (settings != NULL || strpbrk(style, "/.") == NULL)
    *error = notBundled;
  return settings;
}

/* The style's own value of a slider's setting, from the settings as JSON: lights have no field of
 * that name, and no text can hold an unescaped quotation mark. */
static int OwnValue(const char* json, const char* key) {
  char field[32];
  const char* found;
  snprintf(field, sizeof field, "\"%s\":", key);
  found = strstr(json, field);
  return found != NULL ? (int)strtol(found + strlen(field), NULL, 10) : 0;
}

static int ValueAt(const StyleSlider* slider, double at, int own) {
  const int end = at < STYLE_SLIDER_DEFAULT ? slider->least : slider->most;
  const double value = floor(own + (end - own) * fabs(2 * at - 1) + 0.5);
  /* A style may hold more than its slider, which lights like the end. */
  return (int)fmax(slider->least, fmin(value, slider->most));
}

static int ChangeSettings(limn_settings* settings, const char* json,
                          const double slider[STYLE_SLIDERS], limn_error* error) {
  for (int i = 0; i < STYLE_SLIDERS; ++i) {
    const StyleSlider* one = &STYLE_SLIDER[i];
    char value[16];
    if (slider[i] == STYLE_SLIDER_DEFAULT)
      continue;
    snprintf(value, sizeof value, "%d", ValueAt(one, slider[i], OwnValue(json, one->key)));
    if (limn_settings_set(settings, one->key, value, error) != LIMN_OK)
      return 0;
  }
  return 1;
}

/* Freed by the caller; null for want of memory. */
static char* JsonOf(const limn_settings* settings) {
  const size_t length = limn_settings_json(settings, NULL, 0);
  char* json = length > 0 ? malloc(length + 1) : NULL;
  if (json != NULL && limn_settings_json(settings, json, length + 1) == length)
    return json;
  free(json);
  return NULL;
}

limn_settings* LoadStyle(const char* style, const double slider[STYLE_SLIDERS], limn_error* error) {
  limn_settings* settings = FindStyle(style, error);
  char* json = settings != NULL ? JsonOf(settings) : NULL;
  const int isChanged = json != NULL && ChangeSettings(settings, json, slider, error);
  if (settings != NULL && json == NULL) {
    error->code = LIMN_NO_MEMORY;
    snprintf(error->text, sizeof error->text, "not enough memory");
  }
  free(json);
  if (isChanged)
    return settings;
  limn_settings_free(settings);
  return NULL;
}
