#include "image_recipe.h"

#include "image_output.h"
#include "image_source.h"

#include <filesystem>
#include <system_error>

namespace limn {

Recipe CommonRecipe(const ApplyPlan& plan) {
  Recipe recipe{};
  recipe.area = plan.area;
  recipe.isDeep = plan.options.depth != "8" && !plan.options.isThroughPlugin;
  if (!plan.options.mask.empty())
    recipe.mask = RecipeFileOf(plan.options.mask);
  for (const std::string& channel : plan.options.channels)
    recipe.channels.push_back(RecipeFileOf(channel));
  // Only --relief names a file, and it does so for all styles.
  if (plan.reliefs[0].kind == LM_height_kind::File)
    recipe.heights = RecipeFileOf(plan.reliefs[0].file);
  return recipe;
}

Recipe RecipeOf(const ApplyPlan& plan, const ApplyTools& tools, const ImagePair& pair, int bits) {
  Recipe recipe = tools.recipe;
  recipe.style = plan.styles[pair.style];
  recipe.relief = plan.reliefs[pair.style];
  recipe.bits = bits;
  return recipe;
}

bool IsMadeWith(const Recipe& recipe, const ImagePair& pair) {
  std::error_code error;
  const auto made = std::filesystem::last_write_time(pair.target, error);
  if (error || made < std::filesystem::last_write_time(pair.input, error) || error)
    return false;
  try {
    Recipe there;
    std::string why;
    const std::optional<std::string> json = RecipeIn(OpenImage(pair.target));
    if (!json || !RecipeFromJson(*json, there, why))
      return false;
    there.original = std::nullopt; // the input is known to be older
    return RecipeToJson(there) == RecipeToJson(recipe);
  } catch (const Failure&) {
    return false; // what cannot be read is not what this makes
  }
}

void AddRecipe(Recipe recipe, const ImagePair& pair, OpenedPhotograph& opened) {
  if (!HoldsXmp(pair.output)) {
    opened.notices.push_back("its recipe is left out, for which " +
                             pair.output.path.substr(pair.output.path.rfind('.') + 1) +
                             " files have no room");
    return;
  }
  if (pair.input != STANDARD_INPUT)
    recipe.original = RecipeFileOf(pair.input);
  PutRecipe(opened.metadata, RecipeToJson(recipe));
}

} // namespace limn
