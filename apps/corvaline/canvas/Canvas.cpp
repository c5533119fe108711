#include "Canvas.h"

#include "LightOverlay.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace editor {

// What takes longer than this is told, in milliseconds.
static constexpr int PATIENCE = 250;
// From the line, within which it is dragged.
static constexpr double SPLIT_REACH = 6.0;
// Of a zoom's logarithm, within which it is a round one.
static constexpr double STEP_SLACK = 0.01;

Canvas::Canvas(EditorDocument& document, QWidget* parent)
    : QAbstractScrollArea(parent), _document(document), _lighting(document) {
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::StrongFocus);
  viewport()->setMouseTracking(true);
  viewport()->setAttribute(Qt::WA_OpaquePaintEvent); // so that no ground is filled below it
  connect(&document, &EditorDocument::opened, this, &Canvas::_showImage);
  connect(&document, &EditorDocument::shownChanged, this, &Canvas::_ask);
  connect(&document, &EditorDocument::selectionChanged, viewport(), qOverload<>(&QWidget::update));
  connect(&_lighting, &CanvasLighting::made, this, &Canvas::_take);
  _patience.setSingleShot(true);
  _patience.setInterval(PATIENCE);
  connect(&_patience, &QTimer::timeout, this, [this] { Q_EMIT waiting(true); });
}

void Canvas::_showImage() {
  _drag = Drag::None;
  _frame = _whole = {};
  _firstAsked = _asked.number + 1;
  zoomToFit();
  _updateCursor();
}

QRect Canvas::_seen(QSize size) const {
  const QSizeF full = _document.size();
  const QRectF view(viewport()->rect());
  const auto place = [&](QPointF viewportPoint) {
    const QPointF point = toImage(viewportPoint);
    return QPointF(point.x() * (size.width() / full.width()),
                   point.y() * (size.height() / full.height()));
  };
  return QRectF(place(view.topLeft()), place(view.bottomRight()))
      .toAlignedRect()
      .intersected(QRect(QPoint(0, 0), size));
}

// What is seen: below its own size the picture is reduced to whole pixels of the screen.
View Canvas::_view() const {
  const QSize full = _document.size();
  const double zoom = std::min(_zoom, 1.0);
  const auto reduced = [zoom](int side) {
    return std::max(1, static_cast<int>(std::lround(side * zoom)));
  };
  const QSize size(reduced(full.width()), reduced(full.height()));
  return {size, _seen(size)};
}

void Canvas::_ask() {
  viewport()->update();
  if (_document.isEmpty())
    return;
  const View view = _view();
  if (view.part.isEmpty())
    return;
  _asked = {view,       _document.shown(),    _document.selection(), _document.originalNumber(),
            _marksEnds, _document.isTrying(), _asked.number + 1};
  _lighting.ask(_asked);
  if (!_patience.isActive())
    _patience.start();
}

void Canvas::_take(const Frame& frame) {
  if (frame.number < _firstAsked)
    return;
  if (!frame.problem.isEmpty())
    Q_EMIT failed(frame.problem);
  _frame = frame;
  if (frame.view.part.size() == frame.view.size)
    _whole = frame;
  if (isUpToDate()) {
    _patience.stop();
    Q_EMIT waiting(false);
  } else {
    _patience.start(); // something moves
  }
  viewport()->update();
}

void Canvas::setTool(Tool tool) {
  _tool = tool;
  _updateCursor();
  viewport()->update();
}

void Canvas::setBrushDiameter(int diameter) {
  diameter = std::clamp(diameter, 1, MAX_BRUSH);
  if (diameter == _brush.diameter)
    return;
  _brush.diameter = diameter;
  Q_EMIT brushChanged(diameter);
  viewport()->update();
}

void Canvas::showOriginal(bool show) {
  _showsOriginal = show;
  viewport()->update();
}

void Canvas::showSplit(bool show) {
  _showsSplit = show;
  _updateCursor();
  viewport()->update();
}

void Canvas::markEnds(bool mark) {
  _marksEnds = mark;
  _ask();
}

bool Canvas::_isOnSplit(QPointF viewportPoint) const {
  const double line = toViewport({_split * _document.size().width(), 0}).x();
  return _showsSplit && !_document.isEmpty() && std::abs(viewportPoint.x() - line) <= SPLIT_REACH;
}

double Canvas::_scale() const {
  return _zoom / devicePixelRatioF();
}

// Where the image's corner lies in the viewport: centred while the image is the smaller one.
QPointF Canvas::_origin() const {
  const QSizeF image = QSizeF(_document.size()) * _scale();
  const auto place = [](double room, double length, int scrolled) {
    return length <= room ? std::floor((room - length) / 2) : -static_cast<double>(scrolled);
  };
  return {place(viewport()->width(), image.width(), horizontalScrollBar()->value()),
          place(viewport()->height(), image.height(), verticalScrollBar()->value())};
}

QPointF Canvas::toImage(QPointF viewportPoint) const {
  return (viewportPoint - _origin()) / _scale();
}

QPointF Canvas::toViewport(QPointF imagePoint) const {
  return imagePoint * _scale() + _origin();
}

void Canvas::_fitScrollBars() {
  const QSize image = (QSizeF(_document.size()) * _scale()).toSize();
  const auto fit = [](QScrollBar* bar, int length, int room) {
    bar->setRange(0, std::max(0, length - room));
    bar->setPageStep(room);
    bar->setSingleStep(std::max(1, room / 20));
  };
  fit(horizontalScrollBar(), image.width(), viewport()->width());
  fit(verticalScrollBar(), image.height(), viewport()->height());
  viewport()->update();
}

void Canvas::setZoom(double zoom, QPointF anchor) {
  if (_document.isEmpty())
    return;
  const QPointF fixed = toImage(anchor);
  _zoom = std::clamp(zoom, MIN_ZOOM, MAX_ZOOM);
  _fits = false;
  _fitScrollBars();
  const QPointF corner = fixed * _scale() - anchor;
  horizontalScrollBar()->setValue(static_cast<int>(std::lround(corner.x())));
  verticalScrollBar()->setValue(static_cast<int>(std::lround(corner.y())));
  _ask();
  Q_EMIT zoomChanged();
}

void Canvas::zoomToFit() {
  if (_document.isEmpty())
    return;
  const QSizeF room = QSizeF(maximumViewportSize()) * devicePixelRatioF();
  const QSizeF image = _document.size();
  setZoom(std::min({room.width() / image.width(), room.height() / image.height(), 1.0}));
  _fits = true;
}

// To the next of the round steps 12.5 %, 25 %, 50 %, 100 % …
void Canvas::zoomIn() {
  setZoom(std::exp2(std::floor(std::log2(_zoom) + STEP_SLACK) + 1));
}

void Canvas::zoomOut() {
  setZoom(std::exp2(std::ceil(std::log2(_zoom) - STEP_SLACK) - 1));
}

void Canvas::resizeEvent(QResizeEvent*) {
  if (_fits)
    zoomToFit();
  else
    _fitScrollBars();
  _ask();
}

void Canvas::scrollContentsBy(int, int) {
  _ask();
}

void Canvas::wheelEvent(QWheelEvent* event) {
  if ((event->modifiers() & Qt::ControlModifier) == 0) {
    QAbstractScrollArea::wheelEvent(event);
    return;
  }
  constexpr double NOTCH = 120.0;
  setZoom(_zoom * std::exp2(event->angleDelta().y() / NOTCH / 2), event->position());
}

bool Canvas::event(QEvent* event) {
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (isKey && _overlay != nullptr && _overlay->handle(*event)) {
    event->accept();
    return true;
  }
  return QAbstractScrollArea::event(event);
}

bool Canvas::viewportEvent(QEvent* event) {
  const bool isTaken = _overlay != nullptr && _drag == Drag::None && _overlay->handle(*event);
  const bool handled = isTaken || QAbstractScrollArea::viewportEvent(event);
  if (dynamic_cast<QMouseEvent*>(event) != nullptr)
    _updateCursor();
  return handled;
}

void Canvas::_updateCursor() {
  const std::optional<Qt::CursorShape> overlaid =
      _overlay != nullptr && _drag == Drag::None ? _overlay->cursor() : std::nullopt;
  if (_drag == Drag::Split || (_drag == Drag::None && _isOnSplit(_hover)))
    viewport()->setCursor(Qt::SplitHCursor);
  else if (overlaid.has_value())
    viewport()->setCursor(*overlaid);
  else if (_drag == Drag::Pan)
    viewport()->setCursor(Qt::ClosedHandCursor);
  else if (_document.isEmpty())
    viewport()->unsetCursor();
  else
    viewport()->setCursor(_tool == Tool::Hand ? Qt::OpenHandCursor : Qt::CrossCursor);
}

QRect Canvas::_rectangleTo(QPointF imagePoint) const {
  const QRectF spanned = QRectF(_dragStart, imagePoint).normalized();
  const QPoint first(static_cast<int>(std::lround(spanned.left())),
                     static_cast<int>(std::lround(spanned.top())));
  const QPoint last(static_cast<int>(std::lround(spanned.right())) - 1,
                    static_cast<int>(std::lround(spanned.bottom())) - 1);
  return QRect(first, last).intersected(_document.bounds());
}

void Canvas::_beginStroke(QPointF point, BrushInk ink) {
  _brush.ink = ink;
  if (_draft.mask.isNull()) {
    _draft.mask = QImage(_document.size(), QImage::Format_Grayscale8);
    // Taking away begins with everything selected, adding with nothing.
    _draft.mask.fill(ink == BrushInk::Select ? 0 : 255);
  }
  _lastPoint = point;
  _stroke(point);
}

void Canvas::_stroke(QPointF point) {
  PaintStroke(_draft.mask, _lastPoint, point, _brush);
  _lastPoint = point;
  viewport()->update();
}

void Canvas::mousePressEvent(QMouseEvent* event) {
  if (_document.isEmpty() || _drag != Drag::None)
    return;
  const bool pans = event->button() == Qt::MiddleButton || _tool == Tool::Hand;
  if (!pans && event->button() != Qt::LeftButton)
    return;
  const QPointF point = toImage(event->position());
  _draft = _document.selection();
  if (event->button() == Qt::LeftButton && _isOnSplit(event->position())) {
    _drag = Drag::Split;
  } else if (pans) {
    _drag = Drag::Pan;
    _dragStart = event->position();
    _scrollStart = {horizontalScrollBar()->value(), verticalScrollBar()->value()};
  } else if (_tool == Tool::Rectangle) {
    _drag = Drag::Rectangle;
    _dragStart = point;
    _draft.area = {};
  } else {
    _drag = Drag::Brush;
    const bool erases = (event->modifiers() & (Qt::AltModifier | Qt::ControlModifier)) != 0;
    _beginStroke(point, erases ? BrushInk::Deselect : BrushInk::Select);
  }
  _updateCursor();
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
  _hover = event->position();
  if (_drag == Drag::Pan) {
    const QPoint moved = (event->position() - _dragStart).toPoint();
    horizontalScrollBar()->setValue(_scrollStart.x() - moved.x());
    verticalScrollBar()->setValue(_scrollStart.y() - moved.y());
  } else if (_drag == Drag::Split) {
    const double place = toImage(event->position()).x() / _document.size().width();
    _split = std::clamp(place, 0.0, 1.0);
    viewport()->update();
  } else if (_drag == Drag::Rectangle) {
    _draft.area = _rectangleTo(toImage(event->position()));
    viewport()->update();
  } else if (_drag == Drag::Brush) {
    _stroke(toImage(event->position()));
  } else {
    _updateCursor();
    if (_tool == Tool::Brush)
      viewport()->update();
  }
}

void Canvas::mouseReleaseEvent(QMouseEvent*) {
  if (_drag == Drag::Rectangle || _drag == Drag::Brush)
    _document.select(_draft);
  _drag = Drag::None;
  _draft = {};
  _updateCursor();
  viewport()->update();
}

void Canvas::leaveEvent(QEvent*) {
  _hover = {-1, -1};
  viewport()->update();
}

} // namespace editor
