// A plain shader of whole images, to compare the engine with.
//
// It has no tiles, no caches, no fast paths and shares no code with the engine: every sample is
// worked out from the settings by itself, in the order in which the formulas are written. What the
// engine draws has to equal this byte for byte, so every rounding here is deliberate: a float
// operation rounds once, library functions run in double and are rounded at once, colours are
// 32-bit sums that wrap, and a number that does not fit a 32-bit integer is saturated (NaN
// becomes 0).
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

// Offsets in preview pixels: h to the right, v downwards.
struct ReferencePoint {
  int16_t h = 0, v = 0;
};

// Shading units; z towards the viewer.
struct ReferenceVector {
  float x = 0, y = 0, z = 0;
};

enum : int32_t { REFERENCE_OMNI = 0, REFERENCE_DIRECTIONAL = 1, REFERENCE_SPOT = 2 };

// A light as the user edits it.
struct ReferenceLight {
  int32_t type = REFERENCE_OMNI;
  ReferencePoint center, handle1, handle2; // handles are offsets from the centre
  int16_t radius = 0;
  std::array<uint16_t, 3> color{};
  int16_t intensity = 0;
  int16_t spread = 0;
  bool on = true;
};

struct ReferenceSettings {
  std::array<uint16_t, 3> ambientColor{65535, 65535, 65535};
  int16_t material = 0, gloss = 128, exposure = 128, ambience = 16;
  int16_t bumpAmplitude = 128;
  bool whiteIsHigh = true;
  std::vector<ReferenceLight> lights; // at most 16
};

// Where the preview lies in its frame: this alone decides how preview pixels become shading units.
struct ReferenceGeometry {
  int16_t previewWidth = 256;
  int16_t frameCenterX = 140, frameOriginX = 0;
};

// A light made ready for shading.
struct ReferenceRealLight {
  int32_t type = REFERENCE_OMNI;
  std::array<int32_t, 3> color{}; // times intensity
  ReferenceVector position;       // omni and spot
  ReferenceVector direction;      // directional: towards the light; spot: along its axis
  float cosCutoff = 0;
  std::vector<float> spreadTable; // falloff by angle, from the cone's edge to its axis
  float spreadScale = 0, spreadMinCos = 0;
};

// Everything that a sample's colour depends on besides its place, its source and its normal.
struct ReferenceParameters {
  int32_t gloss = 0, material = 0, exposure = 0;
  std::array<int32_t, 3> ambient{};
  float worldScale = 0; // width of the filter area in shading units
  int32_t heightScale = 0;
  std::vector<ReferenceRealLight> lights;
};

struct ReferenceArea {
  int top = 0, left = 0, bottom = 0, right = 0; // bottom and right exclusive
};

// Three interleaved bytes a pixel. Not owned.
struct ReferenceImage {
  int width = 0, height = 0;
  const uint8_t* pixels = nullptr;
  int rowStride = 0;
};

// One channel of an image: pixelStride bytes from one pixel to the next. Not owned; null: none.
struct ReferencePlane {
  const uint8_t* bytes = nullptr;
  int rowStride = 0, pixelStride = 1;
};

constexpr int REFERENCE_TABLE = 1024;        // falloff entries of a light of the real run
constexpr int REFERENCE_PREVIEW_TABLE = 256; // and of the preview

// Angle of (x, y) in radians; a half turn up for (0, 0).
double ReferenceATan2(double y, double x);
// A float as a 32-bit integer, towards zero.
int32_t ReferenceTruncate(double value);
// Makes a spot's second axis perpendicular to its first and no longer than it. Others: unchanged.
ReferenceLight ReferenceValidate(ReferenceLight light);
// Fills the three spread fields with `entries` entries.
void ReferenceSpread(ReferenceRealLight& light, int16_t spread, int entries);
// pixelsPerUnit: preview pixels to one shading unit.
ReferenceRealLight ReferenceConvert(const ReferenceLight& light, uint16_t pixelsPerUnit,
                                    int entries);
ReferenceParameters ReferencePrepare(const ReferenceSettings& settings,
                                     const ReferenceGeometry& geometry, int entries);

// Byte of the height channel at (x, y); any x and y may be asked for.
using ReferenceChannel = std::function<int(int x, int y)>;

// A small flat part of a pixel's relief; the weights of a pixel's facets total 16.
struct ReferenceFacet {
  ReferenceVector normal;
  int weight = 4;
};

// Filtered height of the pixel (x, y).
int32_t ReferenceHeight(const ReferenceChannel& channel, int x, int y, int32_t scale);
// The one to four facets of the pixel (x, y), upper left, upper right, lower right, lower left;
// flat ones are one facet in the place of the first.
std::vector<ReferenceFacet> ReferenceFacets(const ReferenceChannel& channel, int x, int y,
                                            int32_t scale);

// The light that one sample has received, in plane order.
struct ReferenceSums {
  std::array<int32_t, 3> diffuse{}, specular{};
};

// Adds one light to a sample at (x, y) in shading units. normal: null for a flat surface.
void ReferenceAddLight(ReferenceSums& sums, const ReferenceRealLight& light, float x, float y,
                       const ReferenceVector* normal);

// Colour of a sample at (x, y) in shading units. normal: null for a flat surface.
std::array<uint8_t, 3> ReferenceSample(const ReferenceParameters& parameters, float x, float y,
                                       const ReferenceVector* normal, const uint8_t* source);

// Lights the pixels of `area`, which lies in the image, and writes them in place into `out`: an
// image of the same size, three bytes a pixel. heights: a channel of the same image, whose edge
// pixels go on for ever, or null for a flat surface.
void ReferenceRender(const ReferenceSettings& settings, const ReferenceGeometry& geometry,
                     const ReferenceImage& image, const ReferencePlane& heights,
                     const ReferenceArea& area, uint8_t* out, int outRowStride);

// Lights the picture that the dialog shows of `area`: every scale-th pixel of every scale-th row,
// rounded up, packed three bytes a pixel. Empty when the area or the scale is.
std::vector<uint8_t> ReferenceRenderPreview(const ReferenceSettings& settings,
                                            const ReferenceGeometry& geometry,
                                            const ReferenceImage& image,
                                            const ReferencePlane& heights,
                                            const ReferenceArea& area, int scale);
