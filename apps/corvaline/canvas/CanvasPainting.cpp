// How the view looks.
#include "Canvas.h"

#include "LightOverlay.h"

#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace editor {
namespace {

// What lies outside the mask is covered with this, the less the more it is selected.
constexpr QColor UNSELECTED(210, 30, 60, 100);

// Visible on any picture: a white line with a dashed black one on it.
void DrawOnAnything(QPainter& painter, Qt::PenStyle upperStyle, const auto& shape) {
  QPen pen(Qt::white, 1);
  pen.setCosmetic(true);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(pen);
  shape();
  pen.setColor(Qt::black);
  pen.setStyle(upperStyle);
  painter.setPen(pen);
  shape();
}

} // namespace

void Canvas::paintEvent(QPaintEvent*) {
  QPainter painter(viewport());
  const QColor window = palette().color(QPalette::Window);
  QRegion around(viewport()->rect());
  if (!_frame.shownLit.isNull() && _frame.view == _view()) {
    const QRectF picture(_origin(), QSizeF(_document.size()) * _scale());
    around -= picture.toRect().adjusted(2, 2, -2, -2); // whatever way its edges are rounded
  }
  for (const QRect& rect : around)
    painter.fillRect(rect, window.lightness() < 128 ? window.darker(130) : window.darker(125));
  if (_document.isEmpty()) {
    _paintHint(painter);
    return;
  }
  _paintImage(painter);
  if (_showsOriginal)
    return;
  if (_showsSplit)
    _paintSplit(painter);
  const bool drafting = _drag == Drag::Rectangle || _drag == Drag::Brush;
  const Selection& selection = drafting ? _draft : _document.selection();
  if (!selection.mask.isNull())
    _paintMask(painter, selection.mask);
  if (!selection.area.isEmpty())
    _paintArea(painter, selection.area);
  if (_tool == Tool::Brush && _hover.x() >= 0)
    _paintBrush(painter);
  if (_overlay != nullptr)
    _overlay->paint(painter);
}

void Canvas::_paintHint(QPainter& painter) const {
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(viewport()->rect().adjusted(20, 20, -20, -20),
                   Qt::AlignCenter | Qt::TextWordWrap,
                   tr("Drop a picture here, or open one with %1.")
                       .arg(QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText)));
}

// As large as the zoom has it by now: pixel for pixel where it was made for this one.
void Canvas::_paintFrame(QPainter& painter, const Frame& frame, const QImage& image) const {
  const QSizeF full = _document.size();
  const double shareX = full.width() / frame.view.size.width();
  const double shareY = full.height() / frame.view.size.height();
  const QRectF part(frame.view.part);
  QRectF target(toViewport({part.left() * shareX, part.top() * shareY}),
                toViewport({part.right() * shareX, part.bottom() * shareY}));
  const double ratio = devicePixelRatioF();
  const bool isExact = _zoom <= 1.0 && frame.view.size == _view().size;
  if (isExact) // and on the screen's own pixels
    target = {std::round(target.x() * ratio) / ratio, std::round(target.y() * ratio) / ratio,
              part.width() / ratio, part.height() / ratio};
  painter.setRenderHint(QPainter::SmoothPixmapTransform, !isExact && _zoom < 1.0);
  painter.drawImage(target, image, QRectF(image.rect()));
}

void Canvas::_paintImage(QPainter& painter) const {
  const View view = _view();
  const auto paint = [&](bool isLit) {
    for (const Frame* frame : {&_whole, &_frame}) {
      const QImage& image = isLit ? frame->shownLit : frame->shownPlain;
      const bool isCovered = frame == &_whole && _frame.view == view;
      if (!image.isNull() && !isCovered)
        _paintFrame(painter, *frame, image);
    }
  };
  paint(!_showsOriginal);
  if (!_showsSplit || _showsOriginal)
    return;
  const double line = toViewport({_split * _document.size().width(), 0}).x();
  painter.save();
  painter.setClipRect(QRectF(0, 0, std::round(line), viewport()->height()));
  paint(false);
  painter.restore();
}

void Canvas::_paintSplit(QPainter& painter) const {
  constexpr double GRIP = 7;
  const QSizeF full = _document.size();
  const QPointF top = toViewport({_split * full.width(), 0});
  const QPointF bottom = toViewport({_split * full.width(), full.height()});
  const QRectF seen(viewport()->rect());
  const double x = std::round(top.x());
  const double from = std::max(seen.top(), top.y());
  const double to = std::min(seen.bottom(), bottom.y());
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const QPointF middle(x, (from + to) / 2);
  for (const auto& [colour, width] :
       {std::pair(QColor(0, 0, 0, 150), 4.0), std::pair(QColor(Qt::white), 2.0)}) {
    painter.setPen(QPen(colour, width));
    painter.setBrush(QColor(40, 40, 40, 200));
    painter.drawLine(QPointF(x, from), QPointF(x, to));
    painter.drawEllipse(middle, GRIP, GRIP);
  }
  painter.setPen(QPen(Qt::white, 1.5));
  for (const int side : {-1, 1})
    painter.drawPolyline(QPolygonF({middle + QPointF(side * 2, -3), middle + QPointF(side * 5, 0),
                                    middle + QPointF(side * 2, 3)}));
  painter.restore();
}

void Canvas::_paintMask(QPainter& painter, const QImage& mask) const {
  const QRectF source(_seen(mask.size()));
  const QRectF target(toViewport(source.topLeft()), toViewport(source.bottomRight()));
  if (target.isEmpty())
    return;
  // The mask's bytes, seen as opacity, are cut out of an even cover.
  const QImage opacity(mask.constBits(), mask.width(), mask.height(), mask.bytesPerLine(),
                       QImage::Format_Alpha8);
  QImage cover((target.size() * devicePixelRatioF()).toSize().expandedTo({1, 1}),
               QImage::Format_ARGB32_Premultiplied);
  cover.fill(UNSELECTED);
  QPainter cutter(&cover);
  cutter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
  cutter.setRenderHint(QPainter::SmoothPixmapTransform);
  cutter.drawImage(QRectF(cover.rect()), opacity, source);
  cutter.end();
  painter.drawImage(target, cover, QRectF(cover.rect()));
}

void Canvas::_paintArea(QPainter& painter, const QRect& area) const {
  const QRectF frame(toViewport(area.topLeft()),
                     toViewport(area.topLeft() + QPoint(area.width(), area.height())));
  DrawOnAnything(painter, Qt::DashLine, [&] { painter.drawRect(frame.toRect()); });
}

void Canvas::_paintBrush(QPainter& painter) const {
  const double radius = _brush.diameter / 2.0 * _scale();
  painter.setRenderHint(QPainter::Antialiasing);
  DrawOnAnything(painter, Qt::DotLine, [&] { painter.drawEllipse(_hover, radius, radius); });
}

} // namespace editor
