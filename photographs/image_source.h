// Opens an image file for libvips without letting it interpret the name or map the file.
#pragma once

#include <string>
#include <vips/vips8>

namespace limn {

// The name that stands for standard input, and a name as sentences have it.
constexpr const char* STANDARD_INPUT = "-";
std::string ShownName(const std::string& path);

// The image with its header read; the pixels are decoded once, from top to bottom, when asked for.
// Both sides are 1 to LIMN_LONGEST_SIDE. shrink: 1, 2, 4 or 8; a JPEG is decoded to that part of
// its size, which saves most of the work, other formats to all of it. Throws Failure(BadInput).
vips::VImage OpenImage(const std::string& name, int shrink = 1);

// The most that a JPEG whose longer side is `side` may be shrunk by so that it is still `wanted`
// long.
int ShrinkFor(int side, int wanted);

} // namespace limn
