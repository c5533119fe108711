/* An operation limn:light that is evaluated again and again, while its properties and its inputs
 * change, gives what a new one gives each time. Arguments: styles. */
#include <gegl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { WIDTH = 67, HEIGHT = 41, BYTES = WIDTH * HEIGHT * 3 };
static const GeglRectangle ALL = {0, 0, WIDTH, HEIGHT};

static void Fill(GeglBuffer* buffer, const char* format, unsigned int seed) {
  guchar pixels[BYTES];
  for (int i = 0; i < BYTES; ++i) {
    seed = seed * 1103515245u + 12345u;
    pixels[i] = (guchar)(seed >> 20);
  }
  gegl_buffer_set(buffer, &ALL, 0, babl_format(format), pixels, GEGL_AUTO_ROWSTRIDE);
}

static GeglNode* NewLight(GeglNode* graph, GeglNode* picture, GeglNode* heights) {
  GeglNode* light = gegl_node_new_child(graph, "operation", "limn:light", NULL);
  gegl_node_connect_to(picture, "output", light, "input");
  if (heights != NULL)
    gegl_node_connect_to(heights, "output", light, "aux");
  return light;
}

static void Evaluate(GeglNode* light, guchar* pixels) {
  gegl_node_blit(light, 1, &ALL, babl_format("R'G'B' u8"), pixels, GEGL_AUTO_ROWSTRIDE,
                 GEGL_BLIT_DEFAULT);
}

int main(int argc, char** argv) {
  enum { STYLE, GLOSS, EXPOSURE, PIXELS, HEIGHTS, FLAT, RELIEF, CHANGES };
  static guchar standing[BYTES], fresh[BYTES], before[BYTES];
  unsigned int seed = 1;
  int same = 0;
  if (argc < 3)
    return 2;
  gegl_init(NULL, NULL);
  GeglNode* graph = gegl_node_new();
  GeglBuffer* pixels = gegl_buffer_new(&ALL, babl_format("R'G'B' u8"));
  GeglBuffer* bumps = gegl_buffer_new(&ALL, babl_format("Y' u8"));
  Fill(pixels, "R'G'B' u8", 7);
  Fill(bumps, "Y' u8", 8);
  GeglNode* picture =
      gegl_node_new_child(graph, "operation", "gegl:buffer-source", "buffer", pixels, NULL);
  GeglNode* heights =
      gegl_node_new_child(graph, "operation", "gegl:buffer-source", "buffer", bumps, NULL);
  GeglNode* light = NewLight(graph, picture, NULL);
  GeglNode* aux = NULL;
  const char* style = argv[1];
  double gloss = 0.5, exposure = 0.5;
  gegl_node_set(light, "style", style, NULL);
  for (int step = 0; step < 120; ++step) {
    seed = seed * 1103515245u + 12345u;
    const int change = (int)(seed >> 16) % CHANGES;
    const double value = (double)(seed >> 8 & 255) / 255;
    if (change == STYLE)
      style = argv[1 + (seed >> 20) % (unsigned int)(argc - 1)];
    else if (change == GLOSS)
      gloss = value;
    else if (change == EXPOSURE)
      exposure = value;
    else if (change == PIXELS)
      Fill(pixels, "R'G'B' u8", seed);
    else if (change == HEIGHTS)
      Fill(bumps, "Y' u8", seed);
    else
      aux = change == RELIEF ? heights : NULL;
    gegl_node_disconnect(light, "aux");
    if (aux != NULL)
      gegl_node_connect_to(aux, "output", light, "aux");
    gegl_node_set(light, "style", style, "gloss", gloss, "exposure", exposure, NULL);
    Evaluate(light, standing);
    GeglNode* other = NewLight(graph, picture, aux);
    gegl_node_set(other, "style", style, "gloss", gloss, "exposure", exposure, NULL);
    Evaluate(other, fresh);
    gegl_node_remove_child(graph, other);
    if (memcmp(standing, fresh, BYTES) != 0) {
      fprintf(stderr, "step %d, change %d: not what a new operation gives\n", step, change);
      return 1;
    }
    same += memcmp(standing, before, BYTES) == 0;
    memcpy(before, standing, BYTES);
  }
  g_object_unref(graph);
  g_object_unref(pixels);
  g_object_unref(bumps);
  gegl_exit();
  printf("%d of 120 as before\n", same);
  return same < 80 ? 0 : 1;
}
