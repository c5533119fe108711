// Heights made of a picture in memory, for the adapters that have no pipeline to make them in.
#pragma once

#include "LM_height_samples.h"
#include "LM_height_source.h"
#include "LM_plane_scaling.h"

#include <algorithm>
#include <vector>

// Makes heights of a picture of width * height pixels of `channels` samples without gaps, or of one
// that is smaller than the picture, whose longer side is `side`. source: resolved. heights: `to`
// has room for. Throws std::bad_alloc.
template <class Sample>
void HeightsOfPicture(const LM_height_source& source, const LM_height_weights& weights,
                      const Sample* pixel, ptrdiff_t channels, const LM_plane_size& from, int side,
                      uint16_t* heights, const LM_plane_size& to) {
  const LM_plane_size size = LM_PreparedSize(source, to.width, to.height);
  LM_plane_reducer reducer(from.width, from.height, std::min(size.width, from.width),
                           std::min(size.height, from.height));
  std::vector<uint16_t> row(static_cast<size_t>(from.width));
  for (int y = 0; y < from.height; ++y, pixel += from.width * channels) {
    LM_HeightsOfPixels(pixel, channels, weights, row.data(), row.size());
    reducer.Add(row.data());
  }
  LM_height_plane plane = reducer.Take();
  LM_PrepareHeights(source, side, plane);
  const LM_plane_enlarger enlarger(plane, to.width, to.height);
  std::vector<double> scratch;
  for (int y = 0; y < to.height; ++y, heights += to.width)
    enlarger.MakeRow(y, 0, to.width, heights, scratch);
}
