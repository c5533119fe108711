// Lights as they are drawn on a picture: smooth, and to be seen on any.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>

namespace editor {

constexpr double CENTER_RADIUS = 7, GRIP_RADIUS = 4.5;

// A line with a dark halo.
void DrawOutline(QPainter& painter, const QPainterPath& path);
// A dot of the light's colour in a white ring; hollow when the light is off.
void DrawCenter(QPainter& painter, QPointF place, const QColor& color, bool isOn, bool isSelected,
                bool isHot);
void DrawGrip(QPainter& painter, QPointF place, bool isHot);
// From where the light comes to where it goes, with a head that stops short of the end.
QPainterPath ArrowPath(QPointF from, QPointF to);

} // namespace editor
