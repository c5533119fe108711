#include "PortState.h"

#include "HandleBlock.h"
#include "Ink.h"
#include "QDRegions.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <unordered_set>

const QDGlobals qd = {{{0, 0, 0, 0, 0, 0, 0, 0}}, {{255, 255, 255, 255, 255, 255, 255, 255}}};

namespace {

constexpr RGBColor BLACK = {0, 0, 0};

std::unordered_set<const GrafPort*>& LivePorts() {
  static std::unordered_set<const GrafPort*> ports;
  return ports;
}

void ResetPen(PenState& pen) {
  pen.pnSize = {1, 1};
  pen.pnMode = patCopy;
  pen.pnPat = qd.black;
  pen.usesPixPat = 0;
  pen.patternColor = BLACK;
}

void FillInPort(GrafPort& port, const Rect& bounds, PortState* state) {
  port.portRect = bounds;
  port.portBits = {bounds, &port};
  ResetPen(port.pen);
  port.rgbFgColor = BLACK;
  port.state = state;
  state->port = &port;
  state->pixMap = {bounds, 32};
  state->pixMapMaster = &state->pixMap;
  port.portPixMap = &state->pixMapMaster;
}

// Where drawing goes while no port is current: one with no pixels to it.
GrafPort* NoPort() {
  static PortState state;
  static GrafPort port = {};
  if (port.state == nullptr) {
    FillInPort(port, Rect{0, 0, 0, 0}, &state);
    SetPortClip(state, WholePlane());
  }
  return &port;
}

GrafPort*& Current() {
  static GrafPort* current = nullptr;
  return current;
}

} // namespace

bool TB_HasDesktop() {
  return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

GrafPort* CurrentPort() {
  return Current() != nullptr ? Current() : NoPort();
}

PortState& CurrentState() {
  return *CurrentPort()->state;
}

int DeviceEdge(const PortState& state, int unit) {
  return static_cast<int>(std::floor(unit * state.ratio + 0.5));
}

QRect DeviceRect(const PortState& state, const QRect& units) {
  return QRect(
      QPoint(DeviceEdge(state, units.left()), DeviceEdge(state, units.top())),
      QPoint(DeviceEdge(state, units.right() + 1) - 1, DeviceEdge(state, units.bottom() + 1) - 1));
}

QRegion DeviceRegion(const PortState& state, const QRegion& units) {
  if (state.ratio == 1 || units.isEmpty())
    return units;
  // Edges keep their order, so the rectangles stay sorted in bands.
  std::vector<QRect> rects;
  for (const QRect& rect : units)
    rects.push_back(DeviceRect(state, rect));
  QRegion region;
  region.setRects(rects.data(), static_cast<int>(rects.size()));
  return region;
}

int DevicePenSize(const PortState& state, int units) {
  if (units <= 0)
    return 0;
  return std::max(1, static_cast<int>(std::floor(units * state.ratio + 1e-6)));
}

QRegion WholePlane() {
  return QRegion(QRect(QPoint(-32768, -32768), QPoint(32767, 32767)));
}

void SetPortClip(PortState& state, const QRegion& clip) {
  state.clip = clip;
  const QRegion bounds = ToQRect(state.port->portRect);
  const QRegion visible = DeviceRegion(state, clip.intersected(bounds));
  const QPoint origin(DeviceEdge(state, state.port->portRect.left),
                      DeviceEdge(state, state.port->portRect.top));
  state.deviceClip = visible.intersected(QRect(origin, state.image.size()));
}

void MarkDirty(PortState& state, const QRect& device) {
  if (state.window == nullptr || device.isEmpty())
    return;
  const double ratio = state.window->devicePixelRatioF();
  state.window->update(QRectF(QPointF(device.topLeft()) / ratio, QSizeF(device.size()) / ratio)
                           .toAlignedRect()
                           .adjusted(-1, -1, 1, 1));
}

Rect ToRect(const QRect& rect) {
  const auto cut = [](int side) { return static_cast<int16_t>(std::clamp(side, -32768, 32767)); };
  if (rect.isEmpty())
    return Rect{0, 0, 0, 0};
  return Rect{cut(rect.top()), cut(rect.left()), cut(rect.bottom() + 1), cut(rect.right() + 1)};
}

bool ResizePortImage(PortState& state, double ratio) {
  const QRect bounds = ToQRect(state.port->portRect);
  const double width = std::ceil(bounds.width() * ratio);
  const double height = std::ceil(bounds.height() * ratio);
  if (width < 1 || height < 1 || width > 32767 || height > 32767)
    return false;
  QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGB32);
  if (image.isNull())
    return false;
  image.setDevicePixelRatio(ratio);
  state.image = image;
  state.ratio = ratio;
  state.picture = QRegion();
  state.image.fill(BackgroundInk(state));
  SetPortClip(state, state.clip);
  MarkDirty(state, state.image.rect());
  return true;
}

GrafPort* NewPort(const Rect& bounds, double ratio, bool themed) {
  auto port = std::make_unique<GrafPort>();
  auto state = std::make_unique<PortState>();
  FillInPort(*port, bounds, state.get());
  state->themed = themed;
  state->clip = WholePlane();
  if (!ResizePortImage(*state, std::clamp(ratio, 1.0, 8.0)))
    return nullptr;
  LivePorts().insert(port.get());
  (void)state.release();
  return port.release();
}

void DisposePort(GrafPort* port) {
  if (port == nullptr || LivePorts().erase(port) == 0)
    return;
  const std::unique_ptr<PortState> state(port->state);
  const std::unique_ptr<GrafPort> gone(port);
  if (Current() == port)
    Current() = nullptr;
}

PortState* WindowStateOf(const GrafPort* port) {
  return LivePorts().count(port) != 0 && port->state->window != nullptr ? port->state : nullptr;
}

PortScope::PortScope(GrafPort* port) : _saved(CurrentPort()) {
  SetPort(port);
}
PortScope::~PortScope() {
  SetPort(_saved);
}

void GetPort(GrafPtr* port) {
  *port = CurrentPort();
}

void SetPort(GrafPtr port) {
  Current() = LivePorts().count(port) != 0 ? port : nullptr;
}

void GetPenState(PenState* state) {
  *state = CurrentPort()->pen;
}
void SetPenState(const PenState* state) {
  CurrentPort()->pen = *state;
}
void PenNormal() {
  ResetPen(CurrentPort()->pen);
}
void PenMode(short mode) {
  CurrentPort()->pen.pnMode = mode;
}
void PenSize(short width, short height) {
  CurrentPort()->pen.pnSize = {height, width};
}

void PenPat(const Pattern* pattern) {
  CurrentPort()->pen.pnPat = *pattern;
  CurrentPort()->pen.usesPixPat = 0;
}

void PenPixPat(PixPatHandle pattern) {
  if (pattern == nullptr)
    return;
  CurrentPort()->pen.usesPixPat = 1;
  CurrentPort()->pen.patternColor = (**pattern).color;
}

PixPatHandle NewPixPat() {
  return HandleBlock<PixPat>::New();
}

void MakeRGBPat(PixPatHandle pattern, const RGBColor* color) {
  if (pattern != nullptr)
    (**pattern).color = *color;
}

void DisposePixPat(PixPatHandle pattern) {
  HandleBlock<PixPat>::Dispose(pattern);
}

void RGBForeColor(const RGBColor* color) {
  CurrentPort()->rgbFgColor = *color;
  CurrentState().frameInk = false;
}

void FrameColor(short number) {
  RGBForeColor(&BLACK);
  CurrentState().frameInk = number == 1;
}

Point ToLocal(const GrafPort& port, QPointF global) {
  const PortState& state = *port.state;
  if (state.window != nullptr)
    global = (global - state.window->mapToGlobal(QPointF(0, 0))) / state.windowScale;
  return Point{CutToCoordinate(std::floor(global.y())), CutToCoordinate(std::floor(global.x()))};
}

Point GlobalOrigin(const GrafPort& port) {
  const QWidget* window = port.state->window;
  const QPoint origin = window != nullptr ? window->mapToGlobal(QPoint(0, 0)) : QPoint(0, 0);
  return Point{CutToCoordinate(origin.y()), CutToCoordinate(origin.x())};
}

QPointF ToScreen(const GrafPort& port, Point point) {
  const QPointF middle = QPointF(point.h + 0.5, point.v + 0.5) * port.state->windowScale;
  return port.state->window != nullptr ? port.state->window->mapToGlobal(middle) : middle;
}

void GlobalToLocal(Point* point) {
  const Point origin = GlobalOrigin(*CurrentPort());
  *point = {static_cast<int16_t>(point->v - origin.v), static_cast<int16_t>(point->h - origin.h)};
}
