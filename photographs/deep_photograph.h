// The samples of a photograph of more than 8 bits a channel.
#pragma once

#include "image_file.h"

#include <vips/vips8>

namespace limn {

// They, or the pixels of one of 8 bits, as an image that borrows them.
vips::VImage PlanesOf(Photograph& photograph);

// Planes of any depth as a photograph of 8 bits has them: how the picture looks.
vips::VImage InBytes(const vips::VImage& planes);

} // namespace limn
