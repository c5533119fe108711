// How the view looks.
#include "Canvas.h"

#include <QPainter>
#include <QPen>

#include <algorithm>

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
  painter.fillRect(viewport()->rect(),
                   window.lightness() < 128 ? window.darker(130) : window.darker(125));
  if (_document.isEmpty()) {
    _paintHint(painter);
    return;
  }
  _paintImage(painter);
  if (_showsOriginal)
    return;
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

// The whole pixels of an image that a viewport shows.
static QRect visiblePart(const Canvas& canvas, QSize image) {
  const QRectF view(canvas.viewport()->rect());
  return QRectF(canvas.toImage(view.topLeft()), canvas.toImage(view.bottomRight()))
      .toAlignedRect()
      .intersected(QRect(QPoint(0, 0), image));
}

void Canvas::_paintImage(QPainter& painter) const {
  const QRectF source(visiblePart(*this, _document.size()));
  const QRectF target(toViewport(source.topLeft()), toViewport(source.bottomRight()));
  (_showsOriginal ? _original : _picture).draw(painter, target, source, _zoom);
}

void Canvas::_paintMask(QPainter& painter, const QImage& mask) const {
  const QRectF source(visiblePart(*this, mask.size()));
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
