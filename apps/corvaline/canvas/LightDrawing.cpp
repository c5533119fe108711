#include "LightDrawing.h"

#include <cmath>

namespace editor {
namespace {

constexpr QColor HALO(0, 0, 0, 120);
constexpr QColor LINE(255, 255, 255, 235);
constexpr double HALO_WIDTH = 4, LINE_WIDTH = 1.6;
constexpr QColor HOT(255, 176, 64);

void DrawDot(QPainter& painter, QPointF place, double radius, const QBrush& fill,
             const QColor& ring, double ringWidth) {
  painter.setPen(QPen(HALO, ringWidth + 2.5));
  painter.setBrush(Qt::NoBrush);
  painter.drawEllipse(place, radius, radius);
  painter.setPen(QPen(ring, ringWidth));
  painter.setBrush(fill);
  painter.drawEllipse(place, radius, radius);
}

} // namespace

void DrawOutline(QPainter& painter, const QPainterPath& path) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(HALO, HALO_WIDTH, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
  painter.setPen(QPen(LINE, LINE_WIDTH, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
}

void DrawCenter(QPainter& painter, QPointF place, const QColor& color, bool isOn, bool isSelected,
                bool isHot) {
  const double radius = isSelected ? CENTER_RADIUS : CENTER_RADIUS - 1;
  const QBrush fill = isOn ? QBrush(color) : QBrush(QColor(0, 0, 0, 70));
  DrawDot(painter, place, radius, fill, isHot ? HOT : LINE, isSelected ? 2.4 : 1.6);
  if (isOn)
    return;
  const double reach = radius * std::sqrt(0.5);
  painter.drawLine(place + QPointF(-reach, reach), place + QPointF(reach, -reach));
}

void DrawGrip(QPainter& painter, QPointF place, bool isHot) {
  DrawDot(painter, place, GRIP_RADIUS, QColor(40, 40, 44, 200), isHot ? HOT : LINE, LINE_WIDTH);
}

QPainterPath ArrowPath(QPointF from, QPointF to) {
  QPainterPath path(from);
  const QPointF way = to - from;
  const double length = std::hypot(way.x(), way.y());
  constexpr double GAP = CENTER_RADIUS + 3, HEAD = 8;
  if (length < GAP + HEAD)
    return path;
  const QPointF along = way / length;
  const QPointF across(-along.y(), along.x());
  const QPointF tip = to - along * GAP;
  path.lineTo(tip);
  path.moveTo(tip - along * HEAD + across * HEAD * 0.6);
  path.lineTo(tip);
  path.lineTo(tip - along * HEAD - across * HEAD * 0.6);
  return path;
}

} // namespace editor
