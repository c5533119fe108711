#include "QDShapes.h"

#include "Ink.h"
#include "Raster.h"

#include <algorithm>
#include <cmath>

namespace {

enum class Figure { Rect, Oval, RoundRect };

// A figure in units, not yet at any ratio.
struct Shape {
  Figure figure;
  QRect box;
  int ovalWidth = 0, ovalHeight = 0;
};

// Corner diameters of a shape within a box of the device, which may be inset from the shape's own.
struct Corners {
  double width, height;
};

Corners DeviceCorners(const PortState& state, const Shape& shape, const QRectF& device) {
  if (shape.figure == Figure::Oval)
    return {device.width(), device.height()};
  const QRect whole = DeviceRect(state, shape.box);
  const double insetWidth = whole.width() - device.width();
  const double insetHeight = whole.height() - device.height();
  return {std::max(0.0, shape.ovalWidth * state.ratio - insetWidth),
          std::max(0.0, shape.ovalHeight * state.ratio - insetHeight)};
}

QRegion HardInside(const PortState& state, const Shape& shape, const QRect& device) {
  if (device.isEmpty())
    return QRegion();
  if (shape.figure == Figure::Rect)
    return QRegion(device);
  const QRect rows = state.deviceClip.boundingRect();
  const Corners corners = DeviceCorners(state, shape, device);
  return RoundRectPixels(device, static_cast<int>(std::lround(corners.width)),
                         static_cast<int>(std::lround(corners.height)), rows);
}

QPainterPath SmoothInside(const PortState& state, const Shape& shape, const QRectF& device) {
  QPainterPath path;
  if (device.isEmpty())
    return path;
  const Corners corners = DeviceCorners(state, shape, device);
  if (shape.figure == Figure::Oval)
    path.addEllipse(device);
  else
    path.addRoundedRect(device, corners.width / 2, corners.height / 2);
  return path;
}

bool IsSmooth(const PortState& state, const Shape& shape, short mode) {
  if (NeedsHardEdges(mode) || shape.figure == Figure::Rect)
    return false;
  return shape.figure == Figure::RoundRect || state.ratio > 1;
}

void Fill(const Shape& shape, const Ink& ink) {
  PortState& state = CurrentState();
  if (!CanDraw(state.port) || shape.box.isEmpty())
    return;
  const QRect device = DeviceRect(state, shape.box);
  if (IsSmooth(state, shape, ink.mode))
    ComposePath(state, SmoothInside(state, shape, device), ink);
  else
    ComposeRegion(state, HardInside(state, shape, device), ink);
}

void Record(Recording& recording, const Shape& shape) {
  const QRect& box = shape.box;
  if (shape.figure == Figure::Rect)
    recording.framed ^= box;
  else if (shape.figure == Figure::Oval)
    recording.framed ^= RoundRectPixels(box, box.width(), box.height(), box);
  else
    recording.framed ^= RoundRectPixels(box, shape.ovalWidth, shape.ovalHeight, box);
}

void Frame(const Shape& shape) {
  PortState& state = CurrentState();
  if (shape.box.isEmpty())
    return;
  if (state.recording)
    Record(*state.recording, shape);
  if (!CanDraw(state.port))
    return;
  const Ink ink = PenInk(state, shape.box);
  const QRect outer = DeviceRect(state, shape.box);
  const Point pen = state.port->pen.pnSize;
  // Just the pen's squares, so that frames within frames meet.
  const int penWidth = std::max<int>(pen.h, 0);
  const int penHeight = std::max<int>(pen.v, 0);
  const QRect exact =
      DeviceRect(state, shape.box.adjusted(penWidth, penHeight, -penWidth, -penHeight));
  if (IsSmooth(state, shape, ink.mode)) {
    QPainterPath path = SmoothInside(state, shape, outer);
    path.addPath(SmoothInside(state, shape, exact));
    path.setFillRule(Qt::OddEvenFill);
    ComposePath(state, path, ink);
    return;
  }
  // Figures that come and go are as wide on all sides, and fine.
  const bool copied = ink.mode == patCopy || ink.mode == srcCopy;
  const int width = DevicePenSize(state, pen.h);
  const int height = DevicePenSize(state, pen.v);
  const QRect inner = copied ? exact : outer.adjusted(width, height, -width, -height);
  ComposeRegion(state, HardInside(state, shape, outer).subtracted(HardInside(state, shape, inner)),
                ink);
}

void Paint(const Shape& shape) {
  Fill(shape, PenInk(CurrentState(), shape.box));
}

void FillC(const Shape& shape, PixPatHandle pattern) {
  if (pattern != nullptr)
    Fill(shape, Ink{ExactColor((**pattern).color), patCopy});
}

// From the middle of one unit square to that of another, as thick as a square, in device pixels.
QPainterPath SmoothLine(QPoint from, QPoint to, double thickness) {
  const double half = thickness * 0.5;
  QPainterPath path;
  path.moveTo(from.x() + half, from.y() + half);
  path.lineTo(to.x() + half, to.y() + half);
  QPainterPathStroker stroker;
  stroker.setWidth(thickness);
  stroker.setCapStyle(Qt::RoundCap);
  return stroker.createStroke(path);
}

void ComposeLine(PortState& state, QPoint from, QPoint to, const Ink& ink) {
  const QPoint start(DeviceEdge(state, from.x()), DeviceEdge(state, from.y()));
  const QPoint end(DeviceEdge(state, to.x()), DeviceEdge(state, to.y()));
  const QRect visible = state.deviceClip.boundingRect();
  const bool slanted = start.x() != end.x() && start.y() != end.y();
  if (slanted && state.ratio > 1 && !NeedsHardEdges(ink.mode)) {
    ComposePath(state, SmoothLine(start, end, state.ratio), ink);
    return;
  }
  const std::vector<QRect> pixels = LinePixels(start, end, DevicePenSize(state, 1), visible);
  ComposeRects(state, pixels.data(), pixels.data() + pixels.size(), ink);
}

void DrawLine(PortState& state, QPoint from, QPoint to) {
  const QRect box(QPoint(std::min(from.x(), to.x()), std::min(from.y(), to.y())),
                  QPoint(std::max(from.x(), to.x()), std::max(from.y(), to.y())));
  const Ink ink = PenInk(state, box);
  const QRegion saved = state.deviceClip;
  // Smooth edges may not leave the squares that an erasing of the line's box will clear.
  state.deviceClip &= DeviceRect(state, box);
  const bool accumulates = NeedsHardEdges(ink.mode) || ink.mode == addOver;
  if (accumulates && state.lineEnd == from)
    state.deviceClip -= QRect(DeviceEdge(state, from.x()), DeviceEdge(state, from.y()),
                              DevicePenSize(state, 1), DevicePenSize(state, 1));
  ComposeLine(state, from, to, ink);
  state.deviceClip = saved;
}

short Wrapped(int value) {
  return static_cast<short>(static_cast<uint16_t>(value));
}

} // namespace

void MoveTo(short h, short v) {
  CurrentPort()->pen.pnLoc = {v, h};
  CurrentState().lineEnd.reset();
}

void Move(short dh, short dv) {
  Point& place = CurrentPort()->pen.pnLoc;
  MoveTo(Wrapped(place.h + dh), Wrapped(place.v + dv));
}

void LineTo(short h, short v) {
  constexpr size_t MAX_RECORDED_LINES = 65536;
  PortState& state = CurrentState();
  Point& place = state.port->pen.pnLoc;
  const QPoint from(place.h, place.v);
  const QPoint to(h, v);
  if (state.recording && state.recording->lines.size() < MAX_RECORDED_LINES)
    state.recording->lines.push_back({from, to});
  if (CanDraw(state.port))
    DrawLine(state, from, to);
  place = {v, h};
  state.lineEnd = to;
}

void Line(short dh, short dv) {
  const Point place = CurrentPort()->pen.pnLoc;
  LineTo(Wrapped(place.h + dh), Wrapped(place.v + dv));
}

void FrameRect(const Rect* rect) {
  Frame({Figure::Rect, ToQRect(*rect)});
}
void PaintRect(const Rect* rect) {
  Paint({Figure::Rect, ToQRect(*rect)});
}
void EraseRect(const Rect* rect) {
  PortState& state = CurrentState();
  Fill({Figure::Rect, ToQRect(*rect)}, Ink{BackgroundInk(state), patCopy});
  if (CanDraw(state.port))
    state.picture -= state.clip.intersected(ToQRect(*rect));
}
void InvertRect(const Rect* rect) {
  Fill({Figure::Rect, ToQRect(*rect)}, Ink{0xFF000000, patXor});
}
void FillCRect(const Rect* rect, PixPatHandle pattern) {
  FillC({Figure::Rect, ToQRect(*rect)}, pattern);
}

void FrameOval(const Rect* rect) {
  Frame({Figure::Oval, ToQRect(*rect)});
}
void PaintOval(const Rect* rect) {
  Paint({Figure::Oval, ToQRect(*rect)});
}
void FillCOval(const Rect* rect, PixPatHandle pattern) {
  FillC({Figure::Oval, ToQRect(*rect)}, pattern);
}

void FrameRoundRect(const Rect* rect, short ovalWidth, short ovalHeight) {
  Frame({Figure::RoundRect, ToQRect(*rect), ovalWidth, ovalHeight});
}
