// The heights of a photograph's relief, as an image that is lit with it.
#pragma once

#include "image_file.h"

#include "LM_height_source.h"

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
};

// One band of 16 bits, of the photograph's size. Its pixels are made when asked for, from a plane
// that is made here: of LM_PreparedSize, so that no more than that is in memory. source: resolved,
// of luminance, a channel or a file. Throws Failure or vips::VError. The caller holds Complaints.
vips::VImage HeightImage(const LM_height_source& source, const HeightSubject& subject);

// The grey image, of the subject's shape, in its size, made likewise.
vips::VImage ScaledImage(const GreyImage& grey, const HeightSubject& subject);

// Throws Failure(BadInput) when the image cannot be made one of that size: when it does not have
// its shape, within one percent. file: what has that size, for the message.
void CheckShape(const GreyImage& grey, int width, int height, const std::string& file);

// Makes the image one of that size, in 16 bits if it is not. Throws as CheckShape.
void ScaleGrey(GreyImage& grey, int width, int height, const std::string& file);

} // namespace limn
