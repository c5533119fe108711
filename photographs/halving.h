// Pictures of half the width and height.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace limn {

// A row from two that lie above each other, `width` pixels of `bands` bytes each: every pixel the
// rounded mean of four. Of an odd width the last ones are their own neighbours, and the row has a
// pixel for them.
void HalveRow(const uint8_t* above, const uint8_t* below, size_t width, size_t bands, uint8_t* out);

// A picture of even sides without padding.
std::vector<uint8_t> Halved(const std::vector<uint8_t>& pixels, int width, int height, int bands);

} // namespace limn
