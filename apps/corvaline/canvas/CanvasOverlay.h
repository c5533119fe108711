// What lies over the picture on the canvas.
#pragma once

#include <QEvent>

#include <optional>

class QPainter;

namespace editor {

// Points are in the canvas's viewport.
class CanvasOverlay {
public:
  virtual ~CanvasOverlay() = default;
  virtual void paint(QPainter& painter) = 0;
  // Gets the mouse's events over the viewport and the keys of the canvas first. True: it is taken.
  virtual bool handle(QEvent& event) = 0;
  // The mouse's cursor, where it is not the tool's.
  virtual std::optional<Qt::CursorShape> cursor() const = 0;
};

} // namespace editor
