#include "MacWindows.h"

#include "DialogWindow.h"

Boolean GetAuxWin(WindowPtr window, AuxWinHandle* record) {
  DialogWindow* dialog = DialogWindow::Of(window);
  *record = dialog != nullptr ? &dialog->auxiliaryMaster : nullptr;
  return dialog != nullptr ? 1 : 0;
}

void ShowWindow(WindowPtr window) {
  if (DialogWindow* dialog = DialogWindow::Of(window))
    dialog->Open();
}

void SetWRefCon(WindowPtr window, intptr_t value) {
  if (DialogWindow* dialog = DialogWindow::Of(window))
    dialog->refCon = value;
}

intptr_t GetWRefCon(WindowPtr window) {
  const DialogWindow* dialog = DialogWindow::Of(window);
  return dialog != nullptr ? dialog->refCon : 0;
}
