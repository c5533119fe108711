// limn apply: lights photographs.
#pragma once

#include "failure.h"
#include "relief_options.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

struct ApplyOptions {
  std::vector<std::string> images;
  std::string listFile; // names more of them; "-" is standard input; or empty
  bool isListNul = false;
  std::string output;
  std::string format; // an extension with save options, or empty
  bool isRecursive = false;
  std::string shard; // "I/N", or empty
  bool isSkippingExisting = false;
  bool isWritingRecipe = false;
  bool isUpdating = false;         // leaves out what is up to date; writes recipes too
  std::vector<std::string> styles; // none: the default one
  std::vector<std::string> settings;
  std::string area; // "X,Y,W,H", or empty
  std::string mask;
  std::vector<std::string> channels;
  ReliefOptions relief;
  uint64_t maxPixels = 0;  // 0: the usual limits
  std::string depth;       // 8, 16 or float; empty: the image's own
  unsigned maxSeconds = 0; // for one image; 0: any number
  int jobs = 0;            // 0: as many as there are processors
  bool isThroughPlugin = false;
  bool isDryRun = false; // checks, and writes nothing
  bool force = false;
  bool quiet = false;
  bool json = false;
};

// Lights all images and reports each. The highest code of all images, or Cancelled when the user
// stopped it. Throws Failure for what is wrong with the whole.
ExitCode Apply(const ApplyOptions& options);

} // namespace limn
