// limn preview: the picture that the dialog shows.
#pragma once

#include "failure.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

struct PreviewOptions {
  std::string image;
  std::string output;
  std::string style;
  std::vector<std::string> settings;
  std::string area; // "X,Y,W,H", or empty
  std::vector<std::string> channels;
  uint64_t maxPixels = 0; // as for limn apply
  bool isUnlit = false;
  bool force = false;
};

// Writes the dialog's frame with the preview of the image in it. Throws Failure.
ExitCode WritePreview(const PreviewOptions& options);

} // namespace limn
