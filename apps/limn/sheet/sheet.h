// limn sheet: all styles on one page, each on the user's photograph.
#pragma once

#include "failure.h"
#include "relief_options.h"

#include <cstdint>
#include <string>
#include <vector>

namespace limn {

struct SheetOptions {
  std::string image;
  std::string output;
  std::vector<std::string> styles; // none: all of the library
  std::vector<std::string> channels;
  ReliefOptions relief;
  bool isDetailed = false; // a piece of the photograph, pixel for pixel, in each frame
  std::string detailAt; // "X,Y", around which that is, in the photograph's pixels; else its middle
  int columns = 0;      // 0: as many as make a page of a photograph's shape
  int size = 240;       // the longer side of a picture, in pixels
  uint64_t maxPixels = 0; // as for limn apply
  bool force = false;
  bool quiet = false;
  bool json = false;
};

// Writes a contact sheet: the photograph as it is, then under each style, as limn apply lights it.
// Throws Failure.
ExitCode WriteSheet(const SheetOptions& options);

} // namespace limn
