/* Lights a binary PPM picture of 8 or 16 bits.
 *
 *   cc light.c $(pkg-config --cflags --libs limn) -o light
 *   ./light STYLE input.ppm output.ppm
 *
 * STYLE is a style file, its JSON form, or the name of a style that the library carries. */
#include <ctype.h>
#include <limn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* The next number of a PPM header, after spaces and comments; -1 when there is none. */
static int read_number(FILE* file) {
  int number = -1;
  int next = getc(file);
  while (next == '#' || isspace(next)) {
    if (next == '#')
      while (next != '\n' && next != EOF)
        next = getc(file);
    next = getc(file);
  }
  ungetc(next, file);
  return fscanf(file, "%d", &number) == 1 ? number : -1;
}

static size_t size_of(const limn_picture* picture) {
  const size_t component = picture->kind == LIMN_WORDS ? 2 : 1;
  return (size_t)picture->width * (size_t)picture->height * 3 * component;
}

/* From the file's order of bytes to this machine's, or back. */
static void swap_words(const limn_picture* picture) {
  const uint16_t one = 1;
  const int is_big_endian = *(const uint8_t*)&one == 0;
  size_t i;
  if (picture->kind == LIMN_BYTES || is_big_endian)
    return;
  for (i = 0; i < size_of(picture); i += 2) {
    const uint8_t first = picture->output[i];
    picture->output[i] = picture->output[i + 1];
    picture->output[i + 1] = first;
  }
}

/* Reads a P6 file into *picture, whose pixels are to be freed. */
static int read_picture(const char* path, limn_picture* picture) {
  FILE* file = fopen(path, "rb");
  int width = 0;
  int height = 0;
  int white = 0;
  uint8_t* pixels = NULL;
  if (file == NULL)
    return 0;
  memset(picture, 0, sizeof *picture);
  if (getc(file) == 'P' && getc(file) == '6' && (width = read_number(file)) > 0 &&
      (height = read_number(file)) > 0 && (white = read_number(file)) > 0 &&
      (white == 255 || white == 65535) && isspace(getc(file)) &&
      (size_t)width <= SIZE_MAX / 6 / (size_t)height) {
    size_t size;
    picture->width = width;
    picture->height = height;
    picture->channels = 3;
    picture->kind = white == 255 ? LIMN_BYTES : LIMN_WORDS;
    size = size_of(picture);
    pixels = malloc(size);
    if (pixels != NULL && fread(pixels, 1, size, file) != size) {
      free(pixels);
      pixels = NULL;
    }
  }
  fclose(file);
  picture->source = pixels; /* the same pointer twice: in place */
  picture->output = pixels;
  if (pixels != NULL)
    swap_words(picture);
  return pixels != NULL;
}

static int write_picture(const char* path, const limn_picture* picture) {
  const size_t size = size_of(picture);
  const int white = picture->kind == LIMN_WORDS ? 65535 : 255;
  FILE* file = fopen(path, "wb");
  int ok = file != NULL;
  swap_words(picture);
  if (ok)
    ok = fprintf(file, "P6\n%d %d\n%d\n", (int)picture->width, (int)picture->height, white) > 0 &&
         fwrite(picture->output, 1, size, file) == size;
  if (file != NULL && fclose(file) != 0)
    ok = 0;
  return ok;
}

static int show_progress(double done, void* user) {
  fprintf(user, "\r%3.0f %%", 100 * done);
  return 0; /* anything else stops the lighting */
}

int main(int argc, char** argv) {
  limn_error error;
  limn_picture picture;
  limn_options options = {0};
  limn_settings* settings;
  int ok = 0;
  if (argc != 4) {
    fprintf(stderr, "usage: light STYLE input.ppm output.ppm\n");
    return 2;
  }
  settings = limn_settings_load(argv[1], &error);
  if (settings == NULL && error.code == LIMN_CANNOT_READ && strchr(argv[1], '.') == NULL)
    settings = limn_settings_bundled(argv[1], &error);
  if (settings == NULL) {
    fprintf(stderr, "light: %s\n", error.text);
    return 1;
  }
  if (!read_picture(argv[2], &picture)) {
    fprintf(stderr, "light: %s: is no binary PPM picture\n", argv[2]);
    limn_settings_free(settings);
    return 1;
  }
  options.progress = show_progress;
  options.user = stderr;
  if (limn_light(settings, &picture, &options, &error) != LIMN_OK)
    fprintf(stderr, "light: %s\n", error.text);
  else if (!write_picture(argv[3], &picture))
    fprintf(stderr, "light: %s: could not be written\n", argv[3]);
  else
    ok = 1;
  free(picture.output);
  limn_settings_free(settings);
  return ok ? 0 : 1;
}
