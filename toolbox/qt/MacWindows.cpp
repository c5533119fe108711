#include "MacWindows.h"

#include "DialogWindow.h"
#include "EventQueue.h"
#include "MacStrings.h"
#include "TextStyle.h"

#include <algorithm>
#include <cmath>

namespace {

QRegion PortSquares(const Rect* rect) {
  return QRegion(ToQRect(*rect));
}

int16_t Cut(double value) {
  return static_cast<int16_t>(std::clamp(value, -32768.0, 32767.0));
}

} // namespace

Point ToLocal(const GrafPort& port, QPointF global) {
  if (const DialogWindow* window = DialogWindow::Of(&port))
    global = (global - window->mapToGlobal(QPointF(0, 0))) / window->scale();
  return Point{Cut(std::floor(global.y())), Cut(std::floor(global.x()))};
}

Point GlobalOrigin(const GrafPort& port) {
  const DialogWindow* window = DialogWindow::Of(&port);
  const QPoint origin = window != nullptr ? window->mapToGlobal(QPoint(0, 0)) : QPoint(0, 0);
  return Point{Cut(origin.y()), Cut(origin.x())};
}

void GlobalToLocal(Point* point) {
  SubPt(GlobalOrigin(*CurrentPort()), point);
}
void LocalToGlobal(Point* point) {
  AddPt(GlobalOrigin(*CurrentPort()), point);
}

WindowPtr WindowToUpdate() {
  for (DialogWindow* window : DialogWindow::All()) {
    if (!window->isOpen())
      continue;
    window->FollowScreen();
    if (!window->port()->state->update.isEmpty())
      return window->port();
  }
  return nullptr;
}

Boolean GetAuxWin(WindowPtr window, AuxWinHandle* record) {
  DialogWindow* dialog = DialogWindow::Of(window);
  *record = dialog != nullptr ? &dialog->auxiliaryMaster : nullptr;
  return dialog != nullptr ? 1 : 0;
}

void ShowWindow(WindowPtr window) {
  if (DialogWindow* dialog = DialogWindow::Of(window))
    dialog->Open();
}

void HideWindow(WindowPtr window) {
  if (DialogWindow* dialog = DialogWindow::Of(window))
    dialog->Close();
}

void SelectWindow(WindowPtr window) {
  if (DialogWindow* dialog = DialogWindow::Of(window)) {
    dialog->raise();
    dialog->activateWindow();
  }
}

Boolean IsWindowVisible(WindowPtr window) {
  const DialogWindow* dialog = DialogWindow::Of(window);
  return dialog != nullptr && dialog->isOpen() ? 1 : 0;
}

WindowPtr FrontWindow() {
  const auto& windows = DialogWindow::All();
  const auto front = std::find_if(windows.rbegin(), windows.rend(),
                                  [](const DialogWindow* window) { return window->isOpen(); });
  return front != windows.rend() ? (*front)->port() : nullptr;
}

void SetWTitle(WindowPtr window, ConstStr255Param title) {
  if (DialogWindow* dialog = DialogWindow::Of(window))
    dialog->setWindowTitle(ToQString(title));
}

void GetWTitle(WindowPtr window, Str255 title) {
  const DialogWindow* dialog = DialogWindow::Of(window);
  const std::string text = dialog != nullptr ? dialog->windowTitle().toStdString() : std::string();
  PLstrcpy(title, TB_PString(text));
}

void SetWRefCon(WindowPtr window, intptr_t value) {
  if (DialogWindow* dialog = DialogWindow::Of(window))
    dialog->refCon = value;
}

intptr_t GetWRefCon(WindowPtr window) {
  const DialogWindow* dialog = DialogWindow::Of(window);
  return dialog != nullptr ? dialog->refCon : 0;
}

void InvalRect(const Rect* rect) {
  if (DialogWindow* dialog = DialogWindow::Of(CurrentPort()))
    dialog->Invalidate(PortSquares(rect));
}

void ValidRect(const Rect* rect) {
  CurrentState().update -= PortSquares(rect);
}
