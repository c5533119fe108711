// Pictures in memory and on disk.
#pragma once

#include "Vector.h"

#include <cstdint>
#include <string>
#include <vector>

namespace scenes {

// width × height values, row by row from the top.
template <class Value> struct Plane {
  int width = 0, height = 0;
  std::vector<Value> values;

  Plane() = default;
  Plane(int w, int h)
      : width(w), height(h), values(static_cast<size_t>(w) * static_cast<size_t>(h)) {}
  Value& At(int x, int y) {
    return values[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
  const Value& At(int x, int y) const {
    return values[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
  // The nearest value of the plane, for places outside it.
  const Value& Nearest(int x, int y) const {
    return At(std::clamp(x, 0, width - 1), std::clamp(y, 0, height - 1));
  }
};

// Interleaved bytes of 1 (grey) or 3 (sRGB) bands.
struct Bytes {
  int width = 0, height = 0, bands = 0;
  std::vector<uint8_t> values;
};

// Writes a picture in the format of the name's ending, which may carry the writer's options in
// brackets. Throws std::runtime_error with the reason when it cannot.
void Write(const Bytes& picture, const std::string& path);

} // namespace scenes
