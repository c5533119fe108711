// Which device pixels a figure covers. Private to this layer.
#pragma once

#include "PortState.h"

#include <QRegion>
#include <vector>

// Pixels whose middles lie in a rectangle with corners of that diameter; one of the rectangle's own
// size, which is the most, makes an oval. Only rows within `rows` (a rectangle whose width does not
// count) are made.
QRegion RoundRectPixels(const QRect& rect, int ovalWidth, int ovalHeight, const QRect& rows);
// Disjoint rectangles under a line of that thickness: per column of a flat line, or row of a steep
// one, a run as long as the pen. Both ends have the whole pen. Only what lies near `visible`.
std::vector<QRect> LinePixels(QPoint from, QPoint to, int thickness, const QRect& visible);
// Pixels whose middles are surrounded an odd number of times.
QRegion SurroundedPixels(const std::vector<RecordedLine>& lines);
