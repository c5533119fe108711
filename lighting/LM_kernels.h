// Vector kernels: the plain shader's formulas on rows of pixels, for the instruction sets that this
// build knows. Which of them runs is decided at run time. Their bytes equal the plain code's for
// every row that LM_FitVectors allows; the rest is the plain code's alone.
#pragma once

#include <cstddef>

#include "LM_image.h"
#include "LM_light.h"

// Elements that a kernel may read, or overwrite, after the last one of a row that it is given.
constexpr int LM_KERNEL_SLACK = 64;

// The products of lights that are not strong are smaller than this and convert to integers in every
// instruction set alike: a little less than 2^31, or 2^22 where the kernels convert by the bits of
// a float (TruncateProduct), for the roundings on the way.
#ifdef __wasm_simd128__
constexpr double LM_MOST_PRODUCT = 4190000.0;
#else
constexpr double LM_MOST_PRODUCT = 2140000000.0;
#endif

// A light in one row of samples. y is the row's own: from the sample to the light.
struct LM_kernel_light {
  float color[LM_PLANES];
  bool gray;     // all planes alike
  bool strong;   // its products may reach LM_MOST_PRODUCT, or be NaN
  float x, y, z; // omni and spot: the light's x, and the way to it; directional: the direction
  float ySquare, zSquare;
  float inverse;      // directional: of the direction's length
  float axisX;        // spot
  float axisY, axisZ; // spot: the axis' y and z, times this light's y and z
  float cosCutoff, spreadMinCos, spreadScale;
  const float* spreadTable;
  double zWide;       // z
  double reachCosine; // spot: no sample whose exact cosine is smaller is lit
  // The largest product of colour and falloff: infinite when a falloff is NaN, NaN when the table
  // cannot be looked up on vectors.
  float strongest;
};

// The lights of a job or of one of its rows: omnis, white ones first, then spots, then directional
// ones.
struct LM_kernel_lights {
  int omnis, spots, directionals;
  LM_kernel_light light[LM_MAX_LIGHTS];
  uint8_t ordered[LM_MAX_LIGHTS]; // their places above, in the order of the block
  // What every sample has before these lights: ambient light, and what is the same everywhere.
  int32_t diffuse[LM_PLANES], specular[LM_PLANES];

  int Count() const { return omnis + spots + directionals; }
};

struct LM_kernel_surface {
  int32_t gloss, material, exposure;
};

// The bytes of a row by plane; lit in place.
struct LM_kernel_planes {
  uint8_t* plane[LM_PLANES];
};

// A row's components of more than 8 bits by plane, 255 for white; lit in place.
struct LM_deep_planes {
  float* plane[LM_PLANES];
};

// Where what one light gives to each sample is kept; null where it is not.
struct LM_kernel_part {
  LM_color96 *diffuse, *specular;
};

// The unit normals of a row of facets, by component. Facet i lies between the pixels i - 1 and i,
// and between two rows of them: a pixel shares each of its four with three others.
struct LM_normal_row {
  float *x, *y, *z;

  // From some pixels on.
  LM_normal_row From(int pixels) const { return {x + pixels, y + pixels, z + pixels}; }
};

// Sums of a row that are kept for the next picture. A sample is a pixel or, in relief, one of its
// four facets; of every vector of pixels its samples' words plane by plane, facet after facet. The
// order within a vector is the instruction set's own. The ambient light is not in them.
// Wide: LM_KEPT_SUMS words a sample, the diffuse sums of its planes before the specular ones.
// Tight: for each plane that differs a word, the diffuse sum of 24 bits over bits 8 to 15 of the
// specular one; and in the order of the words a byte, its bits 16 to 23. Lower ones are in no
// pixel.
constexpr int LM_KEPT_SUMS = 2 * LM_PLANES;
constexpr int LM_FACETS = 4;
struct LM_kept_run {
  int32_t* words;
  int8_t* tails; // the bytes; null: wide
  int planes;    // tight: 1 where all planes are alike

  int Words() const { return tails == nullptr ? LM_KEPT_SUMS : planes; } // of a sample
  // From some samples on.
  LM_kept_run From(ptrdiff_t samples) const {
    return {words + samples * Words(), tails == nullptr ? nullptr : tails + samples * Words(),
            planes};
  }
};

// Sums of LM_PACKED_PIXELS pixels, packed for lights over them. What the least sum of each plane
// and kind is; of every sum what it is beyond that, in two halves of 16 bits, by vector of pixels
// and facet, of each the diffuse sums before the specular ones. The upper halves are there only
// where one of the pack's is not 0; those of the second and third plane, which lie by themselves,
// only where they are not the first one's.
constexpr int LM_PACKED_PIXELS = 64;
constexpr int LM_PACKED_SUMS[2] = {2, LM_KEPT_SUMS - 2}; // of the first plane, and of the others
struct LM_pack {
  int32_t least[LM_KEPT_SUMS];
  bool isGray; // the planes are alike
  bool isWide; // it has upper halves
};
struct LM_packed_run {
  LM_pack* packs;
  uint16_t *low[2], *high[2];

  // From some packs on.
  LM_packed_run From(size_t number, int facets) const {
    const size_t samples = number * static_cast<size_t>(LM_PACKED_PIXELS * facets);
    const size_t first = samples * LM_PACKED_SUMS[0];
    const size_t others = samples * LM_PACKED_SUMS[1];
    return {packs + number, {low[0] + first, low[1] + others}, {high[0] + first, high[1] + others}};
  }
};

// With a larger scale the height of a word may leave 32 bits.
constexpr int32_t LM_WORD_HEIGHTS_SCALE = 1 << 21;

// Samples of one row, and their sums of light so far. normals: null for a flat surface.
struct LM_kernel_samples {
  const LM_vector2f* positions;
  const LM_vector3f* normals;
  int count;
  LM_color96 *diffuse, *specular;
};

// One instruction set's kernels. All rows but samples are n > 0 long and have LM_KERNEL_SLACK more
// elements. None needs alignment.
struct LM_kernels {
  const char* name;
  // Bytes 0 to 2 of n pixels, `step` bytes apart, to planes; and back, leaving what lies between.
  // Neither touches a byte beyond the last pixel.
  void (*split)(const uint8_t* pixels, ptrdiff_t step, int n, const LM_kernel_planes& planes);
  void (*join)(const LM_kernel_planes& planes, int n, uint8_t* pixels, ptrdiff_t step);
  // Lights n pixels of a flat surface. x: their places.
  void (*flat)(const LM_kernel_lights& lights, const LM_kernel_surface& surface, const float* x,
               int n, const LM_kernel_planes& planes);
  // The heights of n pixels from three rows of bytes, each starting one pixel to the left.
  void (*heights)(const uint8_t* const taps[3], int n, int32_t scale, int32_t* heights);
  // The same of words, for a scale of up to LM_WORD_HEIGHTS_SCALE either way.
  void (*wordHeights)(const uint16_t* const taps[3], int n, int32_t scale, int32_t* heights);
  // The normals of n facets between two rows of heights, each starting one pixel to the left.
  void (*normals)(const int32_t* above, const int32_t* below, int n, const LM_normal_row& normals);
  // Lights n pixels in relief. normals: of the facets above and below them, n + 1 of each.
  void (*relief)(const LM_kernel_lights& lights, const LM_kernel_surface& surface, const float* x,
                 int n, const LM_normal_row* normals, const LM_kernel_planes& planes);
  // LM_LoadDeep and LM_StoreDeep. Neither touches a byte beyond the last pixel.
  void (*load)(const uint8_t* pixels, ptrdiff_t step, LM_pixel_kind kind, int n,
               const LM_deep_planes& planes);
  void (*store)(const LM_deep_planes& planes, int n, LM_pixel_kind kind, uint8_t* pixels,
                ptrdiff_t step);
  // Lights n pixels of more than 8 bits, all lights in their order, directional ones too. normals:
  // as for relief, or null for a flat surface.
  void (*deep)(const LM_kernel_lights& lights, const LM_kernel_surface& surface, const float* x,
               int n, const LM_normal_row* normals, const LM_deep_planes& planes);
  // The sums that flat and relief combine, kept: those of n pixels or, with normals, of their
  // facets. They fit the form. The lights begin without the ambient light. This and the next three
  // are null where nothing is ever kept.
  void (*keep)(const LM_kernel_lights& lights, const float* x, int n, const LM_normal_row* normals,
               const LM_kept_run& kept);
  // Lights n pixels by sums that were kept, and the ambient light.
  void (*combine)(const LM_kernel_surface& surface, const int32_t* ambient, const LM_kept_run& kept,
                  int facets, int n, const LM_kernel_planes& planes);
  // The same sums as keep, packed, from the beginning of a pack on; and n pixels lit by them and by
  // lights that are not in them, which begin with the ambient light. normals: as for deep; `over`
  // does not look at them where there are no lights.
  void (*pack)(const LM_kernel_lights& lights, const float* x, int n, const LM_normal_row* normals,
               const LM_packed_run& packed);
  void (*over)(const LM_kernel_lights& lights, const LM_kernel_surface& surface,
               const LM_packed_run& packed, const float* x, int n, const LM_normal_row* normals,
               const LM_kernel_planes& planes);
  // Adds the lights to the samples' sums, and stores each light's part; parts go with the lights.
  void (*sum)(const LM_kernel_lights& lights, const LM_kernel_part* parts,
              const LM_kernel_samples& samples);
  // roots[i] = (float)(1.0 / sqrt((double)values[i])) for values in [2^-96, 2^96]. The estimate
  // that the processor gives is first made `nudge` times larger, so that a test can show that its
  // error does not matter; 1 otherwise.
  void (*reciprocalRoot)(const float* values, int n, float nudge, float* roots);
};

// The kernels that this processor can run, best first; returns how many were written to `list`,
// `room` at most. None where the build has no vector library.
int LM_ListKernels(const LM_kernels** list, int room);
// The best of them, or null.
const LM_kernels* LM_BestKernels();
