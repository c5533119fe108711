// The image made small, quickly enough to be done between two frames.
#include "EditorDocument.h"

#include <algorithm>

namespace editor {
namespace {

// Samples a side that a reduced pixel is the mean of, at most.
constexpr int SAMPLES = 4;

// Where the samples of one reduced pixel are, along one side.
struct Span {
  int first;
  int step;
  int count;
};

Span SpanOf(int index, int reduced, int full) {
  const int first = static_cast<int>(int64_t{full} * index / reduced);
  const int end = static_cast<int>(int64_t{full} * (index + 1) / reduced);
  const int length = std::max(1, end - first);
  const int step = std::max(1, length / SAMPLES);
  return {first, step, std::min(SAMPLES, length)};
}

// A plane of interleaved bytes, from its first one on.
struct Plane {
  const uint8_t* data;
  size_t pixelBytes;
  size_t rowPixels;
};

uint8_t Mean(const Plane& plane, const Span& rows, const Span& columns) {
  int sum = 0;
  for (int y = 0; y < rows.count; ++y)
    for (int x = 0; x < columns.count; ++x)
      sum += plane.data[(static_cast<size_t>(rows.first + y * rows.step) * plane.rowPixels +
                         static_cast<size_t>(columns.first + x * columns.step)) *
                        plane.pixelBytes];
  const int count = rows.count * columns.count;
  return static_cast<uint8_t>((sum + count / 2) / count);
}

} // namespace

limn::ReducedPhotograph EditorDocument::reduced(const QRect& area, int longestSide) const {
  limn::ReducedPhotograph small;
  small.fullWidth = area.width();
  small.fullHeight = area.height();
  limn::FitReduction(small, longestSide);
  const limn::Photograph& photograph = _image.photograph;
  const auto numOwn = static_cast<size_t>(photograph.numPlanes);
  const auto width = static_cast<size_t>(photograph.width);
  const QImage& mask = _selection.mask;
  const Plane maskPlane{mask.constBits(), 1, static_cast<size_t>(mask.bytesPerLine())};
  std::vector<Plane> planes;
  for (size_t plane = 0; plane < numOwn; ++plane)
    planes.push_back({photograph.pixels.data() + plane, numOwn, width});
  for (const limn::GreyImage& channel : _channels)
    planes.push_back({channel.pixels.data(), 1, width});
  small.numPlanes = static_cast<int>(planes.size());
  small.pixels.reserve(planes.size() * static_cast<size_t>(small.width) *
                       static_cast<size_t>(small.height));
  for (int y = 0; y < small.height; ++y) {
    Span rows = SpanOf(y, small.height, area.height());
    rows.first += area.y();
    for (int x = 0; x < small.width; ++x) {
      Span columns = SpanOf(x, small.width, area.width());
      columns.first += area.x();
      for (const Plane& plane : planes)
        small.pixels.push_back(Mean(plane, rows, columns));
      if (!mask.isNull())
        small.mask.push_back(Mean(maskPlane, rows, columns));
    }
  }
  return small;
}

} // namespace editor
