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
  int samples = 1; // how many pixels each way become one of a thumbnail, after they are lit
  int numPlanes = 0;
  std::vector<uint8_t> pixels;
  std::vector<uint8_t> mask; // how much of the light each pixel takes, 0 … 255; empty: all of it
  // Where heights come from, and these where they are none of the planes: 16 bits a pixel.
  LM_height_source relief;
  std::vector<uint16_t> heights;

  // Of thumbnails.
  int ShownWidth() const { return width / samples; }
  int ShownHeight() const { return height / samples; }
};

// A photograph reduced, and what goes with it.
struct ReadReduction {
  ReducedPhotograph photograph;
  vips::VImage metadata;            // one pixel with the photograph's colour profile, if any
  std::vector<std::string> notices; // as Photograph's
};

// A small picture of a relief is not what a relief of fewer, broader facets gives: steep ones that
// face the light and those that do not would even out before they are lit. So what is shown at up
// to this size is lit at twice as many pixels each way, where the photograph has them, and halved.
constexpr int MOST_HALVED = 512;
int SamplesEachWay(int shownWidth, int shownHeight, int fullWidth, int fullHeight);

// The size at which neither side of a thumbnail is longer than `longestSide`; never larger than the
// full one.
void FitReduction(ReducedPhotograph& photograph, int longestSide);

// Reads a photograph as ReadPhotograph does, reduced for thumbnails of that longer side. A JPEG is
// decoded no larger than needed. channels: grey images of the photograph's shape, which become
// further planes. Throws Failure.
ReadReduction ReadReducedPhotograph(const std::string& path, const std::vector<GreyImage>& channels,
                                    int longestSide);

} // namespace limn
