// What a file may claim of itself, so that a small one cannot fill the memory.
#pragma once

#include "format_limits.h"

#include <vips/vips8>

namespace limn {

// How a format's pixels are decoded: row after row, all at once, or row after row with the lowest
// first, so that they are kept before they are used.
enum class Decoding { ByRows, Whole, BottomUp };

// After the header is read: throws Failure(BadInput) when the image has more pixels than
// ImageSizeLimit allows, or, without such a limit, when a file decoded whole, or one of very long
// rows, holds more of them than its length can mean. Every four channels count as a pixel; of a
// file decoded whole every four bytes, since these have to be in memory. shrink: by which the
// decoder reduced the sides.
void CheckPixels(const vips::VImage& image, int shrink, Decoding decoding, const FileBytes& file);

} // namespace limn
