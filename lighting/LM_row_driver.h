// Light on a piece of an image, row by row: on vectors where the processor has them and nothing is
// to be kept, by the plain arithmetic otherwise, with the same bytes.
#pragma once

#include <optional>

#include "LM_deep_pixels.h"
#include "LM_height_rows.h"
#include "LM_image.h"
#include "LM_kept_sums.h"
#include "LM_light_sums.h"
#include "LM_reach.h"
#include "LM_sample_store.h"
#include "LM_vector_sums.h"

// A piece's place in a store of sums. sums: null where nothing is kept.
struct LM_kept_rows {
  const LM_kept_sums* sums;
  int32_t column, row; // where the piece begins in their rectangle
  uint8_t* ready;      // of each of the piece's rows: 1 when its sums are there
};

// All that the rows of a piece have in common. Nothing is owned.
struct LM_piece {
  const foo* params;
  const LM_kernels* kernels;      // null: the plain arithmetic lights everything
  const LM_sorted_lights* lights; // of the block, for a flat surface or for relief
  LM_rect area;                   // filter area
  LM_rect rect;         // what is lit: in the area, not empty, at most LM_RENDER_BLOCK pixels wide
  const float* columns; // x of the piece's columns, and LM_KERNEL_SLACK numbers more
  LM_source_view source;
  LM_output_view output;
  LM_source_view plane; // in relief: the bytes that are filtered into heights
  LM_rect edges;        // beyond these the plane's edge goes on
  // In relief: heights that were filtered before, the first one pixel up and left of the piece;
  // null where the plane is read.
  const LM_bump_map* map;
  // Of source and output alike, and of the plane. deep: room for what is not bytes; may be null
  // where all is.
  LM_pixel_kind kind = LM_pixel_kind::Bytes, planeKind = LM_pixel_kind::Bytes;
  LM_deep_buffers* deep = nullptr;
  LM_kept_rows kept = {}; // where the rows' sums are kept from picture to picture

  bool IsFlat() const { return plane.pixels == nullptr && map == nullptr; }
  int Facets() const { return IsFlat() ? 1 : LM_FACETS; }
  uint32_t Pixels() const { return static_cast<uint32_t>(rect.right - rect.left); }
};

// What rows are worked out in beside the samples. Cleared before it is used, since vectors read
// beyond a row's end.
struct LM_row_buffers {
  LM_row_ring<uint8_t> taps;
  LM_row_ring<int32_t> heights; // from one pixel left of the piece
  // Of the facets above and below a row of pixels.
  alignas(64) float normals[2][3][LM_row_ring<float>::LENGTH];
  alignas(64) uint8_t planes[LM_PLANES][LM_RENDER_BLOCK + LM_KERNEL_SLACK];
  uint8_t source[LM_PLANES * LM_RENDER_BLOCK]; // packed, where the image's own are not
  uint8_t output[LM_PLANES * LM_RENDER_BLOCK];
  // Three rows of heights one after the other, as a bump map has them.
  int32_t plainHeights[3 * (LM_MAX_RELIEF_PIXELS + 2)];

  // Of the facets that row `row` of heights has above it; from 0.
  LM_normal_row NormalsAt(int32_t row) {
    auto& components = normals[row % 2];
    return {components[0], components[1], components[2]};
  }
};

class LM_row_driver {
public:
  // The piece, the store's arrays and the buffers outlive the driver.
  LM_row_driver(const LM_piece& piece, const LM_sample_store& store, LM_row_buffers& buffers);
  // Lights the next row, from the top. As often as the piece has rows.
  void LightNextRow();

private:
  bool _PutLightsIntoRow(float place);
  void _LightPlanes(int32_t y);
  // What a row's lights are worked out for: the pixels; sums that are kept; or the pixels, over
  // sums that were kept.
  enum class Aim { Light, Keep, Over };
  void _LightRuns(const LM_kernel_lights& row, int32_t y, Aim aim);
  void _LightRun(const LM_kernel_lights& lights, int32_t y, int first, int n, Aim aim);
  void _LightKept(int32_t y);
  void _LightDeep(int32_t y, bool onVectors);
  void _LightFlatSamples(int32_t y);
  void _LightFacets(int32_t y, uint32_t first, uint32_t pixels);
  uint32_t _MakeFacets(int32_t y, uint32_t first, uint32_t pixels);
  void _Combine(uint32_t samples, const uint8_t* colors, uint8_t* out);
  bool _IsKept(int32_t y) const;
  void _FillHeights(int32_t y);
  const uint8_t* _Packed(int32_t x, int32_t y, uint32_t pixels);
  LM_bump_map _HeightsAround(int32_t y, LM_pixel_run& run);

  LM_piece _piece;
  LM_sample_store _store;
  LM_row_buffers& _buffers;
  LM_sample_grid _grid;
  LM_height_rows _heights;
  LM_vector_sums _sums;
  LM_extent _extent;        // of the piece's samples
  LM_kernel_lights _lights; // in no row yet
  LM_kernel_lights _row;    // as a row sees them
  // The same two of the lights that are not in kept sums, where those are packed.
  struct Over {
    LM_kernel_lights lights, row;
  };
  std::optional<Over> _over;
  LM_kernel_lights _near; // those that reach a part of it
  bool _onVectors;        // rows whose lights allow it go through the planes
  bool _allFit;           // every row allows it
  int32_t _heightsEnd;    // the row after the last one of heights, from the piece's first
  int32_t _y;
};
