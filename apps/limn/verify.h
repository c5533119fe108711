// limn verify: whether a lit picture is what its recipe makes of the original.
#pragma once

#include "failure.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

struct VerifyOptions {
  std::string original, lit;
  std::string mask, heights; // files that the recipe names; or empty
  std::vector<std::string> channels;
  uint64_t maxPixels = 0; // 0: the usual limits
};

// Prints what it found: Done when they are equal, or as near as a format that loses detail allows,
// else BadInput. Throws Failure.
ExitCode Verify(const VerifyOptions& options);

} // namespace limn
