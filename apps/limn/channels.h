// limn channels: what an image's channels are.
#pragma once

#include "failure.h"

#include <string>
#include <vector>

namespace limn {

// Prints the channels that `limn apply` would find in the image, with the numbers by which a style
// names its relief channel. added: as for `limn apply --channel`. Throws Failure.
ExitCode PrintChannels(const std::string& image, const std::vector<std::string>& added);

} // namespace limn
