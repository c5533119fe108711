// limn style: shows, packs and checks styles.
#pragma once

#include "failure.h"

#include <string>
#include <vector>

namespace limn {

enum class StyleForm { Readable, Json };

// Prints the style's settings. Throws Failure.
ExitCode ShowStyle(const std::string& name, StyleForm form);

enum class Overwrite { No, Yes };

// Writes the style file that the JSON file describes. Throws Failure.
ExitCode PackStyle(const std::string& jsonFile, const std::string& styleFile, Overwrite overwrite);

// Reads each style and says whether it is well. The highest code of all.
ExitCode CheckStyles(const std::vector<std::string>& names);

} // namespace limn
