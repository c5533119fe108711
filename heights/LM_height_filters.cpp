#include "LM_height_filters.h"

#include "LM_box_sums.h"
#include "LM_row_bands.h"

#include <cmath>

namespace {

// A sum is far below 2^63; processors have an instruction for numbers with a sign only.
double AsDouble(uint64_t sum) {
  return static_cast<double>(static_cast<int64_t>(sum));
}

} // namespace

LM_box_radius LM_box_radius::Of(double pixels) {
  const int sixteenths = static_cast<int>(std::lround(16 * pixels));
  return {sixteenths / 16, sixteenths % 16};
}

double LM_box_radius::Weight() const {
  const double side = 16.0 * (2 * whole + 1) + 2 * sixteenths;
  return side * side;
}

LM_height_plane LM_BoxMeans(const LM_height_plane& plane, double radius) {
  const LM_box_radius square = LM_box_radius::Of(radius);
  const double share = 1 / square.Weight();
  LM_height_plane means(plane.width, plane.height);
  const auto valueAt = [&](int x, int y) { return uint32_t{plane.Row(y)[x]}; };
  LM_WorkInBands(plane.width, plane.height, [&](int first, int end) {
    LM_box_sums box(plane.width, plane.height, square);
    std::vector<uint64_t> sums(static_cast<size_t>(plane.width));
    for (int y = first; y < end; ++y) {
      box.MakeRow(y, sums.data(), valueAt);
      uint16_t* const row = means.Row(y);
      for (int x = 0; x < plane.width; ++x)
        row[x] = LM_NearestHeight(AsDouble(sums[static_cast<size_t>(x)]) * share);
    }
  });
  return means;
}

namespace {

// Of each square: what part of a pixel's difference from the mean is kept, of 65535, and what is
// added to that part of the pixel.
struct KeptParts {
  LM_height_plane part;
  LM_height_plane rest;
};

void FindKeptParts(const LM_height_plane& plane, const LM_box_radius& square, double contrast,
                   int first, int end, KeptParts& kept) {
  const double share = 1 / square.Weight();
  const double noise = contrast * contrast;
  LM_box_sums box(plane.width, plane.height, square);
  LM_box_sums squaresBox(plane.width, plane.height, square);
  std::vector<uint64_t> sums(static_cast<size_t>(plane.width));
  std::vector<uint64_t> squares(sums.size());
  const auto valueAt = [&](int x, int y) { return uint32_t{plane.Row(y)[x]}; };
  const auto squareAt = [&](int x, int y) {
    const uint32_t value = plane.Row(y)[x];
    return value * value;
  };
  for (int y = first; y < end; ++y) {
    box.MakeRow(y, sums.data(), valueAt);
    squaresBox.MakeRow(y, squares.data(), squareAt);
    for (int x = 0; x < plane.width; ++x) {
      const double mean = AsDouble(sums[static_cast<size_t>(x)]) * share;
      const double spread =
          std::max(0.0, AsDouble(squares[static_cast<size_t>(x)]) * share - mean * mean);
      const double part = spread / (spread + noise);
      kept.part.Row(y)[x] = LM_NearestHeight(part * 65535);
      kept.rest.Row(y)[x] = LM_NearestHeight((1 - part) * mean);
    }
  }
}

} // namespace

void LM_SmoothBetweenEdges(LM_height_plane& plane, double radius, double contrast) {
  KeptParts kept{{plane.width, plane.height}, {plane.width, plane.height}};
  const LM_box_radius square = LM_box_radius::Of(radius);
  LM_WorkInBands(plane.width, plane.height, [&](int first, int end) {
    FindKeptParts(plane, square, contrast, first, end, kept);
  });
  kept.part = LM_BoxMeans(kept.part, radius);
  kept.rest = LM_BoxMeans(kept.rest, radius);
  for (size_t i = 0; i < plane.values.size(); ++i) {
    const double value =
        plane.values[i] * (kept.part.values[i] / 65535.0) + kept.rest.values[i] + 0.5;
    plane.values[i] = static_cast<uint16_t>(std::min(value, 65535.0));
  }
}
