#include "QDPictures.h"

#include "Ink.h"
#include "QDShapes.h"
#include "ResourcePictures.h"
#include "TextStyle.h"

#include <new>

namespace {

struct CIconBlock {
  CIcon* master;
  CIcon icon;
};

struct GWorldPixels {
  QImage image;
  QRect source; // in its pixels
};

// The pixels of a port within a rectangle of its units, copied so that a port may be copied to
// itself.
GWorldPixels TakePixels(const BitMap& map, const Rect& rect) {
  if (map.port == nullptr || map.port->state == nullptr)
    return {};
  const PortState& state = *map.port->state;
  const QRect origin = DeviceRect(state, ToQRect(map.port->portRect));
  const QRect device = DeviceRect(state, ToQRect(rect)).translated(-origin.topLeft());
  QImage image = state.image.copy(device);
  image.setDevicePixelRatio(1);
  return {image, image.rect()};
}

} // namespace

CIconHandle GetCIcon(short iconID) {
  if (!HasResourcePicture("cicn", iconID))
    return nullptr;
  auto* block = new (std::nothrow) CIconBlock{};
  if (block == nullptr)
    return nullptr;
  block->master = &block->icon;
  block->icon.iconID = iconID;
  return &block->master;
}

void DisposeCIcon(CIconHandle icon) {
  delete reinterpret_cast<CIconBlock*>(icon);
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

void CopyBits(const BitMap* source, const BitMap* target, const Rect* sourceRect,
              const Rect* targetRect, short mode, RgnHandle mask) {
  if (target == nullptr || target->port == nullptr || EmptyRect(targetRect))
    return;
  PortState& state = *target->port->state;
  QRegion part = ToQRect(*targetRect);
  if (mask != nullptr)
    part &= RegionSquares(mask);
  if (mode == hilite || mode == patXor || mode == srcXor) {
    if (CanDraw(state.port))
      ComposeRegion(state, DeviceRegion(state, part), Ink{0xFF000000, mode});
    return;
  }
  if (source == nullptr || EmptyRect(sourceRect) || !CanDraw(state.port))
    return;
  const GWorldPixels pixels = TakePixels(*source, *sourceRect);
  if (pixels.image.isNull())
    return;
  PortPainter port(state);
  if (!port.painter.isActive())
    return;
  port.changed = ToQRect(*targetRect);
  port.painter.setClipRegion(part, Qt::IntersectClip);
  port.painter.setRenderHint(QPainter::SmoothPixmapTransform);
  port.painter.drawImage(port.changed, pixels.image, pixels.source);
}

GWorldPtr NewPortWithRatio(const Rect* bounds, double pixelRatio) {
  return NewPort(*bounds, pixelRatio, false);
}

OSErr NewGWorld(GWorldPtr* world, short pixelDepth, const Rect* bounds, void*, void*, uint32_t) {
  *world = NewPortWithRatio(bounds, 1);
  if (*world == nullptr)
    return memFullErr;
  if (pixelDepth > 0)
    (**(*world)->portPixMap).pixelSize = pixelDepth;
  return noErr;
}

void DisposeGWorld(GWorldPtr world) {
  DisposePort(world);
}
