// Drawing into a port with a QPainter: text, controls, pictures. Private to this layer.
#pragma once

#include "PortState.h"

#include <QFont>
#include <QPainter>
#include <QString>

QString ToQString(ConstStr255Param text);
// The font of a text size and face, and of a port's.
QFont TextFontOf(short size, short face);
QFont PortFont(const GrafPort& port);

// A painter in a port's units, clipped as the port is. Inactive on a port without pixels.
class PortPainter {
public:
  explicit PortPainter(PortState& state);
  ~PortPainter();
  PortPainter(const PortPainter&) = delete;
  PortPainter& operator=(const PortPainter&) = delete;

  QPainter painter;
  QRect changed; // what the drawing may have touched, in units; to be set by the user

private:
  PortState& _state;
};
