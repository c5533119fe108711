// A plane of heights in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// The nearest one to a value from 0 to 65535, a half up.
inline uint16_t LM_NearestHeight(double value) {
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): of 16 bits no value is so near a half
  return static_cast<uint16_t>(value + 0.5);
}

// 16 bits each, width a row, no padding; 65535 is highest. Asking for memory that there is not
// throws std::bad_alloc.
struct LM_height_plane {
  int width = 0;
  int height = 0;
  std::vector<uint16_t> values;

  LM_height_plane() = default;
  LM_height_plane(int planeWidth, int planeHeight)
      : width(planeWidth), height(planeHeight),
        values(static_cast<size_t>(planeWidth) * static_cast<size_t>(planeHeight)) {}

  uint16_t* Row(int y) { return values.data() + static_cast<ptrdiff_t>(y) * width; }
  const uint16_t* Row(int y) const { return values.data() + static_cast<ptrdiff_t>(y) * width; }
};
