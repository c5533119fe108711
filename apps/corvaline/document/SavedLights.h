// Lights that come back with their picture: from the file beside it, or from its own metadata.
#pragma once

#include "ImageFiles.h"

#include "recipe.h"

namespace editor {

// The file that Save Recipe writes for a picture: NAME.jpg.limn.json beside NAME.jpg. A picture of
// the same name in another format has another one.
QString RecipePathOf(const QString& picture);
// Where its mask lies, if one was painted.
QString MaskPathOf(const QString& recipePath);

// The original that the recipe names, lit by it, to be saved as `picture`. folder: where its files
// lie, under names that are nothing more; without one they are whole paths. Throws limn::Failure
// when the original is not there, is another file than the one that was lit, or cannot be read;
// what else is missing is told in the lights.
OpenedImage Relit(const QString& picture, const limn::Recipe& recipe,
                  const std::optional<QString>& folder);

// Opens a picture: with its lights, over the original, where a recipe is beside it or in it (the
// younger one first) and the original is there too; else as it is. Throws limn::Failure.
OpenedImage OpenPicture(const QString& path);

} // namespace editor
