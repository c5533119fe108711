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
  if (!plan.reliefs.empty() && plan.reliefs[0].kind == LM_height_kind::File)
    recipe.heights = RecipeFileOf(plan.reliefs[0].file);
  return recipe;
}

ImageRecipe::ImageRecipe(const ApplyPlan& plan, const ApplyTools& tools, size_t index, int bits)
    : _input(plan.pairs[index].input),
      _isWanted(plan.options.isWritingRecipe || plan.options.isUpdating), _recipe(tools.recipe) {
  _recipe.style = plan.styles[plan.pairs[index].style];
  _recipe.relief = plan.reliefs[plan.pairs[index].style];
  _recipe.bits = bits;
}

bool ImageRecipe::IsIn(const std::string& target) const {
  std::error_code error;
  const auto made = std::filesystem::last_write_time(target, error);
  if (error || made < std::filesystem::last_write_time(_input, error) || error)
    return false;
  try {
    Recipe there;
    std::string why;
    const std::optional<std::string> json = RecipeIn(OpenImage(target));
    if (!json || !RecipeFromJson(*json, there, why))
      return false;
    there.original = std::nullopt; // the input is known to be older
    return RecipeToJson(there) == RecipeToJson(_recipe);
  } catch (const Failure&) {
    return false; // what cannot be read is not what this makes
  }
}

void ImageRecipe::PutInto(vips::VImage& metadata, const OutputName& output,
                          std::vector<std::string>& notices) const {
  if (!_isWanted)
    return;
  if (!HoldsXmp(output)) {
    notices.push_back("its recipe is left out, for which " +
                      output.path.substr(output.path.rfind('.') + 1) + " files have no room");
    return;
  }
  Recipe whole = _recipe;
  if (_input != STANDARD_INPUT)
    whole.original = RecipeFileOf(_input);
  PutRecipe(metadata, RecipeToJson(whole));
}

} // namespace limn
