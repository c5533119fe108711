// From whatever space and depth an image has to 8-bit sRGB and further channels.
#pragma once

#include <string>
#include <vector>
#include <vips/vips8>

namespace limn {

// The first bands of an image are its colour: 1 for grey, 4 for CMYK, else 3. The rest are alpha
// and further channels.
int NumColourBands(const vips::VImage& image);

// Three 8-bit bands of colour, then the further channels in 8 bits. An RGB image keeps its numbers
// and its profile; the rest goes through the image's own profile, where it has one, to sRGB. Adds
// to `notices` what changed. Lazy: nothing is computed here. Throws vips::VError.
vips::VImage ToRgbPlanes(const vips::VImage& image, std::vector<std::string>& notices);

// The first colour bands in 8 bits, their numbers unchanged but for the depth. 1, 3 or 4 bands.
vips::VImage ToPlainPlanes(const vips::VImage& image, std::vector<std::string>& notices);

} // namespace limn
