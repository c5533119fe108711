// A picture with its halves, quarters and so on, so that it can be drawn small quickly and well.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRectF>

#include <vector>

namespace editor {

// Copies share their pixels until one of them changes.
class ImageLevels {
public:
  ImageLevels() = default;
  explicit ImageLevels(const QImage& image);

  bool isNull() const { return _levels.empty(); }
  QSize size() const { return isNull() ? QSize() : _levels.front().size(); }

  // Replaces a part of the picture, its top-left at `place`.
  void replace(QPoint place, const QImage& part);

  // Draws the part `source` (in pixels of the picture) into `target`. pixelSize: device pixels that
  // one pixel of the picture covers; above 1 pixels show as squares.
  void draw(QPainter& painter, const QRectF& target, const QRectF& source, double pixelSize) const;

private:
  std::vector<QImage> _levels; // each half as large as the one before, rounded up; 32-bit colour
};

} // namespace editor
