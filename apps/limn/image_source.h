// Opens an image file for libvips without letting it interpret the name or map the file.
#pragma once

#include <string>
#include <vips/vips8>

namespace limn {

// The image with its header read; the pixels are decoded once, from top to bottom, when asked for.
// Both sides are 1 to LONGEST_SIDE. Throws Failure(BadInput).
vips::VImage OpenImage(const std::string& path);

} // namespace limn
