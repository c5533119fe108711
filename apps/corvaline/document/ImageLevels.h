// A picture with its halves, quarters and so on, so that it is made small quickly and well.
#pragma once

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

class ImageLevels {
public:
  ImageLevels() = default;
  // The image's pixels are bytes in memory, and stay its owner's. Throws vips::VError.
  explicit ImageLevels(const vips::VImage& image);

  bool isNull() const { return _levels.empty(); }

  // The whole picture at a size that is no larger than its own. Pixels are made when asked for.
  vips::VImage at(QSize size) const;
  // A part of it, in pixels of the picture, at a size that is no larger than the part's.
  vips::VImage part(const QRect& area, QSize size) const;

private:
  const vips::VImage& _levelFor(double shareX, double shareY) const;

  // Each half as large as the one before, rounded up, its pixels the means of four.
  std::vector<vips::VImage> _levels;
};

} // namespace editor
