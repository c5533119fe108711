#include "PixelMaps.h"

#include "Ink.h"
#include "TextStyle.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int64_t MAX_SIDE = 30000;

struct Sides {
  int64_t width, height;
};

Sides SidesOf(const CVRect32& rect) {
  return {static_cast<int64_t>(rect.right) - rect.left,
          static_cast<int64_t>(rect.bottom) - rect.top};
}

bool MakesSense(const CVPixelMap& map) {
  const Sides sides = SidesOf(map.bounds);
  if (map.baseAddress == nullptr || sides.width < 1 || sides.height < 1 || sides.width > MAX_SIDE ||
      sides.height > MAX_SIDE)
    return false;
  if (map.imageMode != CV_MODE_GRAY && map.imageMode != CV_MODE_RGB)
    return false;
  const int64_t planes = map.imageMode == CV_MODE_RGB ? 3 : 1;
  const int64_t planeBytes = planes == 1 ? 0 : map.planeBytes;
  if (map.columnBytes < 1 || planeBytes < 0 || (planes == 3 && planeBytes < 1))
    return false;
  const bool interleaved = planeBytes * (planes - 1) < map.columnBytes;
  return interleaved &&
         map.rowBytes >= (sides.width - 1) * map.columnBytes + planeBytes * (planes - 1) + 1;
}

bool HasMask(const CVPixelMap& map) {
  return map.version == 1 && map.mask != nullptr && map.mask->maskData != nullptr &&
         map.mask->columnBytes >= 1 &&
         map.mask->rowBytes >= (SidesOf(map.bounds).width - 1) * map.mask->columnBytes + 1;
}

// The part of the map as an image of its own. Null when memory is short.
QImage ToImage(const CVPixelMap& map, const QRect& part) {
  const bool masked = HasMask(map);
  QImage image(part.size(), masked ? QImage::Format_ARGB32 : QImage::Format_RGB32);
  if (image.isNull())
    return image;
  const int planeBytes = map.imageMode == CV_MODE_RGB ? map.planeBytes : 0;
  for (int y = 0; y < part.height(); ++y) {
    const ptrdiff_t row = part.top() + y;
    const uint8_t* from =
        map.baseAddress + row * map.rowBytes + ptrdiff_t{part.left()} * map.columnBytes;
    const uint8_t* mask = masked ? map.mask->maskData + row * map.mask->rowBytes +
                                       ptrdiff_t{part.left()} * map.mask->columnBytes
                                 : nullptr;
    auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < part.width(); ++x, from += map.columnBytes) {
      const int alpha = masked ? mask[ptrdiff_t{x} * map.mask->columnBytes] : 255;
      to[x] = qRgba(from[0], from[planeBytes], from[2 * ptrdiff_t{planeBytes}], alpha);
    }
  }
  return image;
}

} // namespace

int16_t ShowPixelMap(const CVPixelMap* map, const CVRect32* source, int32_t row, int32_t column) {
  if (map == nullptr || source == nullptr || !MakesSense(*map) || std::abs(int64_t{row}) > 32767 ||
      std::abs(int64_t{column}) > 32767)
    return paramErr;
  const int left = std::max(source->left, map->bounds.left);
  const int top = std::max(source->top, map->bounds.top);
  const int right = std::min(source->right, map->bounds.right);
  const int bottom = std::min(source->bottom, map->bounds.bottom);
  if (right <= left || bottom <= top)
    return noErr;
  PortState& state = CurrentState();
  if (!CanDraw(state.port) || state.image.isNull())
    return noErr;
  const QRect part(left - map->bounds.left, top - map->bounds.top, right - left, bottom - top);
  const QImage image = ToImage(*map, part);
  if (image.isNull())
    return memFullErr;
  const QRect place(static_cast<int>(column + (int64_t{left} - source->left)),
                    static_cast<int>(row + (int64_t{top} - source->top)), part.width(),
                    part.height());
  PortPainter port(state);
  port.changed = place;
  port.painter.setRenderHint(QPainter::SmoothPixmapTransform, state.ratio != 1);
  port.painter.drawImage(place, image);
  state.picture += state.clip.intersected(place).intersected(ToQRect(state.port->portRect));
  return noErr;
}
