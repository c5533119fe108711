// limn channels: what an image's channels are.
#pragma once

#include "failure.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

// Prints the channels that `limn apply` would find in the image, with the numbers by which a style
// names its relief channel. added, maxPixels: as for `limn apply`. Throws Failure.
ExitCode PrintChannels(const std::string& image, const std::vector<std::string>& added,
                       uint64_t maxPixels);

} // namespace limn
