// The heights of a photograph's relief, as an image that is lit with it.
#pragma once

#include "image_file.h"

#include "LM_height_source.h"

#include <memory>
#include <string>
#include <vector>
#include <vips/vips8>

namespace limn {

// A photograph whose heights are wanted.
struct HeightSubject {
  std::string path;
  int width = 0; // upright
  int height = 0;
  // What its channels are followed by, and what a source of kind File has been read into. Of the
  // photograph's shape.
  const std::vector<GreyImage>& added;
  const GreyImage* file = nullptr;
  // The photograph's pixels where they are in memory, and no file has them any more; else null.
  const vips::VImage* planes = nullptr;
};

// The heights, of LM_PreparedSize. source: resolved, of luminance, a channel or a file. Throws
// Failure or vips::VError. The caller holds Complaints.
LM_height_plane HeightPlane(const LM_height_source& source, const HeightSubject& subject);
// A plane as one band of 16 bits of that size, larger or smaller, which keeps the plane. Larger,
// its pixels are made when asked for. Throws vips::VError.
vips::VImage ShownHeights(std::shared_ptr<const LM_height_plane> plane, int width, int height);
// Both: the heights in the photograph's size, with no more than the plane in memory.
vips::VImage HeightImage(const LM_height_source& source, const HeightSubject& subject);

// The grey image, of the subject's shape, in its size, made likewise.
vips::VImage ScaledImage(const GreyImage& grey, const HeightSubject& subject);

// Throws Failure(BadInput) when the image cannot be made one of that size: when it does not have
// its shape, within one percent. file: what has that size, for the message.
void CheckShape(const GreyImage& grey, int width, int height, const std::string& file);

// Makes the image one of that size, in 16 bits if it is not. Throws as CheckShape.
void ScaleGrey(GreyImage& grey, int width, int height, const std::string& file);

} // namespace limn
