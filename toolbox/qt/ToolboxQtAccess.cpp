#include "ToolboxQtAccess.h"

#include "DialogWindow.h"

QImage TB_PortImage(GrafPtr port) {
  return port->state->image.copy();
}

QWidget* TB_PortWindow(GrafPtr port) {
  return DialogWindow::Of(port);
}
