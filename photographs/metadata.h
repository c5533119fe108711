// What a photograph says about itself beside its pixels.
#pragma once

#include <string>
#include <string_view>
#include <vector>
#include <vips/vips8>

namespace limn {

// The bytes that an image has of a kind, which go away with it; empty where it has none.
std::string_view BytesOf(const vips::VImage& image, const char* field);

// A one-pixel image with the resolution, profile, EXIF, XMP and IPTC data of `image`. The
// orientation is reset, since it has been applied, and an embedded thumbnail is left out, since it
// would show the old picture, and a recipe, which would not be true of a new one; so is what the
// XMP says of further images in the file, which are not written, and `notices` tells of it. Throws
// vips::VError.
vips::VImage CopyMetadata(const vips::VImage& image, std::vector<std::string>& notices);

// `image` with what CopyMetadata took.
vips::VImage WithMetadata(const vips::VImage& image, const vips::VImage& metadata);

} // namespace limn
