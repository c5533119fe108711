#include "Picture.h"

#include <stdexcept>
#include <vips/vips.h>

namespace scenes {

void Write(const Bytes& picture, const std::string& path) {
  VipsImage* image =
      vips_image_new_from_memory(picture.values.data(), picture.values.size(), picture.width,
                                 picture.height, picture.bands, VIPS_FORMAT_UCHAR);
  if (image == nullptr) {
    throw std::runtime_error(path + ": " + vips_error_buffer());
  }
  image->Type = picture.bands == 3 ? VIPS_INTERPRETATION_sRGB : VIPS_INTERPRETATION_B_W;
  const int failed = vips_image_write_to_file(image, path.c_str(), nullptr);
  g_object_unref(image);
  if (failed != 0) {
    throw std::runtime_error(path + ": " + vips_error_buffer());
  }
}

} // namespace scenes
