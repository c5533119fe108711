/* Limn as the GEGL operation limn:light: lights the whole picture with one style, with heights for
 * relief on the second input if there is one. What the lights give is kept from one evaluation to
 * the next, so that a slider of the surface, or a new picture under the same lights, costs little.
 *
 * What cannot be done, for instance with a style that is not there, leaves the picture as it is and
 * is reported as a warning: GEGL's operations have no other way to fail. */
#include "style_sliders.h"

#include <gegl-plugin.h>
#include <limn.h>
#include <string.h>

typedef struct LightOperation {
  GeglOperationComposer parent;
  char* style; /* never null */
  double slider[STYLE_SLIDERS];
  limn_lighting* lighting; /* of the last evaluation, or null */
  limn_picture prepared;   /* the size that it is for */
  guchar* heights;         /* that its relief was kept for, and how many bytes; or null */
  gsize heightBytes;
  guint64 keptBytes; /* that it was last told to keep what it can of, flat and in relief */
} LightOperation;

/* What is kept takes no more than this: film in relief. A large photograph is lit each time. */
static const guint64 MOST_KEPT = 256u << 20;

typedef struct LightOperationClass {
  GeglOperationComposerClass parent;
} LightOperationClass;

enum { STYLE = 1, FIRST_SLIDER = 2 }; /* numbers of properties */

static GeglOperationClass* parentClass; /* of the one class that a module registers */

/* Pixels of a picture in memory, and the settings to light them with. */
typedef struct Work {
  limn_settings* settings;
  guchar* pixels;
  guchar* heights; /* null: none are given */
} Work;

static int HasPixels(const GeglRectangle* box) {
  return box != NULL && box->width > 0 && box->height > 0 && !gegl_rectangle_is_infinite_plane(box);
}

/* The picture's bounds, or what is asked for where it has none: a picture without end stays as it
 * is. */
static GeglRectangle WholePicture(GeglOperation* operation, const GeglRectangle* asked) {
  const GeglRectangle* box = gegl_operation_source_get_bounding_box(operation, "input");
  return HasPixels(box) ? *box : *asked;
}

/* Light falls on the whole picture: where it stands depends on the picture's size. So all of it is
 * needed, and changes, with any part. */
static GeglRectangle WholeForPart(GeglOperation* operation, const char* pad,
                                  const GeglRectangle* part) {
  (void)pad;
  return WholePicture(operation, part);
}

/* The second input does not make the picture larger. */
static GeglRectangle BoundingBox(GeglOperation* operation) {
  const GeglRectangle* box = gegl_operation_source_get_bounding_box(operation, "input");
  return box != NULL ? *box : *GEGL_RECTANGLE(0, 0, 0, 0);
}

/* What has no format yet is taken for bytes, as most files hold them. */
static limn_kind KindOf(const Babl* format) {
  return format == NULL || babl_format_get_type(format, 0) == babl_type("u8") ? LIMN_BYTES
                                                                              : LIMN_FLOATS;
}

/* In the picture's own colour space, so that a file's own numbers are lit, as the command does:
 * bytes where the graph has bytes, and floats where it has anything deeper. The heights' depth is
 * their own. */
static void Prepare(GeglOperation* operation) {
  static const char* const COLORS[2][2] = {{"R'G'B' u8", "R'G'B' float"},
                                           {"R'G'B'A u8", "R'G'B'A float"}};
  const Babl* source = gegl_operation_get_source_format(operation, "input");
  const Babl* heights = gegl_operation_get_source_format(operation, "aux");
  const int hasAlpha = source == NULL || babl_format_has_alpha(source);
  const Babl* space = source != NULL ? babl_format_get_space(source) : NULL;
  const Babl* format =
      babl_format_with_space(COLORS[hasAlpha != 0][KindOf(source) == LIMN_FLOATS], space);
  gegl_operation_set_format(operation, "input", format);
  gegl_operation_set_format(operation, "output", format);
  gegl_operation_set_format(operation, "aux",
                            babl_format(KindOf(heights) == LIMN_FLOATS ? "Y' float" : "Y' u8"));
}

static guchar* BytesOf(GeglBuffer* buffer, const GeglRectangle* box, const Babl* format) {
  const gsize row = (gsize)box->width * (gsize)babl_format_get_bytes_per_pixel(format);
  guchar* bytes = g_try_malloc_n((gsize)box->height, row);
  if (bytes != NULL)
    gegl_buffer_get(buffer, box, 1.0, format, bytes, GEGL_AUTO_ROWSTRIDE, GEGL_ABYSS_CLAMP);
  return bytes;
}

static void Forget(LightOperation* self) {
  limn_lighting_free(self->lighting);
  self->lighting = NULL;
  self->keptBytes = 0;
  g_free(self->heights);
  self->heights = NULL;
}

/* Keeps what lights give to a flat surface. They decide what that takes, so what was kept for
 * others is forgotten already when it has changed. */
static void KeepFlat(LightOperation* self) {
  const guint64 flat = limn_kept_bytes(self->lighting, LIMN_KEEP_FLAT);
  const guint64 bytes = flat + limn_kept_bytes(self->lighting, LIMN_KEEP_RELIEF);
  if (self->lighting == NULL || bytes == self->keptBytes)
    return;
  self->keptBytes = bytes;
  limn_set_keep(self->lighting, flat <= MOST_KEPT ? LIMN_KEEP_FLAT : LIMN_KEEP_NOTHING, NULL);
  g_free(self->heights);
  self->heights = NULL;
}

/* Makes self->lighting one of these settings for pictures of that size, the last one if it can be.
 */
static int PrepareLighting(LightOperation* self, const limn_settings* settings,
                           const limn_picture* picture, limn_error* error) {
  if (self->prepared.width != picture->width || self->prepared.height != picture->height ||
      self->prepared.channels != picture->channels ||
      limn_set_settings(self->lighting, settings, NULL) != LIMN_OK)
    Forget(self);
  if (self->lighting == NULL) {
    self->lighting = limn_prepare(settings, picture, error);
    self->prepared = *picture;
  }
  KeepFlat(self);
  return self->lighting != NULL;
}

/* Keeps what the lights give in relief while its heights are those of the last evaluation, which
 * only comparing them tells, and takes the work's for the next. bytes: of the heights; where there
 * are none, relief may come from the picture, and is not kept. */
static void KeepRelief(LightOperation* self, Work* work, gsize bytes) {
  if (limn_kept_bytes(self->lighting, LIMN_KEEP_RELIEF) > MOST_KEPT ||
      (self->heights == NULL && work->heights == NULL))
    return;
  if (self->heights == NULL || work->heights == NULL || self->heightBytes != bytes ||
      memcmp(self->heights, work->heights, bytes) != 0)
    limn_set_keep(self->lighting, work->heights != NULL ? LIMN_KEEP_RELIEF : LIMN_KEEP_FLAT, NULL);
  g_free(self->heights);
  self->heights = work->heights;
  self->heightBytes = bytes;
  work->heights = NULL;
}

/* Whether the work's pixels are lit. */
static int Light(LightOperation* self, GeglBuffer* input, GeglBuffer* aux, const GeglRectangle* box,
                 Work* work, limn_error* error) {
  const Babl* format = gegl_operation_get_format((GeglOperation*)self, "output");
  const Babl* heights = gegl_operation_get_format((GeglOperation*)self, "aux");
  limn_picture picture = {0};
  picture.width = box->width;
  picture.height = box->height;
  picture.channels = babl_format_get_n_components(format);
  picture.kind = KindOf(format);
  work->settings = LoadStyle(self->style, self->slider, error);
  if (work->settings == NULL)
    return 0;
  /* Before its pixels are read, which may be more than there is memory for: it can be too large. */
  if (!PrepareLighting(self, work->settings, &picture, error))
    return 0;
  work->pixels = BytesOf(input, box, format);
  if (aux != NULL)
    work->heights = BytesOf(aux, box, heights);
  if (work->pixels == NULL || (aux != NULL && work->heights == NULL)) {
    error->code = LIMN_NO_MEMORY;
    g_strlcpy(error->text, "not enough memory", sizeof error->text);
    return 0;
  }
  picture.source = picture.output = work->pixels;
  picture.relief = work->heights;
  picture.relief_kind = KindOf(heights);
  KeepRelief(self, work,
             (gsize)box->width * (gsize)box->height *
                 (gsize)babl_format_get_bytes_per_pixel(heights));
  return limn_run(self->lighting, &picture, NULL, error) == LIMN_OK;
}

static gboolean Process(GeglOperation* operation, GeglBuffer* input, GeglBuffer* aux,
                        GeglBuffer* output, const GeglRectangle* asked, int level) {
  const Babl* format = gegl_operation_get_format(operation, "output");
  const GeglRectangle* box = gegl_operation_source_get_bounding_box(operation, "input");
  Work work = {0};
  limn_error error;
  (void)level;
  if (input == NULL)
    return TRUE;
  if (HasPixels(box) && Light((LightOperation*)operation, input, aux, box, &work, &error)) {
    gegl_buffer_set(output, box, 0, format, work.pixels, GEGL_AUTO_ROWSTRIDE);
  } else {
    if (HasPixels(box))
      g_warning("limn:light: %s; the picture stays as it is", error.text);
    gegl_buffer_copy(input, asked, GEGL_ABYSS_NONE, output, asked);
  }
  limn_settings_free(work.settings);
  g_free(work.pixels);
  g_free(work.heights);
  return TRUE;
}

static void SetProperty(GObject* object, guint property, const GValue* value, GParamSpec* spec) {
  LightOperation* self = (LightOperation*)object;
  if (property == STYLE) {
    const char* style = g_value_get_string(value);
    g_free(self->style);
    self->style = g_strdup(style != NULL ? style : "");
  } else if (property >= FIRST_SLIDER && property < FIRST_SLIDER + STYLE_SLIDERS) {
    self->slider[property - FIRST_SLIDER] = StyleSliderValue(g_value_get_double(value));
  } else {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, spec);
  }
}

static void GetProperty(GObject* object, guint property, GValue* value, GParamSpec* spec) {
  const LightOperation* self = (const LightOperation*)object;
  if (property == STYLE)
    g_value_set_string(value, self->style);
  else if (property >= FIRST_SLIDER && property < FIRST_SLIDER + STYLE_SLIDERS)
    g_value_set_double(value, self->slider[property - FIRST_SLIDER]);
  else
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, property, spec);
}

static void Finalize(GObject* object) {
  Forget((LightOperation*)object);
  g_free(((LightOperation*)object)->style);
  G_OBJECT_CLASS(parentClass)->finalize(object);
}

/* GEGL sets every property to its default when it makes an operation. */
static void InstallProperties(GObjectClass* object) {
  const GParamFlags flags = G_PARAM_READWRITE | G_PARAM_CONSTRUCT | GEGL_PARAM_PAD_INPUT;
  g_object_class_install_property(
      object, STYLE,
      g_param_spec_string("style", "Style", STYLE_EXPLANATION, STYLE_DEFAULT, flags));
  for (int i = 0; i < STYLE_SLIDERS; ++i) {
    const StyleSlider* slider = &STYLE_SLIDER[i];
    char* label = g_strdup_printf("%c%s", g_ascii_toupper(slider->name[0]), slider->name + 1);
    g_object_class_install_property(object, (guint)(FIRST_SLIDER + i),
                                    gegl_param_spec_double(slider->name, label, slider->explanation,
                                                           0, 1, STYLE_SLIDER_DEFAULT, 0, 1, 1,
                                                           flags));
    g_free(label);
  }
}

static void InitializeClass(gpointer klass, gpointer data) {
  GeglOperationClass* operation = GEGL_OPERATION_CLASS(klass);
  (void)data;
  parentClass = g_type_class_peek_parent(klass);
  G_OBJECT_CLASS(klass)->set_property = SetProperty;
  G_OBJECT_CLASS(klass)->get_property = GetProperty;
  G_OBJECT_CLASS(klass)->finalize = Finalize;
  InstallProperties(G_OBJECT_CLASS(klass));
  operation->prepare = Prepare;
  operation->get_bounding_box = BoundingBox;
  operation->get_cached_region = WholePicture;
  operation->get_required_for_output = WholeForPart;
  operation->get_invalidated_by_change = WholeForPart;
  operation->threaded = FALSE; /* the library starts threads of its own */
  operation->opencl_support = FALSE;
  GEGL_OPERATION_COMPOSER_CLASS(klass)->process = Process;
  gegl_operation_class_set_keys(operation, "name", "limn:light", "title", "Limn", "categories",
                                "light", "description",
                                "Lights the picture anew with lamps, spotlights and suns; heights "
                                "for relief on the second input",
                                NULL);
}

/* The functions that GEGL looks for in a module. */
const GeglModuleInfo* gegl_module_query(GTypeModule* module);
gboolean gegl_module_register(GTypeModule* module);

const GeglModuleInfo* gegl_module_query(GTypeModule* module) {
  static const GeglModuleInfo info = {GEGL_MODULE_ABI_VERSION};
  (void)module;
  return &info;
}

gboolean gegl_module_register(GTypeModule* module) {
  static const GTypeInfo info = {
      .class_size = sizeof(LightOperationClass),
      .class_init = InitializeClass,
      .instance_size = sizeof(LightOperation),
  };
  return g_type_module_register_type(module, GEGL_TYPE_OPERATION_COMPOSER, "LimnLightOperation",
                                     &info, 0) != 0;
}
