// The lights on the picture: their handles, and the mouse and keys that move them.
#pragma once

#include "LM_handles.h"
#include "LightsModel.h"

#include <QMouseEvent>

#include <optional>

namespace editor {

class Canvas;

// A light is dragged by its centre and shaped by its handles, at fractions of a pixel. While the
// mouse is down it is only tried; letting go keeps it as one step, Esc gives it up. Shift keeps a
// handle's direction, Ctrl its length, and Alt drags a copy. New lights are dragged from the lamp
// in the corner, or made by a double click.
class LightOverlay : public QObject {
  Q_OBJECT

public:
  LightOverlay(LightsModel& model, Canvas& canvas);

  // On the canvas's viewport.
  void paint(QPainter& painter);
  // Gets the mouse's events over the viewport and the keys of the canvas first. True: it is taken.
  bool handle(QEvent& event);
  // The mouse's cursor, where it is not the tool's.
  std::optional<Qt::CursorShape> cursor() const;

  // Where a handle of a light is shown.
  QPointF placeOf(int light, int code) const;
  QRectF lamp() const;

private:
  struct Drag {
    int light = -1; // -1: none, or one from the lamp that is not out yet
    int code = LM_HANDLE_NONE;
    LM_light_figure start = {};
    QPointF pressed; // in the viewport
    QPointF grip;    // from the mouse to the handle it holds
    bool hasMoved = false;
    bool isNew = false; // and not yet kept
    QString step;
  };

  QPointF _toView(LM_vector2f place) const;
  LM_vector2f _toPlace(QPointF point) const;
  double _scale() const; // of the viewport, for a length of 1
  LM_light_hit _hit(QPointF point) const;
  bool _isLive() const;
  bool _press(const QMouseEvent& event);
  bool _move(const QMouseEvent& event);
  bool _release();
  bool _addAt(QPointF point);
  bool _key(const QKeyEvent& event);
  bool _choose(int step);
  void _beginDrag(int light, int code, QPointF point, const QString& step);
  void _dragTo(QPointF point, Qt::KeyboardModifiers keys);
  void _endDrag();
  void _hover(QPointF point);
  void _showHint() const;
  void _paintLight(QPainter& painter, int index, bool isSelected) const;
  void _paintLamp(QPainter& painter) const;

  LightsModel& _model;
  Canvas& _canvas;
  Drag _drag;
  bool _isDragging = false;
  LM_light_hit _under = {-1, LM_HANDLE_NONE};
  bool _isOverLamp = false;
  QPointF _last;
};

} // namespace editor
