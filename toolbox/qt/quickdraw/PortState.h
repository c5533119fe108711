// What a port holds behind its public fields. Private to this layer: Qt shows here.
#pragma once

#include "QDPorts.h"
#include "QDRegions.h"

#include <QImage>
#include <QPointF>
#include <QRegion>
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct ControlRecord;
class QWidget;

// One line of a figure being recorded, between the corners of unit squares.
struct RecordedLine {
  QPoint from, to;
};

// What OpenRgn collects until CloseRgn.
struct Recording {
  QRegion framed;
  std::vector<RecordedLine> lines;
};

// "Device" in a name: in pixels of the image; else in the port's units.
struct PortState {
  QImage image; // RGB32, its device pixel ratio set
  double ratio = 1;
  QRegion clip;
  QRegion deviceClip; // clip within the image
  QRegion picture;    // where a picture was shown: inks are exact there
  QRegion update;     // what the next update event redraws
  std::unique_ptr<Recording> recording;
  std::optional<QPoint> lineEnd;      // where a line ended that the next one may go on from
  QWidget* window = nullptr;          // null for a port without one
  double windowScale = 1;             // the window's logical pixels per unit
  bool closeRequested = false;        // its user wants the window closed
  ControlRecord** controls = nullptr; // in the window, the newest first
  bool themed = false;                // inks follow the desktop's palette
  bool frameInk = false;              // FrameColor(1) is in force
  GrafPort* port = nullptr;
  PixMap pixMap{};
  PixMap* pixMapMaster = nullptr;
};

// A new port, not current, its image erased. Null when the image cannot be had.
GrafPort* NewPort(const Rect& bounds, double ratio, bool themed);
void DisposePort(GrafPort* port);
// A fresh image for another ratio; the content is erased. False leaves the port as it was.
bool ResizePortImage(PortState& state, double ratio);

// Coordinates have 16 bits.
inline int16_t CutToCoordinate(double value) {
  return static_cast<int16_t>(std::clamp(value, -32768.0, 32767.0));
}

// The state of a port that is a window's; null for another port, and for one that has gone.
PortState* WindowStateOf(const GrafPort* port);

// The current port; never null.
GrafPort* CurrentPort();
PortState& CurrentState();
inline bool CanDraw(const GrafPort* port) {
  return !port->state->recording; // though the pen moves
}

// First device pixel of the unit column or row. The next one's first pixel ends it.
int DeviceEdge(const PortState& state, int unit);
QRect DeviceRect(const PortState& state, const QRect& units);
QRegion DeviceRegion(const PortState& state, const QRegion& units);
// A pen's extent: whole pixels, at least one, never more than its unit squares have.
int DevicePenSize(const PortState& state, int units);

// The squares of a region; none of a null one.
const QRegion& RegionSquares(RgnHandle region);
// Everything there is.
QRegion WholePlane();
void SetPortClip(PortState& state, const QRegion& clip);
// Has the window show device pixels that have changed.
void MarkDirty(PortState& state, const QRect& device);

// Of a point on the screen, the square of the port it lies in.
Point ToLocal(const GrafPort& port, QPointF global);
// What a port's points are moved by to become global: its window's place on the screen. Distances
// stay those of the port, so that no point is lost whatever the window's scale.
Point GlobalOrigin(const GrafPort& port);
// And the way back: the middle of a square of the port, on the screen.
QPointF ToScreen(const GrafPort& port, Point point);

// Makes another port current for a scope.
class PortScope {
public:
  explicit PortScope(GrafPort* port);
  ~PortScope();
  PortScope(const PortScope&) = delete;
  PortScope& operator=(const PortScope&) = delete;

private:
  GrafPort* _saved;
};

inline QRect ToQRect(const Rect& rect) {
  return QRect(QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1));
}
// Sides beyond 16 bits are cut to them.
Rect ToRect(const QRect& rect);
