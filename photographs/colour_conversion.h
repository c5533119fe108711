// From whatever space and depth an image has to sRGB and further channels of one depth.
#pragma once

#include <string>
#include <vector>
#include <vips/vips8>

namespace limn {

// The first bands of an image are its colour: 1 for grey, 4 for CMYK, else 3. The rest are alpha
// and further channels.
int NumColourBands(const vips::VImage& image);

// Depths are libvips' formats UCHAR, USHORT and FLOAT, in which white is 255, 65535 and 1.0. This
// one loses nothing of an image, but for integers of more than 16 bits and doubles.
VipsBandFormat DepthOf(const vips::VImage& image);

// The space that ToRgbPlanes marks planes of that depth with.
VipsInterpretation SpaceOf(VipsBandFormat depth);
// Bits a channel: of the image's file, and of a depth.
int NumBits(const vips::VImage& image);
inline int NumBits(VipsBandFormat depth) {
  return static_cast<int>(8 * vips_format_sizeof(depth));
}

// Three bands of colour, then the further channels, all of that depth. An RGB image keeps its
// numbers and its profile; the rest goes through the image's own profile, where it has one, to
// sRGB, and so does the linear light of Radiance where it is not kept in floats. Adds to `notices`
// what changed. Lazy: nothing is computed here. Throws vips::VError.
vips::VImage ToRgbPlanes(const vips::VImage& image, VipsBandFormat depth,
                         std::vector<std::string>& notices);

// The first colour bands in that depth, their numbers unchanged but for it. 1, 3 or 4 bands.
vips::VImage ToPlainPlanes(const vips::VImage& image, VipsBandFormat depth);

} // namespace limn
