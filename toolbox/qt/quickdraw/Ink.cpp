#include "Ink.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <cstring>

namespace {

constexpr QRgb COMPONENTS = 0x00FFFFFF;
constexpr QRgb OPAQUE = 0xFF000000;
constexpr QRgb WHITE = 0xFFFFFFFF;
constexpr QRgb DEFAULT_HIGHLIGHT = 0xFF99BBEE;

QRgb Mix(QRgb a, QRgb b, int weightOfB) {
  const auto component = [&](int shift) {
    const int from = static_cast<int>((a >> shift) & 255);
    const int to = static_cast<int>((b >> shift) & 255);
    return static_cast<QRgb>((from * (255 - weightOfB) + to * weightOfB + 127) / 255) << shift;
  };
  return OPAQUE | component(16) | component(8) | component(0);
}

QRgb PaletteColor(QPalette::ColorRole role, QRgb withoutDesktop) {
  return TB_HasDesktop() ? QGuiApplication::palette().color(role).rgb() | OPAQUE : withoutDesktop;
}

bool IsOnPicture(const PortState& state, const QRect& bounds) {
  const QRegion drawn = state.clip.intersected(bounds).intersected(ToQRect(state.port->portRect));
  return !drawn.isEmpty() && drawn.subtracted(state.picture).isEmpty();
}

// Neutral colours run from the text's to the window's.
QRgb ThemedColor(const RGBColor& color) {
  if (color.red != color.green || color.green != color.blue)
    return ExactColor(color);
  return Mix(ThemeTextColor(), ThemeWindowColor(), color.red >> 8);
}

QRgb AddComponents(QRgb a, QRgb b) {
  const QRgb redBlue = ((a & 0xFF00FF) + (b & 0xFF00FF)) & 0xFF00FF;
  const QRgb green = ((a & 0x00FF00) + (b & 0x00FF00)) & 0x00FF00;
  return OPAQUE | redBlue | green;
}

// One pixel of a mode; chosen outside the loops.
struct Exchange {
  QRgb background, highlight;
};

template <typename Operation>
void ForEachRow(PortState& state, const QRect& device, Operation operation) {
  const int left = DeviceEdge(state, state.port->portRect.left);
  const int top = DeviceEdge(state, state.port->portRect.top);
  for (int y = device.top(); y <= device.bottom(); ++y) {
    auto* row = reinterpret_cast<QRgb*>(state.image.scanLine(y - top));
    operation(row + (device.left() - left), y);
  }
}

template <typename Pixel> void ForEachPixel(PortState& state, const QRect& device, Pixel pixel) {
  ForEachRow(state, device, [&](QRgb* row, int) {
    for (int x = 0; x < device.width(); ++x)
      row[x] = pixel(row[x]);
  });
}

void ComposeRect(PortState& state, const QRect& device, const Ink& ink, const Exchange& exchange) {
  switch (ink.mode) {
  case patXor:
    return ForEachPixel(state, device, [&](QRgb old) { return old ^ (~ink.color & COMPONENTS); });
  case addOver:
    return ForEachPixel(state, device, [&](QRgb old) { return AddComponents(old, ink.color); });
  case hilite:
    return ForEachPixel(state, device, [&](QRgb old) {
      if (old == exchange.background)
        return exchange.highlight;
      return old == exchange.highlight ? exchange.background : old;
    });
  default:
    return ForEachPixel(state, device, [&](QRgb) { return ink.color | OPAQUE; });
  }
}

} // namespace

QRgb ExactColor(const RGBColor& color) {
  return qRgb(color.red >> 8, color.green >> 8, color.blue >> 8);
}

QRgb ThemeTextColor() {
  return PaletteColor(QPalette::WindowText, OPAQUE);
}

QRgb ThemeWindowColor() {
  return PaletteColor(QPalette::Window, WHITE);
}

QRgb BackgroundInk(const PortState& state) {
  return state.themed ? ThemeWindowColor() : WHITE;
}

QRgb ForegroundInk(const PortState& state, const QRect& bounds) {
  constexpr int FRAME_WEIGHT = 140;
  if (state.frameInk)
    return state.themed ? Mix(ThemeTextColor(), ThemeWindowColor(), FRAME_WEIGHT)
                        : qRgb(FRAME_WEIGHT, FRAME_WEIGHT, FRAME_WEIGHT);
  const RGBColor& color = state.port->rgbFgColor;
  return state.themed && !IsOnPicture(state, bounds) ? ThemedColor(color) : ExactColor(color);
}

Ink PenInk(const PortState& state, const QRect& bounds) {
  const PenState& pen = state.port->pen;
  if (pen.usesPixPat)
    return {ExactColor(pen.patternColor), pen.pnMode};
  const bool exact = pen.pnMode == patXor || pen.pnMode == addOver;
  if (std::memcmp(&pen.pnPat, &qd.white, sizeof(Pattern)) == 0)
    return {exact ? WHITE : BackgroundInk(state), pen.pnMode};
  return {exact ? ExactColor(state.port->rgbFgColor) : ForegroundInk(state, bounds), pen.pnMode};
}

bool NeedsHardEdges(short mode) {
  return mode == patXor || mode == hilite;
}

void ComposeRects(PortState& state, const QRect* begin, const QRect* end, const Ink& ink) {
  const Exchange exchange = {BackgroundInk(state),
                             PaletteColor(QPalette::Highlight, DEFAULT_HIGHLIGHT)};
  QRect changed;
  for (const QRect* rect = begin; rect != end; ++rect) {
    for (const QRect& part : state.deviceClip) {
      const QRect visible = rect->intersected(part);
      if (visible.isEmpty())
        continue;
      ComposeRect(state, visible, ink, exchange);
      changed |= visible;
    }
  }
  MarkDirty(state, changed);
}

void ComposeRegion(PortState& state, const QRegion& device, const Ink& ink) {
  ComposeRects(state, device.begin(), device.end(), ink);
}

void ComposePath(PortState& state, const QPainterPath& path, const Ink& ink) {
  const QRect bounds =
      path.boundingRect().toAlignedRect().intersected(state.deviceClip.boundingRect());
  if (bounds.isEmpty())
    return;
  QImage coverage(bounds.size(), QImage::Format_Alpha8);
  if (coverage.isNull())
    return;
  coverage.fill(0);
  QPainter painter(&coverage);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(-bounds.topLeft());
  painter.fillPath(path, Qt::black);
  painter.end();
  for (const QRect& part : state.deviceClip.intersected(bounds)) {
    ForEachRow(state, part, [&](QRgb* row, int y) {
      const uchar* cover = coverage.constScanLine(y - bounds.top()) + part.left() - bounds.left();
      for (int x = 0; x < part.width(); ++x) {
        const QRgb full = ink.mode == addOver ? AddComponents(row[x], ink.color) : ink.color;
        row[x] = Mix(row[x], full, cover[x]);
      }
    });
  }
  MarkDirty(state, bounds);
}
