#include "style_source.h"

#include "failure.h"
#include "image_output.h"
#include "recipe.h"
#include "small_file.h"

#include "LM_gallery.h"
#include "LM_mac_stream.h"
#include "LM_nearest_word.h"
#include "LM_style_bytes.h"
#include "LM_style_fields.h"
#include "LM_style_json.h"
#include "LM_style_library.h"
#include "LimnResources.h"
#include "MacResources.h"
#include "MacStrings.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

namespace limn {
namespace {

namespace fs = std::filesystem;

constexpr const char* DEFAULT_STYLE = "Default";

bool IsThere(const fs::path& path) {
  std::error_code error;
  return fs::exists(path, error) && !fs::is_directory(path, error);
}

// A sentence of the library's as one of the command's.
std::string WithoutStop(std::string sentence) {
  if (sentence.ends_with('.'))
    sentence.pop_back();
  return sentence;
}

StyleLibrary SetUpLibrary() {
  TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
  StyleLibrary library{false, ""};
  library.isThere = LM_UseStyleLibrary(library.trouble);
  library.trouble = WithoutStop(library.trouble);
  return library;
}

// Whether the library has a file of that name, readable as a style or not.
bool IsInLibrary(const std::string& name) {
  TB_Str255 file = TB_PString(name);
  return LM_style_istream::Exists(file.bytes) != 0;
}

// What a recipe has and a style has not, as options to be given; or nothing.
std::string FurtherOptions(const Recipe& recipe) {
  std::string options;
  if (recipe.area)
    options += " --area " + std::to_string(recipe.area->x) + "," + std::to_string(recipe.area->y) +
               "," + std::to_string(recipe.area->width) + "," + std::to_string(recipe.area->height);
  if (recipe.mask)
    options += " --mask " + recipe.mask->name;
  for (const RecipeFile& channel : recipe.channels)
    options += " --channel " + channel.name;
  if (recipe.heights)
    options += " --relief " + recipe.heights->name;
  return options;
}

// The style of a lit picture.
NamedStyle ReadLitPicture(const std::string& path) {
  Recipe recipe;
  NamedStyle named{};
  if (!RecipeFromJson(ReadRecipe(path), recipe, named.warning))
    throw Failure(ExitCode::BadInput, path + ": its recipe: " + named.warning);
  named.style = recipe.style;
  if (recipe.relief.kind != LM_height_kind::File)
    named.relief = recipe.relief;
  if (const std::string options = FurtherOptions(recipe); !options.empty())
    named.warning = "it was also lit with" + options;
  return named;
}

// Whether the name is a style itself.
bool IsJson(const std::string& name) {
  return name.starts_with('{');
}

std::string UnknownStyle(const std::string& name) {
  std::vector<std::string> names;
  for (const LM_listed_style& listed : AllStyles())
    names.push_back(listed.name);
  return name + ": there is no such style, nor a file of this name" + LM_DidYouMean(name, names);
}

NamedStyle ReadNamed(const std::string& name) {
  NamedStyle named{};
  if (IsJson(name)) {
    std::string why;
    if (!LM_StyleFromJson(name, named.style, why, &named.relief))
      throw Failure(ExitCode::BadInput, "the style's JSON: " + why);
    return named;
  }
  if (IsThere(name))
    return ReadStyleFile(name);
  const std::string wanted = name.empty() ? DEFAULT_STYLE : name;
  const bool hasLibrary = UseStyleLibrary().isThere;
  if (hasLibrary && LM_ReadLibraryStyle(wanted, named.style, named.warning))
    return named;
  if (hasLibrary && IsInLibrary(wanted))
    throw Failure(ExitCode::BadInput, wanted + ": " + WithoutStop(named.warning));
  NamedStyle bundled{};
  if (LM_BundledStyle(wanted, bundled.style))
    return bundled;
  if (name.find('/') != std::string::npos)
    return ReadStyleFile(name); // for its failure
  throw Failure(ExitCode::BadInput, UnknownStyle(wanted));
}

// Applies one "KEY=VALUE" setting.
void SetField(LM_style& style, const std::string& setting) {
  const size_t equals = setting.find('=');
  if (equals == std::string::npos)
    throw Failure(ExitCode::WrongUsage, "--set " + setting + ": is not of the form KEY=VALUE");
  std::string why;
  const std::string_view text = setting;
  if (!LM_SetStyleField(style, text.substr(0, equals), text.substr(equals + 1), why))
    throw Failure(ExitCode::WrongUsage, "--set " + setting + ": " + why);
}

} // namespace

const StyleLibrary& UseStyleLibrary() {
  static const StyleLibrary library = SetUpLibrary();
  return library;
}

std::vector<LM_listed_style> AllStyles() {
  if (UseStyleLibrary().isThere)
    return LM_ListStyles();
  std::vector<LM_listed_style> styles;
  for (const std::string& name : LM_BundledStyleNames()) {
    LM_listed_style listed{name, false, "", {}};
    listed.loads = LM_BundledStyle(name, listed.style);
    styles.push_back(std::move(listed));
  }
  return styles;
}

NamedStyle ReadStyleFile(const std::string& path) {
  if (IsName(path, Use::Reading))
    return ReadLitPicture(path);
  NamedStyle named{};
  const std::vector<uint8_t> bytes = ReadSmallFile(path, LM_LONGEST_STYLE_FILE);
  if (!LM_StyleFromBytes(bytes.data(), bytes.size(), named.style, named.warning, &named.relief))
    throw Failure(ExitCode::BadInput, path + ": " + named.warning);
  return named;
}

std::string LabelOf(const std::string& name) {
  const fs::path path(IsJson(name) ? "Style" : name.empty() ? DEFAULT_STYLE : name);
  return (path.extension() == ".json" ? path.stem() : path.filename()).string();
}

NamedStyle FindStyle(const std::string& name, const std::vector<std::string>& settings) {
  NamedStyle named = ReadNamed(name);
  if (named.warning.empty())
    named.warning = LM_BeyondSliders(named.style);
  for (const std::string& setting : settings)
    SetField(named.style, setting);
  return named;
}

} // namespace limn
