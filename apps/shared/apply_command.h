// A run of the filter told as a command line.
#pragma once

#include "LM_height_source.h"
#include "LM_style.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

struct ApplyCommand {
  LM_style style;
  std::string image;
  std::string output; // as for limn apply, with its options
  std::string area;   // "X,Y,W,H", or empty
  std::string mask;   // or empty
  std::vector<std::string> channels;
  uint64_t maxPixels = 0; // 0: not named
  bool force = false;
  LM_height_source relief = {}; // not resolved
};

// The command, for a shell. It names the files as they are named here, and holds the whole style.
std::string CommandLine(const ApplyCommand& command);

// Whether a terminal would act on what stands in the line when it is printed or pasted, before a
// shell reads it: quotes are no help against a name with such characters.
bool HasControls(const std::string& line);

} // namespace limn
