#include "metadata.h"

#include "further_images.h"
#include "recipe.h"

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace limn {
namespace {

using vips::VImage;

constexpr const char* XMP = VIPS_META_XMP_NAME;

bool IsKept(std::string_view field) {
  for (const std::string_view whole :
       {VIPS_META_ICC_NAME, VIPS_META_EXIF_NAME, VIPS_META_XMP_NAME, VIPS_META_IPTC_NAME,
        VIPS_META_PHOTOSHOP_NAME, VIPS_META_IMAGEDESCRIPTION, VIPS_META_RESOLUTION_UNIT})
    if (field == whole)
      return true;
  return field.starts_with("png-comment-");
}

// Bytes are copied: some loaders of libvips hand out their own, which go away with them.
void SetField(VipsImage* into, const char* field, GValue& value) {
  if (G_VALUE_TYPE(&value) != VIPS_TYPE_BLOB) {
    vips_image_set(into, field, &value);
    return;
  }
  size_t size = 0;
  const void* bytes = vips_value_get_blob(&value, &size);
  vips_image_set_blob_copy(into, field, bytes, size);
}

void CopyFields(VipsImage* from, VipsImage* into) {
  gchar** fields = vips_image_get_fields(from);
  for (gchar** field = fields; *field != nullptr; ++field) {
    GValue value = G_VALUE_INIT;
    if (!IsKept(*field) || vips_image_get(from, *field, &value) != 0)
      continue;
    SetField(into, *field, value);
    g_value_unset(&value);
  }
  g_strfreev(fields);
  // Setting the EXIF data has brought its fields along. On writing they decide what of it is kept.
  vips_image_remove(into, VIPS_META_ORIENTATION);
  vips_image_remove(into, "exif-ifd0-Orientation");
  vips_image_remove(into, "jpeg-thumbnail-data");
}

// Packets repeat the orientation, as an attribute or an element with one digit.
void ResetOrientation(std::string& packet) {
  for (const char* opening : {"tiff:Orientation=\"", "tiff:Orientation='", "<tiff:Orientation>"})
    for (size_t at = packet.find(opening); at != std::string::npos; at = packet.find(opening, at)) {
      at += std::strlen(opening);
      if (at < packet.size() && packet[at] >= '1' && packet[at] <= '8')
        packet[at] = '1';
    }
}

// Makes the XMP one of the picture that is written.
void FitXmp(const VImage& image, std::vector<std::string>& notices) {
  std::string packet(BytesOf(image, XMP));
  if (packet.empty())
    return;
  if (std::optional<TrimmedXmp> trimmed = WithoutFurtherImages(packet)) {
    notices.push_back(trimmed->notice);
    packet = std::move(trimmed->packet);
  }
  ResetOrientation(packet);
  packet = WithoutRecipe(std::move(packet));
  if (packet.empty())
    vips_image_remove(image.get_image(), XMP);
  else
    vips_image_set_blob_copy(image.get_image(), XMP, packet.data(), packet.size());
}

} // namespace

std::string_view BytesOf(const VImage& image, const char* field) {
  if (image.get_typeof(field) != VIPS_TYPE_BLOB)
    return {};
  size_t size = 0;
  const void* bytes = image.get_blob(field, &size);
  return {static_cast<const char*>(bytes), size};
}

VImage CopyMetadata(const VImage& image, std::vector<std::string>& notices) {
  VImage metadata = VImage::black(1, 1).copy(
      VImage::option()->set("xres", image.xres())->set("yres", image.yres()));
  CopyFields(image.get_image(), metadata.get_image());
  FitXmp(metadata, notices);
  return metadata;
}

VImage WithMetadata(const VImage& image, const VImage& metadata) {
  VImage copy =
      image.copy(VImage::option()->set("xres", metadata.xres())->set("yres", metadata.yres()));
  vips_image_remove(copy.get_image(), XMP); // its source's own, where it is lit on the way
  CopyFields(metadata.get_image(), copy.get_image());
  return copy;
}

} // namespace limn
