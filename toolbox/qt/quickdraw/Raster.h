// Which device pixels a figure covers. Private to this layer.
#pragma once

#include "PortState.h"

#include <QRegion>
#include <vector>

// Pixels whose middles lie in the oval that touches the rectangle's sides. Only rows within `rows`
// (a rectangle whose width does not count) are made.
QRegion OvalPixels(const QRect& oval, const QRect& rows);
// The same for a rectangle with corners of that diameter, at most the rectangle's own size.
QRegion RoundRectPixels(const QRect& rect, int ovalWidth, int ovalHeight, const QRect& rows);
// Disjoint rectangles under a line of that thickness: per column of a flat line, or row of a steep
// one, a run as long as the pen. Both ends have the whole pen. Only what lies near `visible`.
std::vector<QRect> LinePixels(QPoint from, QPoint to, int thickness, const QRect& visible);
// What a pen of any size covers on its way along a line.
QRegion ThickLinePixels(QPoint from, QPoint to, int penWidth, int penHeight, const QRect& visible);
// Pixels whose middles are surrounded an odd number of times.
QRegion SurroundedPixels(const std::vector<RecordedLine>& lines);
