// The recipes that limn apply writes into its outputs, and finds there again.
#pragma once

#include "apply_one.h"

namespace limn {

// What the recipes of all images have in common: mask, heights and channels, which are read through
// for their digests. Throws Failure(BadInput).
Recipe CommonRecipe(const ApplyPlan& plan);

// One image's, lit with so many bits a channel. Of a plan that writes no recipes it is none.
class ImageRecipe {
public:
  ImageRecipe(const ApplyPlan& plan, const ApplyTools& tools, size_t index, int bits);

  // Whether the output is there, younger than the input, and was made with this very recipe.
  bool IsIn(const std::string& target) const;
  // Puts it into the output's metadata, with the input's digest. Adds a notice where the format
  // holds none. Throws Failure.
  void PutInto(vips::VImage& metadata, const OutputName& output,
               std::vector<std::string>& notices) const;

private:
  const std::string& _input;
  bool _isWanted;
  Recipe _recipe;
};

} // namespace limn
