// Inks, and putting them on a port's image. Private to this layer.
#pragma once

#include "PortState.h"

#include <QColor>
#include <QPainterPath>

// A colour and how it meets what is there. Exact until composed: alpha does not count.
struct Ink {
  QRgb color;
  short mode;
};

QRgb ExactColor(const RGBColor& color);
// The colour of text, of the window, in the palette in force; without a desktop black and white.
QRgb ThemeTextColor();
QRgb ThemeWindowColor();

// The colour that erasing leaves.
QRgb BackgroundInk(const PortState& state);
// What RGBForeColor means within a rectangle (in units): exact on a picture, themed elsewhere.
QRgb ForegroundInk(const PortState& state, const QRect& bounds);
// The pen's pattern and mode within a rectangle.
Ink PenInk(const PortState& state, const QRect& bounds);

// True for modes that must undo themselves, whose figures keep hard edges.
bool NeedsHardEdges(short mode);

// Puts ink on disjoint device rectangles, within the clip.
void ComposeRects(PortState& state, const QRect* begin, const QRect* end, const Ink& ink);
void ComposeRegion(PortState& state, const QRegion& device, const Ink& ink);
// Puts ink on a device path with smooth edges, within the clip.
void ComposePath(PortState& state, const QPainterPath& path, const Ink& ink);
