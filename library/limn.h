/* Limn's lighting as a C library: lights, gloss and relief on pixels in memory, of 8 or 16 bits or
 * floats.
 *
 *   limn_error error;
 *   limn_settings *settings = limn_settings_load("evening.json", &error);
 *   limn_picture picture = {0};
 *   picture.width = width, picture.height = height, picture.channels = 3;
 *   picture.source = picture.output = pixels;
 *   if (settings == NULL || limn_light(settings, &picture, NULL, &error) != LIMN_OK)
 *     fprintf(stderr, "%s\n", error.text);
 *   limn_settings_free(settings);
 *
 * The result is that of the command `limn apply` with the same style and depth, bit for bit, on
 * every machine and with any number of threads.
 *
 * There is no global state. Functions may be called from several threads at once, as long as none
 * of them changes or frees an object that another one uses. Every pointer may be null where it says
 * so; elsewhere null is LIMN_BAD_ARGUMENT, and freeing null does nothing. Memory is the caller's:
 * the library keeps no pointer that it was given.
 */
#ifndef LIMN_H
#define LIMN_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define LIMN_API __attribute__((visibility("default")))
#else
#define LIMN_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The version of this header; limn_version() is that of the library. */
#define LIMN_VERSION "1.0.0"

/* Limits of a picture: pixels along a side, and components a pixel. */
#define LIMN_LONGEST_SIDE 32767
#define LIMN_MOST_CHANNELS 32767

typedef enum limn_result {
  LIMN_OK = 0,
  LIMN_CANCELLED = 1,    /* the progress function asked to stop; part of the output is lit */
  LIMN_BAD_ARGUMENT = 2, /* a null pointer, a size, a stride or a key that cannot be */
  LIMN_BAD_STYLE = 3,    /* the bytes or the text are no style, or it has no light */
  LIMN_CANNOT_READ = 4,  /* a style's file is not there, not readable or too long */
  LIMN_NO_MEMORY = 5,
  LIMN_FAILED = 6 /* the progress function threw a C++ exception */
} limn_result;

/* What went wrong, as a code and as one English sentence in UTF-8 without the full stop. Every
 * function that takes one may be given null; it writes it always, on success LIMN_OK and "". */
typedef struct limn_error {
  limn_result code;
  char text[508];
} limn_error;

/* ---- The library ---- */

/* "1.0.0". */
LIMN_API const char* limn_version(void);

/* The vector instructions that this processor's lighting runs on, such as "AVX2"; "plain" without
 * any. It changes the speed, never the bytes. */
LIMN_API const char* limn_target(void);

/* ---- Settings: a style, that is lights and surface. ---- */

typedef struct limn_settings limn_settings;

/* The settings of a new dialog, with one light: what `limn apply` uses without a style. Null with
 * LIMN_NO_MEMORY. Freed by the caller, as everything that the following four return. */
LIMN_API limn_settings* limn_settings_new(limn_error* error);

/* Reads a style file, or its JSON form; they are told apart by their content. path is a name in the
 * file system. Null with LIMN_CANNOT_READ, LIMN_BAD_STYLE, LIMN_NO_MEMORY or LIMN_BAD_ARGUMENT. */
LIMN_API limn_settings* limn_settings_load(const char* path, limn_error* error);

/* The same from `size` bytes in memory, in either form. */
LIMN_API limn_settings* limn_settings_from_memory(const void* bytes, size_t size,
                                                  limn_error* error);

/* The same from JSON text that ends with a zero. */
LIMN_API limn_settings* limn_settings_from_json(const char* text, limn_error* error);

/* One of the styles that the library carries, by its name, such as "Evening Lamp"; case and accents
 * do not matter. LIMN_BAD_STYLE when there is none of that name. */
LIMN_API limn_settings* limn_settings_bundled(const char* name, limn_error* error);

/* A copy of its own. */
LIMN_API limn_settings* limn_settings_copy(const limn_settings* settings, limn_error* error);

LIMN_API void limn_settings_free(limn_settings* settings);

/* Sets one field, as `limn apply --set KEY=VALUE` does: "exposure" to "150", "light.0.type" to
 * "omni", "light.1.center" to "-30,12", "light.0.color" to "#ff8800". A field of the light after
 * the last one adds a light. LIMN_BAD_ARGUMENT, and nothing changed, when there is no such key, the
 * value does not fit, or it is beyond its slider's ends and would be lit like the end. */
LIMN_API limn_result limn_settings_set(limn_settings* settings, const char* key, const char* value,
                                       limn_error* error);

/* Writes the settings as JSON, with an ending zero, into `room` bytes, cut where they are full.
 * Returns the length of the whole text without the zero, so that a call with room 0, where buffer
 * may be null, tells how much is needed; 0 when memory is short or settings is null. */
LIMN_API size_t limn_settings_json(const limn_settings* settings, char* buffer, size_t room);

/* What reading the style passed over, as a sentence: a light that was cut off, for instance. "" for
 * nothing. Valid as long as the settings. */
LIMN_API const char* limn_settings_warning(const limn_settings* settings);

/* Writes the name of a carried style, counted from 0, as limn_settings_json writes its text. 0 when
 * there are not that many. */
LIMN_API size_t limn_bundled_name(size_t index, char* buffer, size_t room);

/* ---- Lighting ---- */

typedef struct limn_area {
  int32_t x, y, width, height;
} limn_area;

/* What one component of a pixel is, in this machine's byte order. Components need no alignment. */
typedef enum limn_kind {
  LIMN_BYTES = 0, /* 8 bits */
  LIMN_WORDS = 1, /* 16 bits: white is 65535 */
  LIMN_FLOATS = 2 /* single precision: white is 1.0; what is below 0 or above 1 is kept, in and out.
                   * NaN counts as 0, and what is infinite as the largest number */
} limn_kind;

/* A picture in memory. Clear it first, then set what is needed; 0 stands for the usual. Pointers
 * lead to the first byte of the top left pixel, and strides and steps count bytes, whatever the
 * kind of pixel. */
typedef struct limn_picture {
  int32_t width, height; /* in pixels, 1 to LIMN_LONGEST_SIDE */
  int32_t channels;      /* components a pixel: red, green, blue, then any others. At least 3 */
  /* Of every component, in the source and in the output. Words and floats are lit in an arithmetic
   * of single precision, bytes in that of the plug-in. */
  limn_kind kind;

  /* Where the pixels come from, and where they go. The same pointer and stride: in place. Otherwise
   * the two must not share a byte, and the output gets all of the picture: what is not lit is
   * copied. Channels after the third are never changed. Colour must not be multiplied by alpha. */
  const uint8_t* source;
  /* Bytes from a row to the one below; negative: rows go upwards. 0: the rows follow one another
   * without a gap. */
  ptrdiff_t source_stride;
  uint8_t* output;
  ptrdiff_t output_stride;

  /* Heights for relief, one component a pixel, as many as the picture has pixels. Null: the style's
   * relief channel, if it is one of the picture's. It may be a part of the source or of the output:
   * what it holds when the call begins counts. */
  const uint8_t* relief;
  ptrdiff_t relief_stride; /* as above */
  ptrdiff_t relief_step;   /* bytes from a pixel to its right neighbour. 0: those of a component */
  /* Of the relief alone, whatever the picture's kind. Every kind has the same range of heights, 0
   * to white; floats end there. Not looked at where relief is null. */
  limn_kind relief_kind;

  /* The part that is lit, in pixels, and that the style is fitted to. All 0: everything. */
  limn_area area;
} limn_picture;

/* Told how much is done, from 0 to 1; anything but 0 stops the lighting. Called now and then,
 * always by the thread that called the library, the last time with 1. It may call the library, but
 * not leave by longjmp. */
typedef int (*limn_progress)(double done, void* user);

/* How to work. Null, or all 0, is the usual. */
typedef struct limn_options {
  /* 0 or less: as many as the processor runs at once. When the system grants fewer, fewer do the
   * work. */
  int threads;
  limn_progress progress; /* or null */
  void* user;             /* handed to it */
} limn_options;

/* Lights a picture. LIMN_OK, LIMN_CANCELLED, LIMN_BAD_ARGUMENT, LIMN_BAD_STYLE, LIMN_NO_MEMORY or
 * LIMN_FAILED. With all but the first, the second and the last the output is untouched. */
LIMN_API limn_result limn_light(const limn_settings* settings, const limn_picture* picture,
                                const limn_options* options, limn_error* error);

/* The same in two steps, for many pictures of one size, such as the frames of a film. */
typedef struct limn_lighting limn_lighting;

/* Prepares the settings for pictures of this width, height, number of channels and area; nothing
 * else of the picture is looked at, and pictures of every kind can be lit. Null with an error.
 * Freed by the caller. */
LIMN_API limn_lighting* limn_prepare(const limn_settings* settings, const limn_picture* picture,
                                     limn_error* error);

/* Lights a picture of that size. One lighting may serve several threads at once, unless it keeps
 * what it has lit (limn_set_keep). */
LIMN_API limn_result limn_run(const limn_lighting* lighting, const limn_picture* picture,
                              const limn_options* options, limn_error* error);

/* What lights give depends on them and, in relief, on the heights, but on no pixel. A lighting can
 * keep it from picture to picture, which leaves the combination with the pixels: gloss, material,
 * exposure and ambience. The result is the same to the bit. Pictures of bytes alone gain by it. */
typedef enum limn_keep {
  LIMN_KEEP_NOTHING = 0,
  LIMN_KEEP_FLAT = 1,  /* of pictures that are lit without relief */
  LIMN_KEEP_RELIEF = 2 /* of those in relief too, as long as the heights of all are the same */
} limn_keep;

/* What keeping takes with the lighting's settings, in bytes: for each pixel of the area and, in
 * relief, each of its four facets 5 where all lights are gray, 15 where they are coloured, and 24
 * where they are so strong and far away that no less does. 0 where nothing is kept, or lighting is
 * null. */
LIMN_API uint64_t limn_kept_bytes(const limn_lighting* lighting, limn_keep keep);

/* Keeps from the next run on, and forgets what was kept: call it again when the heights are others.
 * Memory is taken by the run that needs it; where it is short, nothing is kept and all is lit. From
 * now on a run changes the lighting, and one thread at a time may use it. LIMN_BAD_ARGUMENT. */
LIMN_API limn_result limn_set_keep(limn_lighting* lighting, limn_keep keep, limn_error* error);

/* Goes on with other settings for the same pictures, as a new limn_prepare would. What is kept
 * stays while only gloss, material, exposure and ambience change. With an error all stays as it
 * was: LIMN_BAD_ARGUMENT, LIMN_BAD_STYLE or LIMN_NO_MEMORY. */
LIMN_API limn_result limn_set_settings(limn_lighting* lighting, const limn_settings* settings,
                                       limn_error* error);

LIMN_API void limn_lighting_free(limn_lighting* lighting);

/* ---- For hosts of the plug-in ---- */

/* Writes the parameter block that the plug-in limn.so, run without its dialog, takes these settings
 * from: the bytes of the handle FilterRecord.savedParams (host/contract/CVFilterRecord.h). They are
 * fitted to the picture's width, height, channels and area; nothing else of it is looked at.
 * Returns the length of the block, one for all settings, so that a call with room 0, where buffer
 * may be null, says how much is needed. Where there is less room nothing is written. 0 with an
 * error.
 * The block is for the plug-in of this very release on this kind of processor. Keep the style, not
 * the block, between two runs of a program. */
LIMN_API size_t limn_settings_parameters(const limn_settings* settings, const limn_picture* picture,
                                         void* buffer, size_t room, limn_error* error);

#ifdef __cplusplus
}
#endif

#endif
