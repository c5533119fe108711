#include "QDRegions.h"

#include "PortState.h"
#include "QDPorts.h"
#include "Raster.h"

#include <new>

struct RegionCells {
  QRegion squares;
};

namespace {

// A handle, its block and its squares in one.
struct RegionBlock {
  MacRegion* master;
  MacRegion region;
  RegionCells cells;
};

const QRegion& Squares(RgnHandle region) {
  static const QRegion empty;
  return region != nullptr ? (**region).cells->squares : empty;
}

void Store(RgnHandle region, const QRegion& squares) {
  if (region == nullptr)
    return;
  (**region).cells->squares = squares.intersected(WholePlane());
  (**region).rgnBBox = ToRect((**region).cells->squares.boundingRect());
}

} // namespace

QRegion RegionSquares(RgnHandle region) {
  return Squares(region);
}

RgnHandle NewRgn() {
  auto* block = new (std::nothrow) RegionBlock{};
  if (block == nullptr)
    return nullptr;
  block->master = &block->region;
  block->region.cells = &block->cells;
  return &block->master;
}

void DisposeRgn(RgnHandle region) {
  delete reinterpret_cast<RegionBlock*>(region);
}

void RectRgn(RgnHandle region, const Rect* rect) {
  Store(region, ToQRect(*rect));
}
void SectRgn(RgnHandle a, RgnHandle b, RgnHandle target) {
  Store(target, Squares(a).intersected(Squares(b)));
}
Boolean PtInRgn(Point point, RgnHandle region) {
  return Squares(region).contains(QPoint(point.h, point.v)) ? 1 : 0;
}

void OpenRgn() {
  PortState& state = CurrentState();
  if (!state.recording)
    --state.port->pnVis;
  state.recording = std::make_unique<Recording>();
}

void CloseRgn(RgnHandle target) {
  PortState& state = CurrentState();
  if (!state.recording)
    return;
  ++state.port->pnVis;
  Store(target, state.recording->framed.xored(SurroundedPixels(state.recording->lines)));
  state.recording.reset();
}

void GetClip(RgnHandle target) {
  Store(target, CurrentState().clip);
}
void SetClip(RgnHandle region) {
  SetPortClip(CurrentState(), Squares(region));
}
void ClipRect(const Rect* rect) {
  SetPortClip(CurrentState(), ToQRect(*rect));
}

void AddPt(Point source, Point* target) {
  target->h = static_cast<short>(target->h + source.h);
  target->v = static_cast<short>(target->v + source.v);
}

void SubPt(Point source, Point* target) {
  target->h = static_cast<short>(target->h - source.h);
  target->v = static_cast<short>(target->v - source.v);
}

Boolean EqualPt(Point a, Point b) {
  return a.h == b.h && a.v == b.v ? 1 : 0;
}
