// A picture with its halves, quarters and so on, so that it is made small quickly and well.
#pragma once

#include "image_file.h"

#include <QRect>
#include <QSize>

#include <vector>
#include <vips/vips8>

namespace editor {

// Where an area of a picture lies once the picture has another size: at least a pixel there.
QRect Reduced(const QRect& area, QSize from, QSize to);

// The image at that size, each pixel the mean of those that it covers, or a little more. Pixels are
// made when asked for. Throws vips::VError.
vips::VImage Resized(const vips::VImage& image, QSize size);

// A photograph's half, quarter and so on, made of its rows while they come.
class ImageHalves {
public:
  // Makes what can be made of the rows of its pixels that are there by now. The same photograph
  // each time; no other pixels than those that are new are looked at. Throws vips::VError.
  void grow(const limn::Photograph& photograph);

private:
  friend class ImageLevels;
  struct Half {
    vips::VImage image;
    int rows; // that are made
  };
  std::vector<Half> _halves; // each half as large as the one before, rounded up
};

class ImageLevels {
public:
  ImageLevels() = default;
  // The photograph's pixels stay its owner's. halves: what there is of them; the rest is made.
  // Throws vips::VError.
  explicit ImageLevels(const limn::Photograph& photograph, ImageHalves halves = {});

  bool isNull() const { return _levels.empty(); }

  // The whole picture at a size that is no larger than its own. Pixels are made when asked for.
  vips::VImage at(QSize size) const;
  // A part of it, in pixels of the picture, at a size that is no larger than the part's.
  vips::VImage part(const QRect& area, QSize size) const;

private:
  // The picture and its halves, whose pixels are the means of four.
  std::vector<vips::VImage> _levels;
};

} // namespace editor
