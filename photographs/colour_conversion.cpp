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

// What a float that is white counts in that space.
double WhiteOf(VipsInterpretation space) {
  return space == VIPS_INTERPRETATION_scRGB ? 1.0 : 255.0;
}

bool IsFloat(const VImage& image) {
  return vips_band_format_isfloat(image.format()) != FALSE;
}

// 8 bits from any number format. Integers keep their high bits, so that white stays white; floats
// are cut to 0 … 255.
VImage ToBytes(const VImage& image, double white) {
  if (image.format() == VIPS_FORMAT_USHORT || image.format() == VIPS_FORMAT_UINT)
    return image.cast(VIPS_FORMAT_UCHAR, VImage::option()->set("shift", true));
  return (IsFloat(image) ? image * (255.0 / white) : image).cast(VIPS_FORMAT_UCHAR);
}

VImage ToWords(const VImage& image, double white) {
  if (image.format() == VIPS_FORMAT_UINT)
    return image.cast(VIPS_FORMAT_USHORT, VImage::option()->set("shift", true));
  if (IsFloat(image))
    return (image * (65535.0 / white)).rint().cast(VIPS_FORMAT_USHORT);
  return (image.format() == VIPS_FORMAT_UCHAR ? image * 257 : image).cast(VIPS_FORMAT_USHORT);
}

VImage ToFloats(const VImage& image, double white) {
  if (IsFloat(image))
    return (white == 1.0 ? image : image / white).cast(VIPS_FORMAT_FLOAT);
  return (ToWords(image, white) / 65535.0).cast(VIPS_FORMAT_FLOAT);
}

VImage ToDepth(const VImage& image, VipsBandFormat depth, double white) {
  if (image.format() == depth && (depth != VIPS_FORMAT_FLOAT || white == 1.0))
    return image;
  return depth == VIPS_FORMAT_UCHAR    ? ToBytes(image, white)
         : depth == VIPS_FORMAT_USHORT ? ToWords(image, white)
                                       : ToFloats(image, white);
}

bool IsPlainRgb(const VImage& image, VipsInterpretation space) {
  return image.bands() == 3 &&
         (space == VIPS_INTERPRETATION_sRGB || space == VIPS_INTERPRETATION_RGB ||
          space == VIPS_INTERPRETATION_RGB16 || space == VIPS_INTERPRETATION_MULTIBAND);
}

// profile: as ProfileSpace.
VImage ColourToRgb(const VImage& colour, VipsInterpretation space, const std::string& profile,
                   VipsBandFormat depth, std::vector<std::string>& notices) {
  const double white = WhiteOf(space);
  const bool isDeep = depth != VIPS_FORMAT_UCHAR;
  // Floats stay what they are, darker than black and brighter than white too.
  const bool keepsFloats =
      depth == VIPS_FORMAT_FLOAT && colour.bands() == 3 && space == VIPS_INTERPRETATION_scRGB;
  if (IsPlainRgb(colour, space) || keepsFloats) {
    if (profile.empty() || profile == "RGB ")
      return ToDepth(colour, depth, white);
    notices.emplace_back("its colour profile is not one for RGB and is left out");
    return ToDepth(WithoutProfile(colour), depth, white);
  }
  const bool isGrey = colour.bands() == 1;
  const bool isCmyk = colour.bands() == 4;
  if ((isGrey && profile == "GRAY") || isCmyk) {
    notices.emplace_back(isCmyk ? "CMYK becomes sRGB" : "grey becomes RGB through its profile");
    auto* options = VImage::option()
                        ->set("embedded", profile == "CMYK" || isGrey)
                        ->set("depth", isDeep ? 16 : 8);
    if (isCmyk)
      options->set("input_profile", "cmyk");
    const VImage rgb = (isCmyk && profile != "CMYK" ? WithoutProfile(colour) : colour)
                           .icc_transform("srgb", options);
    return ToDepth(rgb, depth, white);
  }
  const VImage plain = WithoutProfile(colour);
  if (isGrey) {
    const VImage grey = ToDepth(plain, depth, white);
    return VImage::bandjoin({grey, grey, grey});
  }
  notices.emplace_back("its colours become sRGB");
  return ToDepth(plain.colourspace(isDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB),
                 depth, 255.0);
}

void NoteDepth(const VImage& image, VipsBandFormat depth, std::vector<std::string>& notices) {
  if (vips_format_sizeof(image.format()) <= vips_format_sizeof(depth))
    return;
  const size_t bits = 8 * vips_format_sizeof(image.format());
  notices.push_back(std::to_string(bits) + " bits a channel become " +
                    std::to_string(8 * vips_format_sizeof(depth)));
}

} // namespace

VipsInterpretation SpaceOf(VipsBandFormat depth) {
  return depth == VIPS_FORMAT_UCHAR    ? VIPS_INTERPRETATION_sRGB
         : depth == VIPS_FORMAT_USHORT ? VIPS_INTERPRETATION_RGB16
                                       : VIPS_INTERPRETATION_scRGB;
}

int NumColourBands(const VImage& image) {
  const VipsInterpretation space = image.guess_interpretation();
  if (space == VIPS_INTERPRETATION_CMYK && image.bands() >= 4)
    return 4;
  if (image.bands() < 3 || space == VIPS_INTERPRETATION_B_W || space == VIPS_INTERPRETATION_GREY16)
    return 1;
  return 3;
}

VipsBandFormat DepthOf(const VImage& image) {
  return IsFloat(image)                           ? VIPS_FORMAT_FLOAT
         : vips_format_sizeof(image.format()) > 1 ? VIPS_FORMAT_USHORT
                                                  : VIPS_FORMAT_UCHAR;
}

VImage ToRgbPlanes(const VImage& image, VipsBandFormat depth, std::vector<std::string>& notices) {
  const VipsInterpretation space = image.guess_interpretation();
  const int numColour = NumColourBands(image);
  NoteDepth(image, depth, notices);
  const VImage colour = image.bands() == numColour
                            ? image
                            : image.extract_band(0, VImage::option()->set("n", numColour));
  VImage planes = ColourToRgb(colour, space, ProfileSpace(image), depth, notices);
  if (image.bands() > numColour) {
    const VImage further =
        image.extract_band(numColour, VImage::option()->set("n", image.bands() - numColour));
    // Among these spaces only scRGB counts alpha from 0 to 1.
    planes = planes.bandjoin(ToDepth(further, depth, WhiteOf(space)));
  }
  return planes.copy(VImage::option()->set("interpretation", SpaceOf(depth)));
}

VImage ToPlainPlanes(const VImage& image, VipsBandFormat depth) {
  const int numColour = NumColourBands(image);
  const VImage colour = image.extract_band(0, VImage::option()->set("n", numColour));
  return ToDepth(colour, depth, WhiteOf(image.guess_interpretation()));
}

} // namespace limn
