#include "colour_conversion.h"

namespace limn {
namespace {

using vips::VImage;

// The colour space that the embedded profile is for, as its header names it: "RGB ", "GRAY",
// "CMYK", "Lab ". Empty without a profile.
std::string ProfileSpace(const VImage& image) {
  const size_t header = 128;
  const size_t spaceOffset = 16;
  if (image.get_typeof(VIPS_META_ICC_NAME) == 0)
    return {};
  size_t size = 0;
  const char* profile = static_cast<const char*>(image.get_blob(VIPS_META_ICC_NAME, &size));
  if (profile == nullptr || size < header)
    return "none";
  return {profile + spaceOffset, 4};
}

VImage WithoutProfile(const VImage& image) {
  VImage copy = image.copy();
  copy.remove(VIPS_META_ICC_NAME);
  return copy;
}

// 8 bits from any number format. Integers keep their high bits, so that white stays white; floats
// are cut to 0 … 255 after `scale`.
VImage ToBytes(const VImage& image, double scale) {
  switch (image.format()) {
  case VIPS_FORMAT_UCHAR:
    return image;
  case VIPS_FORMAT_USHORT:
  case VIPS_FORMAT_UINT:
    return image.cast(VIPS_FORMAT_UCHAR, VImage::option()->set("shift", true));
  default:
    return (image * scale).cast(VIPS_FORMAT_UCHAR);
  }
}

bool IsPlainRgb(const VImage& image, VipsInterpretation space) {
  return image.bands() == 3 &&
         (space == VIPS_INTERPRETATION_sRGB || space == VIPS_INTERPRETATION_RGB ||
          space == VIPS_INTERPRETATION_RGB16 || space == VIPS_INTERPRETATION_MULTIBAND);
}

// profile: as ProfileSpace.
VImage ColourToRgb(const VImage& colour, VipsInterpretation space, const std::string& profile,
                   std::vector<std::string>& notices) {
  if (IsPlainRgb(colour, space)) {
    if (profile.empty() || profile == "RGB ")
      return ToBytes(colour, 1.0);
    notices.emplace_back("its colour profile is not one for RGB and is left out");
    return ToBytes(WithoutProfile(colour), 1.0);
  }
  const bool isGrey = colour.bands() == 1;
  const bool isCmyk = colour.bands() == 4;
  if ((isGrey && profile == "GRAY") || isCmyk) {
    notices.emplace_back(isCmyk ? "CMYK becomes sRGB" : "grey becomes RGB through its profile");
    auto* options = VImage::option()->set("embedded", profile == "CMYK" || isGrey);
    if (isCmyk)
      options->set("input_profile", "cmyk");
    return (isCmyk && profile != "CMYK" ? WithoutProfile(colour) : colour)
        .icc_transform("srgb", options);
  }
  const VImage plain = WithoutProfile(colour);
  if (isGrey) {
    const VImage grey = ToBytes(plain, space == VIPS_INTERPRETATION_scRGB ? 255.0 : 1.0);
    return VImage::bandjoin({grey, grey, grey});
  }
  notices.emplace_back("its colours become sRGB");
  return ToBytes(plain.colourspace(VIPS_INTERPRETATION_sRGB), 1.0);
}

void NoteDepth(const VImage& image, std::vector<std::string>& notices) {
  if (image.format() == VIPS_FORMAT_UCHAR)
    return;
  const size_t bits = 8 * vips_format_sizeof(image.format());
  notices.push_back(std::to_string(bits) + " bits a channel become 8");
}

} // namespace

int NumColourBands(const VImage& image) {
  const VipsInterpretation space = image.guess_interpretation();
  if (space == VIPS_INTERPRETATION_CMYK && image.bands() >= 4)
    return 4;
  if (image.bands() < 3 || space == VIPS_INTERPRETATION_B_W || space == VIPS_INTERPRETATION_GREY16)
    return 1;
  return 3;
}

VImage ToRgbPlanes(const VImage& image, std::vector<std::string>& notices) {
  const VipsInterpretation space = image.guess_interpretation();
  const int numColour = NumColourBands(image);
  NoteDepth(image, notices);
  const VImage colour = image.bands() == numColour
                            ? image
                            : image.extract_band(0, VImage::option()->set("n", numColour));
  VImage planes = ColourToRgb(colour, space, ProfileSpace(image), notices);
  if (image.bands() > numColour) {
    const VImage further =
        image.extract_band(numColour, VImage::option()->set("n", image.bands() - numColour));
    // Among these spaces only scRGB counts alpha from 0 to 1.
    planes = planes.bandjoin(ToBytes(further, space == VIPS_INTERPRETATION_scRGB ? 255.0 : 1.0));
  }
  return planes.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

VImage ToPlainPlanes(const VImage& image, std::vector<std::string>& notices) {
  NoteDepth(image, notices);
  const int numColour = NumColourBands(image);
  const VImage colour = image.extract_band(0, VImage::option()->set("n", numColour));
  const bool unitScale = image.guess_interpretation() == VIPS_INTERPRETATION_scRGB;
  return ToBytes(colour, unitScale ? 255.0 : 1.0);
}

} // namespace limn
