// The recipes that limn apply writes into its outputs, and finds there again.
#pragma once

#include "apply_one.h"

namespace limn {

// What the recipes of all images have in common: mask, heights and channels, which are read through
// for their digests. Throws Failure(BadInput).
Recipe CommonRecipe(const ApplyPlan& plan);

// One image's, lit with so many bits a channel.
Recipe RecipeOf(const ApplyPlan& plan, const ApplyTools& tools, const ImagePair& pair, int bits);

// Whether the output is there, younger than the input, and was made with this very recipe.
bool IsMadeWith(const Recipe& recipe, const ImagePair& pair);
// Puts the recipe, with the input's digest, into the metadata that go to the output. Adds a notice
// where the format holds none. Throws Failure.
void AddRecipe(Recipe recipe, const ImagePair& pair, OpenedPhotograph& opened);

} // namespace limn
