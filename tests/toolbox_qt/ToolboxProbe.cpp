#include "ToolboxProbe.h"

#include "DialogWindow.h"
#include "EventQueue.h"
#include "Input.h"

#include <QElapsedTimer>

QImage TB_PortImage(GrafPtr port) {
  return port->state->image.copy();
}

QWidget* TB_PortWindow(GrafPtr port) {
  return DialogWindow::Of(port);
}

uint32_t PixelAt(int h, int v) {
  const PortState& state = CurrentState();
  const Rect& bounds = state.port->portRect;
  const int x = DeviceEdge(state, h) - DeviceEdge(state, bounds.left);
  const int y = DeviceEdge(state, v) - DeviceEdge(state, bounds.top);
  return (state.image.rect().contains(x, y) ? state.image.pixel(x, y) : 0xFFFFFF) & 0xFFFFFF;
}

Pixels PixelsOf(const Rect& rect) {
  Pixels pixels;
  for (int v = rect.top; v < rect.bottom; ++v) {
    for (int h = rect.left; h < rect.right; ++h)
      pixels.push_back(PixelAt(h, v));
  }
  return pixels;
}

GrafPtr NewOffscreenPort(const Rect& bounds, double ratio) {
  return NewPort(bounds, ratio, false);
}

bool HaveSameSquares(RgnHandle a, RgnHandle b) {
  return RegionSquares(a) == RegionSquares(b);
}

bool TakeEvent(short mask, EventRecord* event, int milliseconds) {
  WindowPtr window = nullptr;
  return FetchEvent(mask, event, &window, milliseconds);
}

void FlushEvents() {
  Input::Get()->FlushQueue(everyEvent);
}

bool IsButtonDown() {
  return Input::Get()->ButtonDown();
}

void RunEvents(int milliseconds) {
  QElapsedTimer timer;
  timer.start();
  for (int left = milliseconds; left > 0; left = milliseconds - static_cast<int>(timer.elapsed()))
    Input::Get()->Pump(left);
}
