#include "QDRegions.h"

#include "HandleBlock.h"
#include "PortState.h"
#include "QDPorts.h"
#include "Raster.h"

namespace {

struct RegionRecord : MacRegion {
  QRegion squares;
};
typedef HandleBlock<MacRegion, RegionRecord> RegionBlock;

void Store(RgnHandle region, const QRegion& squares) {
  if (region == nullptr)
    return;
  auto& record = static_cast<RegionRecord&>(**region);
  record.squares = squares.intersected(WholePlane());
  record.rgnBBox = ToRect(record.squares.boundingRect());
}

} // namespace

const QRegion& RegionSquares(RgnHandle region) {
  static const QRegion empty;
  return region != nullptr ? static_cast<const RegionRecord&>(**region).squares : empty;
}

RgnHandle NewRgn() {
  return RegionBlock::New();
}

void DisposeRgn(RgnHandle region) {
  RegionBlock::Dispose(region);
}

void RectRgn(RgnHandle region, const Rect* rect) {
  Store(region, ToQRect(*rect));
}
void SectRgn(RgnHandle a, RgnHandle b, RgnHandle target) {
  Store(target, RegionSquares(a).intersected(RegionSquares(b)));
}
Boolean PtInRgn(Point point, RgnHandle region) {
  return RegionSquares(region).contains(QPoint(point.h, point.v)) ? 1 : 0;
}

void OpenRgn() {
  PortState& state = CurrentState();
  state.recording = std::make_unique<Recording>();
}

void CloseRgn(RgnHandle target) {
  PortState& state = CurrentState();
  if (!state.recording)
    return;
  Store(target, state.recording->framed.xored(SurroundedPixels(state.recording->lines)));
  state.recording.reset();
}

void GetClip(RgnHandle target) {
  Store(target, CurrentState().clip);
}
void SetClip(RgnHandle region) {
  SetPortClip(CurrentState(), RegionSquares(region));
}
void ClipRect(const Rect* rect) {
  SetPortClip(CurrentState(), ToQRect(*rect));
}

void AddPt(Point source, Point* target) {
  target->h = static_cast<short>(target->h + source.h);
  target->v = static_cast<short>(target->v + source.v);
}

Boolean EqualPt(Point a, Point b) {
  return a.h == b.h && a.v == b.v ? 1 : 0;
}
