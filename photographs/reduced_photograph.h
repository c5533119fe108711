// A photograph made small while it is read: all that a thumbnail needs of it.
#pragma once

#include "image_file.h"

#include "LM_height_source.h"

#include <cstdint>
#include <string>
#include <vector>
#include <vips/vips8>

namespace limn {

// numPlanes bytes a pixel, the first three red, green and blue, then alpha and further channels;
// width * numPlanes a row, no padding.
struct ReducedPhotograph {
  int fullWidth = 0; // of the photograph itself, upright
  int fullHeight = 0;
  int width = 0;
  int height = 0;
  int numPlanes = 0;
  std::vector<uint8_t> pixels;
  std::vector<uint8_t> mask; // how much of the light each pixel takes, 0 … 255; empty: all of it
  // Where heights come from, and these where they are none of the planes: 16 bits a pixel.
  LM_height_source relief;
  std::vector<uint16_t> heights;
};

// A photograph reduced, and what goes with it.
struct ReadReduction {
  ReducedPhotograph photograph;
  vips::VImage metadata;            // one pixel with the photograph's colour profile, if any
  std::vector<std::string> notices; // as Photograph's
};

// The size at which neither side is longer than `longestSide`; never larger than the full one.
void FitReduction(ReducedPhotograph& photograph, int longestSide);

// Reads a photograph as ReadPhotograph does, with its longer side reduced to `longestSide`. A JPEG
// is decoded no larger than needed. channels: grey images of the photograph's shape, which become
// further planes. Throws Failure.
ReadReduction ReadReducedPhotograph(const std::string& path, const std::vector<GreyImage>& channels,
                                    int longestSide);

} // namespace limn
