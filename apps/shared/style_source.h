// Where the command gets styles from: files, in either form, and names.
#pragma once

#include "LM_height_source.h"
#include "LM_style.h"
#include "LM_style_library.h"

#include <string>
#include <vector>

namespace limn {

// A style, where its heights come from if it says so, and what had to be said about it, for
// instance that its file is cut short after some whole lights; `warning` is empty when there is
// nothing.
struct NamedStyle {
  LM_style style;
  std::string warning;
  LM_height_source relief = {};
};

// Reads a style file or its JSON form, told apart by their content, or the recipe of a lit picture,
// by its extension. Throws Failure(BadInput).
NamedStyle ReadStyleFile(const std::string& path);

// The user's style library, for this process. trouble: why there is none, or which bundled styles
// could not be added to it; else empty.
struct StyleLibrary {
  bool isThere;
  std::string trouble;
};

// Sets the library up on the first call, which fills a new user's with the bundled styles.
const StyleLibrary& UseStyleLibrary();

// All styles of the library, those that cannot be read too; without a library the bundled ones.
std::vector<LM_listed_style> AllStyles();

// What to call a style that is named so: the file's name without folder and ".json".
std::string LabelOf(const std::string& name);

// name: a style as JSON, a file, or the name of a style in the user's library or among the bundled
// ones; the first that exists, in this order. An empty name means the default style. Without a
// library there are still the bundled ones. settings: "KEY=VALUE" each, which change it. Throws
// Failure(BadInput), of a setting Failure(WrongUsage).
NamedStyle FindStyle(const std::string& name, const std::vector<std::string>& settings = {});

} // namespace limn
