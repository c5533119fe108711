#include "LM_gallery.h"

#include <algorithm>

#include "LM_style_json.h"
#include "LimnResources.h"
#include "MacStrings.h"

namespace {

constexpr std::string_view FOLDER = "styles/";
constexpr std::string_view ENDING = ".json";
constexpr std::string_view DEFAULT_NAME = "Default";

// The style's name in a carried file's path, or nothing when the file is no style.
std::string_view NameIn(std::string_view path) {
  if (!path.starts_with(FOLDER) || !path.ends_with(ENDING))
    return {};
  path.remove_prefix(FOLDER.size());
  path.remove_suffix(ENDING.size());
  return path;
}

} // namespace

std::vector<std::string> LM_BundledStyleNames() {
  std::vector<std::string> names;
  for (size_t i = 0; i < LM_RESOURCES_COUNT; ++i) {
    const std::string_view name = NameIn(LM_RESOURCES[i].path);
    if (!name.empty())
      names.emplace_back(name);
  }
  std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
    if ((a == DEFAULT_NAME) != (b == DEFAULT_NAME))
      return a == DEFAULT_NAME;
    return TB_CompareNames(a, b) < 0;
  });
  return names;
}

bool LM_BundledStyle(std::string_view name, LM_style& style) {
  for (size_t i = 0; i < LM_RESOURCES_COUNT; ++i) {
    const TB_EmbeddedFile& file = LM_RESOURCES[i];
    const std::string_view candidate = NameIn(file.path);
    if (candidate.empty() || EqualString(TB_PString(candidate), TB_PString(name), 0, 0) == 0)
      continue;
    std::string why;
    return LM_StyleFromJson({reinterpret_cast<const char*>(file.bytes), file.size}, style, why);
  }
  return false;
}
