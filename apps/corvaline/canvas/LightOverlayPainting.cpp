// How the lights look on the picture.
#include "Canvas.h"
#include "LightDrawing.h"
#include "LightOverlay.h"

#include <QPainterPath>
#include <QTransform>

namespace editor {
namespace {

constexpr QColor LAMP_GROUND(30, 30, 34, 190);

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
