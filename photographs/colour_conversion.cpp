#include "colour_conversion.h"

#include "metadata.h"

namespace limn {
namespace {

using vips::VImage;

constexpr VipsInterpretation LINEAR = VIPS_INTERPRETATION_scRGB;

// The colour space that the embedded profile is for, as its header names it: "RGB ", "GRAY",
// "CMYK", "Lab ". Empty without a profile.
std::string ProfileSpace(const VImage& image) {
  const size_t header = 128;
  const size_t spaceOffset = 16;
  if (image.get_typeof(VIPS_META_ICC_NAME) == 0)
    return {};
  const std::string_view profile = BytesOf(image, VIPS_META_ICC_NAME);
  return profile.size() < header ? "none" : std::string(profile.substr(spaceOffset, 4));
}

VImage WithoutProfile(const VImage& image) {
  VImage copy = image.copy();
  copy.remove(VIPS_META_ICC_NAME);
  return copy;
}

bool IsFloat(const VImage& image) {
  return vips_band_format_isfloat(image.format()) != FALSE;
}

// 8 bits from any number format. Integers keep their high bits, so that white stays white; floats
// are rounded, and cut to 0 … 1.
VImage ToBytes(const VImage& image) {
  if (image.format() == VIPS_FORMAT_USHORT || image.format() == VIPS_FORMAT_UINT)
    return image.cast(VIPS_FORMAT_UCHAR, VImage::option()->set("shift", true));
  return (IsFloat(image) ? (image * 255.0).rint() : image).cast(VIPS_FORMAT_UCHAR);
}

VImage ToWords(const VImage& image) {
  if (image.format() == VIPS_FORMAT_UINT)
    return image.cast(VIPS_FORMAT_USHORT, VImage::option()->set("shift", true));
  if (IsFloat(image))
    return (image * 65535.0).rint().cast(VIPS_FORMAT_USHORT);
  return (image.format() == VIPS_FORMAT_UCHAR ? image * 257 : image).cast(VIPS_FORMAT_USHORT);
}

// What is not of floats grows as sRGB does, and floats that do need a profile that says so.
VImage ToFloats(const VImage& image) {
  if (IsFloat(image))
    return image.cast(VIPS_FORMAT_FLOAT);
  VImage floats = (ToWords(image) / 65535.0).cast(VIPS_FORMAT_FLOAT);
  if (floats.get_typeof(VIPS_META_ICC_NAME) == 0) {
    VipsBlob* const srgb = VImage::profile_load("srgb");
    size_t size = 0;
    const void* bytes = vips_blob_get(srgb, &size);
    vips_image_set_blob_copy(floats.get_image(), VIPS_META_ICC_NAME, bytes, size);
    vips_area_unref(VIPS_AREA(srgb));
  }
  return floats;
}

VImage ToDepth(const VImage& image, VipsBandFormat depth) {
  if (image.format() == depth)
    return image;
  return depth == VIPS_FORMAT_UCHAR    ? ToBytes(image)
         : depth == VIPS_FORMAT_USHORT ? ToWords(image)
                                       : ToFloats(image);
}

bool IsPlainRgb(const VImage& image, VipsInterpretation space) {
  return image.bands() == 3 &&
         (space == VIPS_INTERPRETATION_sRGB || space == VIPS_INTERPRETATION_RGB ||
          space == VIPS_INTERPRETATION_RGB16 || space == VIPS_INTERPRETATION_scRGB ||
          space == VIPS_INTERPRETATION_MULTIBAND);
}

// profile: as ProfileSpace.
VImage ColourToRgb(const VImage& colour, VipsInterpretation space, const std::string& profile,
                   VipsBandFormat depth, std::vector<std::string>& notices) {
  const bool isDeep = depth != VIPS_FORMAT_UCHAR;
  const VipsInterpretation deepest = isDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
  if (IsPlainRgb(colour, space)) {
    // Floats grow as the light does where no profile says how.
    if (IsFloat(colour) && depth != VIPS_FORMAT_FLOAT && profile.empty()) {
      notices.emplace_back("its linear light becomes sRGB");
      return ToDepth(
          colour.copy(VImage::option()->set("interpretation", LINEAR)).colourspace(deepest), depth);
    }
    // Numbers stay what they are; floats darker than black and brighter than white, too.
    if (profile.empty() || profile == "RGB ")
      return ToDepth(colour, depth);
    notices.emplace_back("its colour profile is not one for RGB and is left out");
    return ToDepth(WithoutProfile(colour), depth);
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
    return ToDepth(rgb, depth);
  }
  const VImage plain = WithoutProfile(colour);
  if (isGrey) {
    const VImage grey = ToDepth(plain, depth);
    return VImage::bandjoin({grey, grey, grey});
  }
  notices.emplace_back("its colours become sRGB");
  return ToDepth(plain.colourspace(deepest), depth);
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

int NumBits(const VImage& image) {
  constexpr const char* BITS = "heif-bitdepth"; // of the 16 that libvips gives
  return image.get_typeof(BITS) == G_TYPE_INT ? image.get_int(BITS) : NumBits(image.format());
}

VImage ToRgbPlanes(const VImage& image, VipsBandFormat depth, std::vector<std::string>& notices) {
  const VipsInterpretation space = image.guess_interpretation();
  const int numColour = NumColourBands(image);
  const VImage colour = image.bands() == numColour
                            ? image
                            : image.extract_band(0, VImage::option()->set("n", numColour));
  VImage planes = ColourToRgb(colour, space, ProfileSpace(image), depth, notices);
  if (image.bands() > numColour) {
    const VImage further =
        image.extract_band(numColour, VImage::option()->set("n", image.bands() - numColour));
    planes = planes.bandjoin(ToDepth(further, depth));
  }
  return planes.copy(VImage::option()->set("interpretation", SpaceOf(depth)));
}

VImage ToPlainPlanes(const VImage& image, VipsBandFormat depth) {
  const int numColour = NumColourBands(image);
  const VImage colour = image.extract_band(0, VImage::option()->set("n", numColour));
  return ToDepth(colour, depth);
}

} // namespace limn
