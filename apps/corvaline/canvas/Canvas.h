// The view of the image: zoom, pan, and the tools that work on it.
#pragma once

#include "Brush.h"
#include "CanvasLighting.h"
#include "EditorDocument.h"

#include <QAbstractScrollArea>
#include <QTimer>

namespace editor {

class LightOverlay;

enum class Tool { Hand, Rectangle, Brush };

// Image coordinates have the image's top-left pixel between 0 and 1. The zoom is in screen pixels
// (of the device) per image pixel.
class Canvas : public QAbstractScrollArea {
  Q_OBJECT

public:
  static constexpr double MIN_ZOOM = 1.0 / 64, MAX_ZOOM = 32.0;
  static constexpr int MAX_BRUSH = 2000;

  explicit Canvas(EditorDocument& document, QWidget* parent = nullptr);

  Tool tool() const { return _tool; }
  void setTool(Tool tool);
  const Brush& brush() const { return _brush; }
  void setBrushDiameter(int diameter);

  double zoom() const { return _zoom; }
  void zoomIn();
  void zoomOut();
  void zoomToFit();
  // Keeps the image point below `anchor` (in the viewport) where it is.
  void setZoom(double zoom, QPointF anchor);
  void setZoom(double zoom) { setZoom(zoom, QRectF(viewport()->rect()).center()); }

  // Shows the image without light, and without the selection.
  void showOriginal(bool show);
  // Shows it so to the left of a line that can be dragged, or not any more.
  void showSplit(bool show);

  // Marks pixels that have become white in a colour, or black.
  void markEnds(bool mark);

  // The latest picture of what is seen, and whether it is of what is to be seen now.
  const Frame& frame() const { return _frame; }
  bool isUpToDate() const { return _frame.number == _asked.number; }
  bool showsOriginal() const { return _showsOriginal; }
  bool hasImage() const { return !_document.isEmpty(); }

  // Lies on top of everything; not owned.
  void setOverlay(LightOverlay* overlay) { _overlay = overlay; }

  QPointF toImage(QPointF viewportPoint) const;
  QPointF toViewport(QPointF imagePoint) const;

Q_SIGNALS:
  void zoomChanged();
  void brushChanged(int diameter);
  // A picture is being made that takes a while; or is there.
  void waiting(bool isWaiting);
  // Why there is none.
  void failed(const QString& problem);

protected:
  bool event(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;

private:
  enum class Drag { None, Pan, Rectangle, Brush, Split };

  void _showImage();
  // The whole pixels that the viewport shows of the picture, if it had that size.
  QRect _seen(QSize size) const;
  View _view() const;
  void _ask();
  void _take(const Frame& frame);
  double _scale() const; // viewport units per image pixel
  QPointF _origin() const;
  void _fitScrollBars();
  void _beginStroke(QPointF point, BrushInk ink);
  void _stroke(QPointF point);
  QRect _rectangleTo(QPointF imagePoint) const;
  void _updateCursor();
  bool _isOnSplit(QPointF viewportPoint) const;
  void _paintFrame(QPainter& painter, const Frame& frame, const QImage& image) const;
  void _paintImage(QPainter& painter) const;
  void _paintSplit(QPainter& painter) const;
  void _paintMask(QPainter& painter, const QImage& mask) const;
  void _paintArea(QPainter& painter, const QRect& area) const;
  void _paintBrush(QPainter& painter) const;
  void _paintHint(QPainter& painter) const;

  EditorDocument& _document;
  LightOverlay* _overlay = nullptr;
  CanvasLighting _lighting;
  FrameWish _asked;    // last
  int _firstAsked = 0; // of the present image
  Frame _frame;
  Frame _whole; // the latest that shows all of the image, for where _frame does not reach
  QTimer _patience;
  bool _showsOriginal = false, _showsSplit = false, _marksEnds = false;
  double _split = 0.5; // of the image's width
  Tool _tool = Tool::Hand;
  Brush _brush;
  double _zoom = 1.0;
  bool _fits = true; // follows the window's size
  Drag _drag = Drag::None;
  QPointF _dragStart; // Pan: in the viewport; else in the image
  QPoint _scrollStart;
  QPointF _lastPoint; // of a stroke, in the image
  QPointF _hover{-1, -1};
  Selection _draft; // while a rectangle or a stroke is being drawn
};

} // namespace editor
