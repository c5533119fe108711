#include "ToolboxDesktop.h"

#include "DisplayCheck.h"
#include "Input.h"
#include "MessageWindows.h"

#include <QApplication>

bool TB_HasDesktop() {
  return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

bool TB_StartDesktop(int& argc, char** argv) {
  if (QCoreApplication::instance() == nullptr) {
    if (!CanReachDisplay())
      return false;
    // Kept until the process ends: windows of a plug-in may still go at exit.
    [[maybe_unused]] static const QApplication* const application = new QApplication(argc, argv);
  }
  if (!TB_HasDesktop())
    return false;
  Input::Get();
  InstallMessageWindows();
  return true;
}

void TB_RunEvents(int milliseconds) {
  if (Input* input = Input::Get())
    input->Pump(milliseconds);
}
