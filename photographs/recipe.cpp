#include "recipe.h"

#include "failure.h"
#include "image_source.h"
#include "metadata.h"
#include "posix_file.h"

#include "LM_style_json.h"

#include <algorithm>
#include <array>
#include <exempi/xmp.h>
#include <filesystem>
#include <glib.h>
#include <iostream>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>

namespace limn {
namespace {

using Json = nlohmann::ordered_json;
using vips::VImage;

constexpr const char* NAMESPACE = "urn:limn:recipe:1";
constexpr const char* PREFIX = "limn";
constexpr const char* PROPERTY = "Recipe";
constexpr const char* LIT = "lit";

// What is usual for the kind of source is left out, as in a style's relief object.
Json ReliefJson(const LM_height_source& relief) {
  Json json = Json::object();
  if (relief.smoothing > 0)
    json["smoothing"] = relief.smoothing;
  if (relief.detail > 0)
    json["detail"] = relief.detail;
  if (relief.fit)
    json["fit"] = true;
  if (relief.invert)
    json["invert"] = true;
  return json;
}

Json FileJson(const RecipeFile& file) {
  Json json = {{"name", file.name}};
  if (!file.digest.empty())
    json["sha256"] = file.digest;
  return json;
}

// What an object has under a key; null where it has nothing.
const Json& Under(const Json& json, const char* key) {
  static const Json nothing;
  const auto found = json.find(key);
  return found != json.end() ? *found : nothing;
}

std::string TextOf(const Json& json, const char* key) {
  const Json& text = Under(json, key);
  return text.is_string() ? text.get<std::string>() : std::string();
}

int NumberOf(const Json& json, const char* key, int low, int high) {
  const Json& number = Under(json, key);
  return number.is_number_integer()
             ? static_cast<int>(std::clamp<int64_t>(number.get<int64_t>(), low, high))
             : low;
}

std::optional<RecipeFile> FileOf(const Json& file) {
  if (!file.is_object())
    return std::nullopt;
  return RecipeFile{TextOf(file, "name"), TextOf(file, "sha256")};
}

std::optional<limn_area> AreaOf(const Json& area) {
  if (!area.is_array() || area.size() != 4)
    return std::nullopt;
  std::array<int32_t, 4> sides{};
  for (size_t i = 0; i < sides.size(); ++i) {
    const Json& side = area[i];
    if (!side.is_number_integer() || side.get<int64_t>() < 0 || side.get<int64_t>() > INT16_MAX)
      return std::nullopt;
    sides[i] = side.get<int32_t>();
  }
  return limn_area{sides[0], sides[1], sides[2], sides[3]};
}

void ReadLit(const Json& lit, Recipe& recipe) {
  const Json& heights = Under(lit, "heights");
  recipe.area = AreaOf(Under(lit, "area"));
  recipe.bits = Under(lit, "depth") == "float" ? 32 : NumberOf(lit, "depth", 8, 16);
  recipe.isDeep = Under(lit, "heightsIn8Bits") != true;
  recipe.original = FileOf(Under(lit, "original"));
  recipe.mask = FileOf(Under(lit, "mask"));
  recipe.heights = FileOf(heights);
  if (recipe.heights) {
    recipe.relief = {};
    recipe.relief.kind = LM_height_kind::File;
    recipe.relief.smoothing = NumberOf(heights, "smoothing", 0, LM_MOST_SMOOTHING);
    recipe.relief.detail = NumberOf(heights, "detail", 0, LM_MOST_DETAIL);
    recipe.relief.fit = Under(heights, "fit") == true;
    recipe.relief.invert = Under(heights, "invert") == true;
  }
  const Json& channels = Under(lit, "channels");
  if (channels.is_array())
    for (const Json& channel : channels)
      if (const std::optional<RecipeFile> file = FileOf(channel))
        recipe.channels.push_back(*file);
}

struct XmpDeleter {
  void operator()(XmpPtr xmp) const { xmp_free(xmp); }
  void operator()(XmpStringPtr text) const { xmp_string_free(text); }
};
using XmpPacket = std::unique_ptr<std::remove_pointer_t<XmpPtr>, XmpDeleter>;
using XmpText = std::unique_ptr<std::remove_pointer_t<XmpStringPtr>, XmpDeleter>;

// The library prints what it cannot read, which is none of the user's concern.
class QuietErrors {
public:
  QuietErrors() : _kept(std::cerr.rdbuf(nullptr)) {}
  ~QuietErrors() { std::cerr.rdbuf(_kept); }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

private:
  std::streambuf* _kept;
};

// A packet, or a new one for an empty one. Null where it is none that can be read.
XmpPacket Parsed(std::string_view packet) {
  static const bool isReady = xmp_init() && xmp_register_namespace(NAMESPACE, PREFIX, nullptr);
  // Some writers end the packet with a NUL.
  while (packet.ends_with('\0'))
    packet.remove_suffix(1);
  const QuietErrors quiet;
  return XmpPacket(!isReady         ? nullptr
                   : packet.empty() ? xmp_new_empty()
                                    : xmp_new(packet.data(), packet.size()));
}

// Empty when there is no memory for it.
std::string Serialized(const XmpPacket& packet) {
  const XmpText text(xmp_string_new());
  if (!xmp_serialize(packet.get(), text.get(), XMP_SERIAL_OMITPACKETWRAPPER, 0))
    return {};
  return xmp_string_cstr(text.get());
}

} // namespace

std::string RecipeToJson(const Recipe& recipe) {
  Json lit = Json::object();
  if (recipe.area)
    lit["area"] = {recipe.area->x, recipe.area->y, recipe.area->width, recipe.area->height};
  lit["depth"] = recipe.bits == 32 ? Json("float") : Json(recipe.bits);
  if (!recipe.isDeep)
    lit["heightsIn8Bits"] = true;
  if (recipe.original)
    lit["original"] = FileJson(*recipe.original);
  if (recipe.mask)
    lit["mask"] = FileJson(*recipe.mask);
  if (recipe.heights) {
    lit["heights"] = FileJson(*recipe.heights);
    lit["heights"].update(ReliefJson(recipe.relief));
  }
  for (const RecipeFile& channel : recipe.channels)
    lit["channels"].push_back(FileJson(channel));
  Json json = Json::parse(LM_StyleToJson(recipe.style, recipe.relief));
  json[LIT] = lit;
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool RecipeFromJson(std::string_view json, Recipe& recipe, std::string& why) {
  recipe = {};
  if (!LM_StyleFromJson(json, recipe.style, why, &recipe.relief))
    return false;
  const Json whole = Json::parse(json, nullptr, false);
  const Json& lit = Under(whole, LIT);
  if (lit.is_object())
    ReadLit(lit, recipe);
  return true;
}

RecipeFile RecipeFileOf(const std::string& path) {
  const std::string name = std::filesystem::path(path).filename().string();
  if (path == STANDARD_INPUT)
    return {};
  const Descriptor file = OpenRegularFile(path);
  const std::unique_ptr<GChecksum, void (*)(GChecksum*)> sum(g_checksum_new(G_CHECKSUM_SHA256),
                                                             g_checksum_free);
  ReadPieces(file.Number(), ExitCode::BadInput, path, [&](std::string_view piece) {
    g_checksum_update(sum.get(), reinterpret_cast<const guchar*>(piece.data()),
                      static_cast<gssize>(piece.size()));
  });
  return {name, g_checksum_get_string(sum.get())};
}

std::optional<std::string> RecipeIn(const VImage& image) {
  const std::string_view xmp = BytesOf(image, VIPS_META_XMP_NAME);
  if (xmp.empty())
    return std::nullopt;
  const XmpPacket packet = Parsed(xmp);
  const XmpText text(xmp_string_new());
  if (packet == nullptr ||
      !xmp_get_property(packet.get(), NAMESPACE, PROPERTY, text.get(), nullptr))
    return std::nullopt;
  return xmp_string_cstr(text.get());
}

void PutRecipe(VImage& image, const std::string& json) {
  XmpPacket packet = Parsed(BytesOf(image, VIPS_META_XMP_NAME));
  if (packet == nullptr) // what stands there is no XMP
    packet.reset(xmp_new_empty());
  std::string whole;
  if (packet != nullptr && xmp_set_property(packet.get(), NAMESPACE, PROPERTY, json.c_str(), 0))
    whole = Serialized(packet);
  if (whole.empty())
    throw Failure(ExitCode::NoMemory, "the recipe: not enough memory for its XMP");
  image = image.copy();
  vips_image_set_blob_copy(image.get_image(), VIPS_META_XMP_NAME, whole.data(), whole.size());
}

std::string WithoutRecipe(std::string packet) {
  if (packet.find(NAMESPACE) == std::string::npos)
    return packet;
  const XmpPacket parsed = Parsed(packet);
  if (parsed == nullptr || !xmp_delete_property(parsed.get(), NAMESPACE, PROPERTY))
    return packet;
  return Serialized(parsed);
}

} // namespace limn
