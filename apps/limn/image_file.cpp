#include "image_file.h"

#include "colour_conversion.h"
#include "failure.h"
#include "image_library.h"
#include "image_source.h"
#include "metadata.h"

#include <new>

namespace limn {
namespace {

using vips::VImage;

// Decodes, and turns the picture the way up that its orientation tag asks for.
std::vector<uint8_t> Decode(const VImage& image) {
  // Turning reads the rows in another order than the decoder gives them.
  const VImage upright =
      vips_image_get_orientation(image.get_image()) > 1 ? image.copy_memory().autorot() : image;
  const size_t numPixels = static_cast<size_t>(upright.width()) * upright.height();
  std::vector<uint8_t> pixels(numPixels * upright.bands());
  const VImage memory =
      VImage::new_from_memory(pixels.data(), pixels.size(), upright.width(), upright.height(),
                              upright.bands(), VIPS_FORMAT_UCHAR);
  upright.write(memory);
  return pixels;
}

bool SwapsSides(const VImage& image) {
  return vips_image_get_orientation_swap(image.get_image()) != FALSE;
}

void NotePages(const VImage& image, std::vector<std::string>& notices) {
  const int numPages = vips_image_get_n_pages(image.get_image());
  if (numPages > 1)
    notices.push_back("only the first of its " + std::to_string(numPages) + " pages is used");
}

// Runs `work`; whatever goes wrong inside, warnings included, becomes a failure about `path`.
template <typename Work> auto Guarded(const std::string& path, Work work) {
  const Complaints complaints;
  try {
    auto result = work();
    complaints.Check(ExitCode::BadInput, path);
    return result;
  } catch (const vips::VError&) {
    throw LibraryFailure(ExitCode::BadInput, path);
  } catch (const std::bad_alloc&) {
    throw Failure(ExitCode::NoMemory, path + ": not enough memory");
  }
}

// One plane of planes that are all the same.
std::vector<uint8_t> NeutralPlane(const std::vector<uint8_t>& pixels, size_t numPlanes,
                                  const std::string& path) {
  std::vector<uint8_t> plane(pixels.size() / numPlanes);
  for (size_t i = 0; i < plane.size(); ++i) {
    const uint8_t* pixel = pixels.data() + i * numPlanes;
    if (pixel[1] != pixel[0] || pixel[2] != pixel[0])
      throw Failure(ExitCode::BadInput, path + ": is coloured where a grey image is needed");
    plane[i] = pixel[0];
  }
  return plane;
}

} // namespace

Photograph ReadPhotograph(const std::string& path) {
  return Guarded(path, [&] {
    Photograph photograph;
    const VImage image = OpenImage(path);
    NotePages(image, photograph.notices);
    const VImage planes = ToRgbPlanes(image, photograph.notices);
    photograph.metadata = CopyMetadata(planes);
    photograph.numPlanes = planes.bands();
    photograph.width = SwapsSides(planes) ? planes.height() : planes.width();
    photograph.height = SwapsSides(planes) ? planes.width() : planes.height();
    photograph.pixels = Decode(planes);
    return photograph;
  });
}

GreyImage ReadGreyImage(const std::string& path, std::vector<std::string>& notices) {
  return Guarded(path, [&] {
    const VImage image = OpenImage(path);
    const VImage planes = ToPlainPlanes(image, notices);
    if (planes.bands() == 4)
      throw Failure(ExitCode::BadInput, path + ": is a CMYK image where a grey one is needed");
    GreyImage grey;
    grey.file = path;
    grey.width = SwapsSides(planes) ? planes.height() : planes.width();
    grey.height = SwapsSides(planes) ? planes.width() : planes.height();
    grey.pixels = Decode(planes);
    if (planes.bands() == 3)
      grey.pixels = NeutralPlane(grey.pixels, 3, path);
    return grey;
  });
}

int CountPlanes(const std::string& path) {
  return Guarded(path, [&] {
    const VImage image = OpenImage(path);
    return 3 + image.bands() - NumColourBands(image);
  });
}

} // namespace limn
