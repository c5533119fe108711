// A soft round brush that paints into a selection mask.
#pragma once

#include <QImage>
#include <QPointF>
#include <QRect>

namespace editor {

enum class BrushInk { Select, Deselect };

// diameter: in image pixels, 1 or more. Full within half of the radius, fading out to its edge.
struct Brush {
  int diameter = 120;
  BrushInk ink = BrushInk::Select;
};

// Draws a line from one point to the other, in image coordinates, into an 8-bit grey mask. Where
// strokes overlap the stronger one counts. Answers the part of the mask that may have changed.
QRect PaintStroke(QImage& mask, QPointF from, QPointF to, const Brush& brush);

} // namespace editor
