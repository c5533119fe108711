// Views of pixels that lie somewhere in an image.
//
// A view names the part of the image that its memory holds, in the image's own coordinates, so a
// strip, a tile and a whole image are all described alike. Nothing is owned. Rows may run upwards
// (a negative stride); pixels may lie any number of bytes apart.
#pragma once

#include <cstddef>
#include <cstdint>

// What a pixel's components are, in this machine's byte order.
enum class LM_pixel_kind {
  Bytes,
  Words, // 16 bits
  Floats // 1.0 is white; what is darker than black or brighter than white is kept
};
constexpr int LM_ComponentBytes(LM_pixel_kind kind) {
  return kind == LM_pixel_kind::Bytes ? 1 : kind == LM_pixel_kind::Words ? 2 : 4;
}

// A rectangle in pixels: bottom and right are exclusive.
struct LM_rect {
  int32_t top, left, bottom, right;
};

// A rectangle with nothing in it, or turned inside out.
inline bool LM_IsEmpty(const LM_rect& r) {
  return r.bottom <= r.top || r.right <= r.left;
}
inline bool LM_Contains(const LM_rect& outer, const LM_rect& inner) {
  return inner.top >= outer.top && inner.left >= outer.left && inner.bottom <= outer.bottom &&
         inner.right <= outer.right;
}

// Byte: uint8_t, or const uint8_t for pixels that are only read, of whatever kind they are.
// Components need no alignment.
template <class Byte> struct LM_view {
  Byte* pixels;        // the pixel at (bounds.left, bounds.top), or null for none
  ptrdiff_t rowStride; // bytes from a pixel to the one below
  ptrdiff_t pixelStep; // bytes from a pixel to the one on its right
  LM_rect bounds;      // what the memory holds

  // The pixel at (x, y) of the image, which has to lie in bounds.
  Byte* At(int32_t x, int32_t y) const {
    return pixels + (ptrdiff_t{y} - bounds.top) * rowStride +
           (ptrdiff_t{x} - bounds.left) * pixelStep;
  }
};
using LM_source_view = LM_view<const uint8_t>;
using LM_output_view = LM_view<uint8_t>;
