#include "QDPictures.h"

#include "HandleBlock.h"
#include "Ink.h"
#include "MacResources.h"
#include "QDShapes.h"
#include "ResourcePictures.h"
#include "TextStyle.h"

CIconHandle GetCIcon(short iconID) {
  const CIconHandle icon =
      TB_Resource("cicn", iconID) != nullptr ? HandleBlock<CIcon>::New() : nullptr;
  if (icon != nullptr)
    (**icon).iconID = iconID;
  return icon;
}

void DisposeCIcon(CIconHandle icon) {
  HandleBlock<CIcon>::Dispose(icon);
}

void PlotCIcon(const Rect* rect, CIconHandle icon) {
  PortState& state = CurrentState();
  if (icon == nullptr || !CanDraw(state.port) || EmptyRect(rect) || state.image.isNull())
    return;
  const ResourcePicture picture = LoadResourcePicture("cicn", (**icon).iconID);
  if (!picture.overlay)
    EraseRect(rect);
  const QRect device = DeviceRect(state, ToQRect(*rect));
  const QImage image = DrawResourcePicture(picture, device.size(), state.themed);
  if (image.isNull())
    return;
  PortPainter port(state);
  port.changed = ToQRect(*rect);
  port.painter.drawImage(port.changed, image);
}

const BitMap* GetPortBitMapForCopyBits(CGrafPtr port) {
  return &port->portBits;
}

void CopyBits(const BitMap*, const BitMap* target, const Rect*, const Rect* targetRect, short mode,
              RgnHandle mask) {
  if (mode != hilite || target == nullptr || target->port == nullptr || EmptyRect(targetRect) ||
      !CanDraw(target->port))
    return;
  PortState& state = *target->port->state;
  QRegion part = ToQRect(*targetRect);
  if (mask != nullptr)
    part &= RegionSquares(mask);
  ComposeRegion(state, DeviceRegion(state, part), Ink{0xFF000000, mode});
}
