// How a picture was lit, as it travels with it: in its XMP, or as a JSON file beside it.
#pragma once

#include "LM_height_source.h"
#include "LM_style.h"
#include "limn.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <vips/vips8>

namespace limn {

// A file that took part: its name without folders, and the SHA-256 of its bytes in hexadecimal
// digits, or an empty one where they were a stream's.
struct RecipeFile {
  std::string name;
  std::string digest;
};

struct Recipe {
  LM_style style;
  LM_height_source relief; // resolved; of kind File, `heights` is that file
  std::optional<limn_area> area;
  int bits = 8;       // that a channel was lit in; 32 of floats
  bool isDeep = true; // heights kept more than 8 bits
  std::optional<RecipeFile> original, mask, heights;
  std::vector<RecipeFile> channels;
};

// One line of JSON: a style's JSON form, with a "lit" object for the rest, which readers of styles
// pass over.
std::string RecipeToJson(const Recipe& recipe);
// False, with `why`, when it is no style. A style without a "lit" object is a recipe too.
bool RecipeFromJson(std::string_view json, Recipe& recipe, std::string& why);

// Names the file and reads it through. Throws Failure(BadInput).
RecipeFile RecipeFileOf(const std::string& path);

// The recipe's JSON in an image's XMP, as it stands there.
std::optional<std::string> RecipeIn(const vips::VImage& image);
// The same of a file, in a process of its own where libvips has not been started in this one.
// Throws Failure, BadInput where there is none.
std::string ReadRecipe(const std::string& path);
// Puts it there; nothing else of the XMP changes but its layout. Throws Failure(NoMemory).
void PutRecipe(vips::VImage& image, const std::string& json);

} // namespace limn
