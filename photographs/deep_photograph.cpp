#include "deep_photograph.h"

#include "colour_conversion.h"

#include <string>
#include <vector>

namespace limn {

using vips::VImage;

VImage PlanesOf(Photograph& photograph) {
  std::vector<uint8_t>& samples =
      photograph.depth == VIPS_FORMAT_UCHAR ? photograph.pixels : photograph.deep;
  return VImage::new_from_memory(samples.data(), samples.size(), photograph.width,
                                 photograph.height, photograph.numPlanes, photograph.depth)
      .copy(VImage::option()->set("interpretation", SpaceOf(photograph.depth)));
}

VImage InBytes(const VImage& planes) {
  std::vector<std::string> notices; // nothing is lost that the samples do not keep
  return ToRgbPlanes(planes, VIPS_FORMAT_UCHAR, notices);
}

} // namespace limn
