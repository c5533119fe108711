/* Limn as a frei0r filter: lights every frame with one style.
 *
 * What cannot be done, for instance with a style that is not there, leaves the frames as they are
 * and is reported on standard error, once for each setting of the parameters: players go on. */
#include "style_sliders.h"

#include <frei0r.h>
#include <limn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { STYLE = 0, FIRST_SLIDER = 1, AREA = FIRST_SLIDER + STYLE_SLIDERS, PARAMETERS };

typedef struct Filter {
  unsigned int width, height;
  char* style;                  /* a file, or the name of a bundled style; never null */
  char* area;                   /* "WIDTHxHEIGHT", or "" for all of it; never null */
  double slider[STYLE_SLIDERS]; /* as of StyleSliderValue */
  limn_lighting* lighting;      /* null: not prepared, or it cannot be. It keeps its light */
  int isPrepared;               /* whether `lighting` is that of the parameters */
  int hasComplained;            /* since then */
} Filter;

static void Complain(Filter* filter, const char* text) {
  if (!filter->hasComplained)
    fprintf(stderr, "limn: %s; the frames stay as they are\n", text);
  filter->hasComplained = 1;
}

static void Forget(Filter* filter) {
  limn_lighting_free(filter->lighting);
  filter->lighting = NULL;
  filter->isPrepared = 0;
  filter->hasComplained = 0;
}

/* Hosts that pad their rows have a frame that is wider than what they show. A light's place goes by
 * the width, and relief goes on beyond the edge, so the picture has to be the part that is shown.
 * False when the area is none, or not in the frame. */
static int ReadPicture(const Filter* filter, limn_picture* picture) {
  char more;
  memset(picture, 0, sizeof *picture);
  /* A size that is too large is refused when it is prepared. */
  picture->width = filter->width <= INT32_MAX ? (int32_t)filter->width : INT32_MAX;
  picture->height = filter->height <= INT32_MAX ? (int32_t)filter->height : INT32_MAX;
  picture->channels = 4;
  if (filter->area[0] == '\0')
    return 1;
  picture->source_stride = picture->output_stride = (ptrdiff_t)filter->width * 4;
  return sscanf(filter->area, "%9dx%9d%c", &picture->width, &picture->height, &more) == 2 &&
         picture->width > 0 && (unsigned int)picture->width <= filter->width &&
         picture->height > 0 && (unsigned int)picture->height <= filter->height;
}

static void Prepare(Filter* filter) {
  limn_error error = {LIMN_BAD_ARGUMENT, "area: it is not WIDTHxHEIGHT within the frame"};
  limn_picture picture;
  limn_settings* settings =
      ReadPicture(filter, &picture) ? LoadStyle(filter->style, filter->slider, &error) : NULL;
  if (settings == NULL || limn_set_settings(filter->lighting, settings, NULL) != LIMN_OK)
    Forget(filter);
  if (settings != NULL && filter->lighting == NULL) {
    filter->lighting = limn_prepare(settings, &picture, &error);
    limn_set_keep(filter->lighting, LIMN_KEEP_FLAT, NULL);
  }
  filter->isPrepared = 1;
  filter->hasComplained = 0;
  limn_settings_free(settings);
  if (filter->lighting == NULL)
    Complain(filter, error.text);
}

int f0r_init(void) {
  return 1;
}

void f0r_deinit(void) {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  info->name = "Limn";
  info->author = "The Limn authors";
  info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
  info->color_model = F0R_COLOR_MODEL_RGBA8888;
  info->frei0r_version = FREI0R_MAJOR_VERSION;
  info->major_version = 0;
  info->minor_version = 1;
  info->num_params = PARAMETERS;
  info->explanation = "Lights the picture anew with lamps, spotlights and suns";
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
  if (index == STYLE) {
    info->name = "style";
    info->type = F0R_PARAM_STRING;
    info->explanation = STYLE_EXPLANATION;
  } else if (index >= FIRST_SLIDER && index < AREA) {
    info->name = STYLE_SLIDER[index - FIRST_SLIDER].name;
    info->type = F0R_PARAM_DOUBLE;
    info->explanation = STYLE_SLIDER[index - FIRST_SLIDER].explanation;
  } else if (index == AREA) {
    info->name = "area";
    info->type = F0R_PARAM_STRING;
    info->explanation = "The picture's size, WIDTHxHEIGHT, where the frame is padded";
  }
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
  Filter* filter = calloc(1, sizeof *filter);
  if (filter == NULL)
    return NULL;
  filter->width = width;
  filter->height = height;
  filter->style = strdup(STYLE_DEFAULT);
  filter->area = strdup("");
  for (int i = 0; i < STYLE_SLIDERS; ++i)
    filter->slider[i] = STYLE_SLIDER_DEFAULT;
  if (filter->style != NULL && filter->area != NULL)
    return filter;
  f0r_destruct(filter);
  return NULL;
}

void f0r_destruct(f0r_instance_t instance) {
  Filter* filter = instance;
  if (filter == NULL)
    return;
  Forget(filter);
  free(filter->style);
  free(filter->area);
  free(filter);
}

/* The filter's text of that number, or null. */
static char** TextOf(Filter* filter, int index) {
  return index == STYLE ? &filter->style : index == AREA ? &filter->area : NULL;
}

/* Hosts set every parameter again for every frame: only a new value is a change. */
void f0r_set_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
  Filter* filter = instance;
  if (filter == NULL || param == NULL)
    return;
  char** text = TextOf(filter, index);
  if (text != NULL) {
    const char* given = *(const f0r_param_string*)param;
    char* copy;
    if (given == NULL || strcmp(given, *text) == 0 || (copy = strdup(given)) == NULL)
      return;
    free(*text);
    *text = copy;
    Forget(filter);
  } else if (index >= FIRST_SLIDER && index < AREA) {
    const double value = StyleSliderValue(*(const f0r_param_double*)param);
    if (value == filter->slider[index - FIRST_SLIDER])
      return;
    filter->slider[index - FIRST_SLIDER] = value;
    filter->isPrepared = 0; /* what the lights give is still good */
  }
}

/* The string stays the filter's. */
void f0r_get_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
  Filter* filter = instance;
  if (filter == NULL || param == NULL)
    return;
  char** text = TextOf(filter, index);
  if (text != NULL)
    *(f0r_param_string*)param = *text;
  else if (index >= FIRST_SLIDER && index < AREA)
    *(f0r_param_double*)param = filter->slider[index - FIRST_SLIDER];
}

void f0r_update(f0r_instance_t instance, double time, const uint32_t* inframe, uint32_t* outframe) {
  Filter* filter = instance;
  limn_error error;
  limn_picture picture;
  int isPart;
  (void)time;
  if (filter == NULL || inframe == NULL || outframe == NULL)
    return;
  if (!filter->isPrepared)
    Prepare(filter);
  isPart = filter->area[0] != '\0';
  ReadPicture(filter, &picture);
  picture.source = (const uint8_t*)inframe;
  picture.output = (uint8_t*)outframe;
  if (filter->lighting == NULL || isPart)
    memmove(outframe, inframe, (size_t)filter->width * filter->height * sizeof *inframe);
  if (filter->lighting == NULL || limn_run(filter->lighting, &picture, NULL, &error) == LIMN_OK)
    return;
  Complain(filter, error.text);
  memmove(outframe, inframe, (size_t)filter->width * filter->height * sizeof *inframe);
}
