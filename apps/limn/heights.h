// limn heights: the heights of a photograph's relief as a picture.
#pragma once

#include "failure.h"
#include "relief_options.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

struct HeightsOptions {
  std::string image;
  std::string output;
  std::string preview; // lit, to be looked at; or empty
  ReliefOptions relief;
  std::vector<std::string> channels;
  uint64_t maxPixels = 0;        // as for limn apply
  bool isWritingNormals = false; // of the heights, green up
  bool force = false;
};

// Writes the heights that limn apply would light with. Throws Failure.
ExitCode WriteHeights(const HeightsOptions& options);

} // namespace limn
