#include "LightOverlay.h"

#include "Canvas.h"

#include <QCoreApplication>
#include <QStatusTipEvent>

#include <cmath>

namespace editor {
namespace {

constexpr double REACH = 10;  // of a handle, in the viewport
constexpr double SLACK = 2.5; // that a hand moves while it clicks
constexpr float FAR = 10;     // lengths that an arrow key moves with Shift
constexpr double LAMP = 34, LAMP_MARGIN = 12;

LM_drag_constraint ConstraintOf(Qt::KeyboardModifiers keys) {
  return keys.testFlag(Qt::ShiftModifier)     ? LM_drag_constraint::KeepDirection
         : keys.testFlag(Qt::ControlModifier) ? LM_drag_constraint::KeepLength
                                              : LM_drag_constraint::None;
}

// The cursor that points along a way.
Qt::CursorShape CursorAlong(QPointF way) {
  const double angle = std::atan2(way.y(), way.x()) / M_PI * 4; // eighths of a turn
  constexpr Qt::CursorShape SHAPES[] = {Qt::SizeHorCursor, Qt::SizeFDiagCursor, Qt::SizeVerCursor,
                                        Qt::SizeBDiagCursor};
  return SHAPES[(static_cast<int>(std::lround(angle)) + 8) % 4];
}

} // namespace

LightOverlay::LightOverlay(LightsModel& model, Canvas& canvas)
    : QObject(&canvas), _model(model), _canvas(canvas) {
  connect(&model, &LightsModel::changed, this, [this] {
    // Undoing, or another style, takes the light out of the hand.
    if (_isDragging && _drag.hasMoved && !_model.isTrying())
      _endDrag();
    _canvas.viewport()->update();
  });
}

QPointF LightOverlay::_toView(LM_vector2f place) const {
  return _canvas.toViewport(_model.toImage(place));
}

LM_vector2f LightOverlay::_toPlace(QPointF point) const {
  return _model.toPlace(_canvas.toImage(point));
}

double LightOverlay::_scale() const {
  return (_canvas.toViewport({1, 0}) - _canvas.toViewport({0, 0})).x() * _model.pixelsPerLength();
}

// Lights are handled with the hand; the other tools select.
bool LightOverlay::_isLive() const {
  return _canvas.tool() == Tool::Hand && !_canvas.showsOriginal() && _canvas.hasImage();
}

LM_light_hit LightOverlay::_hit(QPointF point) const {
  const std::vector<LM_light_figure> figures = _model.figures();
  return LM_NearestHandle(figures.data(), _model.count(), _model.selected(), _toPlace(point),
                          static_cast<float>(REACH / _scale()));
}

QPointF LightOverlay::placeOf(int light, int code) const {
  const LM_light_figure figure = _model.figure(light);
  const LM_grab_handles grab = LM_GrabHandlesOf(figure, LM_handle_grid::Fractions);
  for (int i = 0; i < grab.count; ++i)
    if (grab.handles[i].code == code)
      return _toView(grab.handles[i].place);
  return _toView(figure.center);
}

QRectF LightOverlay::lamp() const {
  return {LAMP_MARGIN, LAMP_MARGIN, LAMP, LAMP};
}

std::optional<Qt::CursorShape> LightOverlay::cursor() const {
  if (!_isLive())
    return std::nullopt;
  if (_isDragging)
    return _drag.code == LM_HANDLE_CENTER ? Qt::ClosedHandCursor : Qt::CrossCursor;
  if (_isOverLamp)
    return Qt::PointingHandCursor;
  if (_under.light < 0 || _under.light >= _model.count())
    return std::nullopt;
  if (_under.code == LM_HANDLE_CENTER)
    return Qt::SizeAllCursor;
  return CursorAlong(placeOf(_under.light, _under.code) - placeOf(_under.light, LM_HANDLE_CENTER));
}

bool LightOverlay::handle(QEvent& event) {
  if (!_isLive())
    return false;
  switch (event.type()) {
  case QEvent::MouseButtonPress:
    return _press(static_cast<QMouseEvent&>(event));
  case QEvent::MouseMove:
    return _move(static_cast<QMouseEvent&>(event));
  case QEvent::MouseButtonRelease:
    return _release();
  case QEvent::MouseButtonDblClick:
    return static_cast<QMouseEvent&>(event).button() == Qt::LeftButton &&
           _addAt(static_cast<QMouseEvent&>(event).position());
  case QEvent::Leave:
    _under = {-1, LM_HANDLE_NONE};
    _isOverLamp = false;
    _showHint();
    return false;
  case QEvent::KeyPress:
  case QEvent::KeyRelease:
    return _key(static_cast<QKeyEvent&>(event));
  default:
    return false;
  }
}

bool LightOverlay::_press(const QMouseEvent& event) {
  if (_isDragging)
    return true;
  if (event.button() != Qt::LeftButton)
    return false;
  const QPointF point = event.position();
  if (lamp().contains(point)) {
    _beginDrag(-1, LM_HANDLE_CENTER, point, tr("Add Light"));
    return true;
  }
  const LM_light_hit hit = _hit(point);
  if (hit.light < 0)
    return false;
  _canvas.setFocus(Qt::MouseFocusReason);
  _model.select(hit.light);
  _beginDrag(hit.light, hit.code, point,
             hit.code == LM_HANDLE_CENTER ? tr("Move Light") : tr("Shape Light"));
  return true;
}

void LightOverlay::_beginDrag(int light, int code, QPointF point, const QString& step) {
  _isDragging = true;
  _drag = {light, code, {}, point, {}, false, light < 0, step};
  if (light >= 0) {
    _drag.start = _model.figure(light);
    _drag.grip = placeOf(light, code) - point;
  }
  _showHint();
}

bool LightOverlay::_move(const QMouseEvent& event) {
  _last = event.position();
  if (!_isDragging) {
    _hover(_last);
    return _under.light >= 0 || _isOverLamp;
  }
  const QPointF way = _last - _drag.pressed;
  if (!_drag.hasMoved && std::hypot(way.x(), way.y()) < SLACK)
    return true;
  const bool begins = !_drag.hasMoved;
  const bool copies = _drag.code == LM_HANDLE_CENTER && event.modifiers().testFlag(Qt::AltModifier);
  if (begins && (_drag.light < 0 || copies)) {
    const LM_style_light light =
        _drag.light < 0 ? NewLightAt(_toPlace(_last)) : _model.light(_drag.light);
    if (!_model.tryAdding(light)) {
      _endDrag();
      return true;
    }
    if (copies)
      _drag.step = tr("Copy Light");
    _drag.isNew = true;
    _drag.light = _model.selected();
    _drag.start = _model.figure(_drag.light);
  }
  _drag.hasMoved = true;
  _dragTo(_last, event.modifiers());
  return true;
}

// Worked out from how the light was when the drag began, so that nothing adds up.
void LightOverlay::_dragTo(QPointF point, Qt::KeyboardModifiers keys) {
  const LM_vector2f place = _toPlace(point + _drag.grip);
  LM_light_figure figure = _drag.start;
  if (_drag.code == LM_HANDLE_CENTER)
    figure.center = place;
  else
    figure = LM_ReshapeLight(_drag.start, _drag.code, place, ConstraintOf(keys),
                             LM_handle_grid::Fractions);
  const int light = _drag.light;
  _model.tryEdit([&](LM_style& style) { SetFigure(style.lights[light], figure); });
}

bool LightOverlay::_release() {
  if (!_isDragging)
    return false;
  const Drag drag = _drag;
  _endDrag();
  if (!drag.hasMoved && drag.light < 0)
    _addAt(QRectF(_canvas.viewport()->rect()).center());
  else if (drag.hasMoved && drag.isNew && lamp().contains(_last))
    _model.giveUp();
  else if (drag.hasMoved)
    _model.keep(drag.step);
  _hover(_last);
  return true;
}

void LightOverlay::_endDrag() {
  _isDragging = false;
  _drag = {};
  _showHint();
}

bool LightOverlay::_addAt(QPointF point) {
  if (lamp().contains(point) || _hit(point).light >= 0)
    return true;
  _model.add(_toPlace(point));
  return true;
}

void LightOverlay::_hover(QPointF point) {
  const LM_light_hit under = _hit(point);
  const bool overLamp = lamp().contains(point);
  if (under.light == _under.light && under.code == _under.code && overLamp == _isOverLamp)
    return;
  _under = under;
  _isOverLamp = overLamp;
  _showHint();
  _canvas.viewport()->update();
}

void LightOverlay::_showHint() const {
  QString hint;
  if (_isOverLamp || (_isDragging && _drag.light < 0))
    hint = tr("Drag a new light onto the picture");
  else if (_isDragging || _under.light >= 0) {
    const bool isCenter = (_isDragging ? _drag.code : _under.code) == LM_HANDLE_CENTER;
    hint = isCenter ? tr("Drag to move the light; with Alt a copy of it")
                    : tr("Drag to shape the light; Shift keeps the direction, Ctrl the length");
  }
  QStatusTipEvent tip(hint);
  QCoreApplication::sendEvent(&_canvas, &tip);
}

bool LightOverlay::_choose(int step) {
  const int next = _model.selected() + step;
  if (next < 0 || next >= _model.count())
    return false; // on to the next control
  _model.select(next);
  return true;
}

bool LightOverlay::_key(const QKeyEvent& event) {
  const bool isModifier = event.key() == Qt::Key_Shift || event.key() == Qt::Key_Control;
  if (_isDragging && isModifier && _drag.hasMoved) {
    Qt::KeyboardModifiers keys = event.modifiers();
    keys.setFlag(event.key() == Qt::Key_Shift ? Qt::ShiftModifier : Qt::ControlModifier,
                 event.type() == QEvent::KeyPress);
    _dragTo(_last, keys);
    return true;
  }
  if (event.type() != QEvent::KeyPress || _model.selected() < 0)
    return false;
  const auto nudge = [&](float x, float y) {
    const float length = event.modifiers().testFlag(Qt::ShiftModifier) ? FAR : 1;
    _model.changeSoon(
        [&](LM_style& style) {
          LM_vector2f& center = style.lights[_model.selected()].center;
          center = {center.x + x * length, center.y + y * length};
        },
        tr("Move Light"));
    return true;
  };
  if (event.modifiers().testFlag(Qt::ControlModifier) ||
      event.modifiers().testFlag(Qt::AltModifier))
    return false;
  switch (event.key()) {
  case Qt::Key_Escape:
    if (!_isDragging)
      return false;
    _endDrag();
    _model.giveUp();
    return true;
  case Qt::Key_Tab:
    return _choose(1);
  case Qt::Key_Backtab:
    return _choose(-1);
  case Qt::Key_Delete:
  case Qt::Key_Backspace:
    _model.remove();
    return true;
  case Qt::Key_Left:
    return nudge(-1, 0);
  case Qt::Key_Right:
    return nudge(1, 0);
  case Qt::Key_Up:
    return nudge(0, -1);
  case Qt::Key_Down:
    return nudge(0, 1);
  default:
    return false;
  }
}

} // namespace editor
