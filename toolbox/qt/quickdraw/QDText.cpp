#include "QDText.h"

#include "Ink.h"
#include "TextStyle.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

double WidthOf(const QString& text) {
  if (!TB_HasDesktop() || text.isEmpty())
    return 0;
  return QFontMetricsF(PortFont(*CurrentPort())).horizontalAdvance(text);
}

} // namespace

QString ToQString(ConstStr255Param text) {
  return text != nullptr ? QString::fromUtf8(reinterpret_cast<const char*>(text + 1), text[0])
                         : QString();
}

QFont TextFontOf(short size, short face) {
  constexpr int FULL_SIZE = 13;
  QFont font = QGuiApplication::font();
  font.setPixelSize(size > 0 ? std::max(1, (size * 12 + 5) / 10) : FULL_SIZE);
  // Widths must not depend on the pixel ratio, so only heights are fitted to pixels.
  font.setHintingPreference(QFont::PreferVerticalHinting);
  font.setBold((face & bold) != 0);
  return font;
}

QFont PortFont(const GrafPort& port) {
  return TextFontOf(port.txSize, port.txFace);
}

PortPainter::PortPainter(PortState& state) : _state(state) {
  if (state.image.isNull())
    return;
  painter.begin(&state.image);
  const Rect& bounds = state.port->portRect;
  painter.setClipRegion(
      state.clip.intersected(ToQRect(bounds)).translated(-bounds.left, -bounds.top));
  painter.translate(-bounds.left, -bounds.top);
}

PortPainter::~PortPainter() {
  if (painter.isActive())
    painter.end();
  MarkDirty(_state, _state.deviceClip.boundingRect() & DeviceRect(_state, changed));
}

void TextFont(short font) {
  CurrentPort()->txFont = font;
}
void TextSize(short size) {
  CurrentPort()->txSize = size;
}
void TextFace(short face) {
  CurrentPort()->txFace = face;
}
void DrawString(ConstStr255Param text) {
  PortState& state = CurrentState();
  const QString string = ToQString(text);
  if (string.isEmpty() || !TB_HasDesktop())
    return;
  Point& place = state.port->pen.pnLoc;
  const double width = WidthOf(string);
  if (CanDraw(state.port) && !state.image.isNull()) {
    const QFont font = PortFont(*state.port);
    const QFontMetrics metrics(font);
    const QRect box(place.h - 2, place.v - metrics.ascent() - 1,
                    static_cast<int>(std::ceil(width)) + 4, metrics.height() + 2);
    PortPainter port(state);
    port.changed = box;
    port.painter.setFont(font);
    port.painter.setPen(QColor::fromRgb(ForegroundInk(state, box)));
    port.painter.drawText(QPointF(place.h, place.v), string);
  }
  place.h = CutToCoordinate(place.h + std::round(width));
}

short StringWidth(ConstStr255Param text) {
  return CutToCoordinate(std::ceil(WidthOf(ToQString(text))));
}
