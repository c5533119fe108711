// A look behind the Toolbox for tests and screenshots, which know Qt.
#ifndef TOOLBOX_QT_ACCESS_H
#define TOOLBOX_QT_ACCESS_H

#include "QDPorts.h"

#include <QImage>
#include <QWidget>

// What has been drawn into a port, in device pixels: a copy.
TB_EXPORT QImage TB_PortImage(GrafPtr port);
// The window of a port, or null.
TB_EXPORT QWidget* TB_PortWindow(GrafPtr port);

#endif
