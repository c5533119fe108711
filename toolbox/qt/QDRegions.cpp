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

void SetEmptyRgn(RgnHandle region) {
  Store(region, QRegion());
}

void SetRectRgn(RgnHandle region, short left, short top, short right, short bottom) {
  const Rect rect = {top, left, bottom, right};
  RectRgn(region, &rect);
}

void RectRgn(RgnHandle region, const Rect* rect) {
  Store(region, ToQRect(*rect));
}
void CopyRgn(RgnHandle source, RgnHandle target) {
  Store(target, Squares(source));
}

void UnionRgn(RgnHandle a, RgnHandle b, RgnHandle target) {
  Store(target, Squares(a).united(Squares(b)));
}
void SectRgn(RgnHandle a, RgnHandle b, RgnHandle target) {
  Store(target, Squares(a).intersected(Squares(b)));
}
void DiffRgn(RgnHandle a, RgnHandle b, RgnHandle target) {
  Store(target, Squares(a).subtracted(Squares(b)));
}
void XorRgn(RgnHandle a, RgnHandle b, RgnHandle target) {
  Store(target, Squares(a).xored(Squares(b)));
}

void OffsetRgn(RgnHandle region, short dh, short dv) {
  Store(region, Squares(region).translated(dh, dv));
}

Boolean EmptyRgn(RgnHandle region) {
  return Squares(region).isEmpty() ? 1 : 0;
}
Boolean EqualRgn(RgnHandle a, RgnHandle b) {
  return Squares(a).xored(Squares(b)).isEmpty() ? 1 : 0;
}
Boolean PtInRgn(Point point, RgnHandle region) {
  return Squares(region).contains(QPoint(point.h, point.v)) ? 1 : 0;
}

void OpenRgn() {
  PortState& state = CurrentState();
  if (!state.recording)
    HidePen();
  state.recording = std::make_unique<Recording>();
}

void CloseRgn(RgnHandle target) {
  PortState& state = CurrentState();
  if (!state.recording)
    return;
  ShowPen();
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
