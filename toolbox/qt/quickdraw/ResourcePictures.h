// Pictures of icons and cursors, from the program's resources. Private to this layer.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QPoint>

// What an icon's or a cursor's resource says.
struct ResourcePicture {
  QByteArray bytes; // of the SVG or PNG file; empty when there is none
  bool overlay = false;
  QPoint hotSpot;
  int size = 24;
};

ResourcePicture LoadResourcePicture(const char* type, short number);
// The picture drawn at that many pixels, transparent outside it; null when it cannot be read.
// themed: currentColor is the theme's text colour, else black.
QImage DrawResourcePicture(const ResourcePicture& picture, QSize size, bool themed);
