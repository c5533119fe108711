#include "ToolboxProbe.h"

#include "DialogWindow.h"
#include "Input.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>

QImage TB_PortImage(GrafPtr port) {
  return port->state->image.copy();
}

QWidget* TB_PortWindow(GrafPtr port) {
  return DialogWindow::Of(port);
}

void GetCPixel(short h, short v, RGBColor* color) {
  const PortState& state = CurrentState();
  const Rect& bounds = state.port->portRect;
  const int x = DeviceEdge(state, h) - DeviceEdge(state, bounds.left);
  const int y = DeviceEdge(state, v) - DeviceEdge(state, bounds.top);
  const bool isInside = state.image.rect().contains(x, y);
  const QRgb pixel = isInside ? state.image.pixel(x, y) : 0xFFFFFFFF;
  *color = {static_cast<uint16_t>(qRed(pixel) * 257), static_cast<uint16_t>(qGreen(pixel) * 257),
            static_cast<uint16_t>(qBlue(pixel) * 257)};
}

GrafPtr NewOffscreenPort(const Rect& bounds, double ratio) {
  return NewPort(bounds, ratio, false);
}

bool HaveSameSquares(RgnHandle a, RgnHandle b) {
  return RegionSquares(a) == RegionSquares(b);
}

bool TakeEvent(short mask, EventRecord* event, int milliseconds) {
  const QDeadlineTimer deadline(milliseconds);
  for (;;) {
    while (const auto taken = Input::Get()->TakeEvent()) {
      *event = taken->record;
      if (((mask >> event->what) & 1) != 0)
        return true;
    }
    if (deadline.hasExpired())
      return false;
    Input::Get()->Pump(static_cast<int>(deadline.remainingTime()));
  }
}

void FlushEvents() {
  while (Input::Get()->TakeEvent()) {
  }
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
