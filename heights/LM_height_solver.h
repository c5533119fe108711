// A surface found from how it rises.
#pragma once

#include <cstddef>
#include <vector>

// How much a surface rises per pixel, in pixels: to the right and downwards; width a row.
struct LM_slopes {
  int width;
  int height;
  std::vector<float> across;
  std::vector<float> down;

  LM_slopes(int planeWidth, int planeHeight)
      : width(planeWidth), height(planeHeight),
        across(static_cast<size_t>(planeWidth) * static_cast<size_t>(planeHeight)),
        down(across.size()) {}
};

// The heights, in pixels, of mean 0, whose rises differ from these by the least squares. The same
// on every machine. Throws std::bad_alloc; takes some 32 bytes a pixel.
std::vector<double> LM_SurfaceOfSlopes(const LM_slopes& slopes);
