// How the lights look on the picture: smooth, and to be seen on any.
#include "Canvas.h"
#include "LightOverlay.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QTransform>

#include <cmath>

namespace editor {
namespace {

constexpr double CENTER_RADIUS = 7, GRIP_RADIUS = 4.5;
constexpr QColor LAMP_GROUND(30, 30, 34, 190);
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

// A line with a dark halo.
void DrawOutline(QPainter& painter, const QPainterPath& path) {
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(HALO, HALO_WIDTH, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
  painter.setPen(QPen(LINE, LINE_WIDTH, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(path);
}

// A dot of the light's colour in a white ring; hollow when the light is off.
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

// From where the light comes to where it goes, with a head that stops short of the end.
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

} // namespace

void LightOverlay::paint(QPainter& painter) {
  if (!_isLive())
    return;
  painter.setRenderHint(QPainter::Antialiasing);
  for (int i = 0; i < _model.count(); ++i)
    if (i != _model.selected())
      _paintLight(painter, i, false);
  if (_model.selected() >= 0)
    _paintLight(painter, _model.selected(), true);
  _paintLamp(painter);
}

void LightOverlay::_paintLight(QPainter& painter, int index, bool isSelected) const {
  const LM_light_figure figure = _model.figure(index);
  const QPointF center = _toView(figure.center);
  const double scale = _scale();
  const auto vector = [&](LM_vector2f length) { return QPointF(length.x, length.y) * scale; };
  if (isSelected) {
    if (figure.type == LM_LIGHT_OMNI) {
      QPainterPath circle;
      circle.addEllipse(center, figure.radius * scale, figure.radius * scale);
      DrawOutline(painter, circle);
    }
    if (figure.type == LM_LIGHT_SPOT) {
      const QPointF first = vector(figure.handle1);
      const QPointF second = vector(figure.handle2);
      QPainterPath circle;
      circle.addEllipse(QPointF(0, 0), 1, 1);
      DrawOutline(painter,
                  QTransform(first.x(), first.y(), second.x(), second.y(), center.x(), center.y())
                      .map(circle));
    }
    if (figure.type != LM_LIGHT_OMNI)
      DrawOutline(painter, ArrowPath(center + vector(figure.handle1), center));
    const LM_grab_handles grab = LM_GrabHandlesOf(figure, LM_handle_grid::Fractions);
    for (int i = 0; i < grab.count; ++i)
      DrawGrip(painter, _toView(grab.handles[i].place),
               _under.light == index && _under.code == grab.handles[i].code);
  }
  DrawCenter(painter, center, _model.shownColor(index), _model.light(index).on == 1, isSelected,
             _under.light == index && _under.code == LM_HANDLE_CENTER);
}

// A bulb with its rays, to be dragged from.
void LightOverlay::_paintLamp(QPainter& painter) const {
  const QRectF box = lamp();
  const QPointF middle = box.center();
  painter.setPen(QPen(QColor(255, 255, 255, _isOverLamp ? 230 : 110), 1.2));
  painter.setBrush(LAMP_GROUND);
  painter.drawRoundedRect(box, 8, 8);
  painter.setPen(QPen(QColor(255, 255, 255, 235), 1.7, Qt::SolidLine, Qt::RoundCap));
  painter.setBrush(QColor(255, 214, 120));
  painter.drawEllipse(middle, 5, 5);
  for (int ray = 0; ray < 8; ++ray) {
    const QPointF way = QTransform().rotate(ray * 45).map(QPointF(1, 0));
    painter.drawLine(middle + way * 8.5, middle + way * 11.5);
  }
}

} // namespace editor
