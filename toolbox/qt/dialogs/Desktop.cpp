#include "ToolboxDesktop.h"

#include "DialogWindow.h"
#include "DisplayCheck.h"
#include "Input.h"
#include "MessageWindows.h"

#include <QApplication>

namespace {

// What is not drawn by this layer (menus, alerts, the colour chooser, a host's windows) follows
// too.
void ForceScaleOfEverything() {
  if (ForcedRatio() > 1 && !qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
    qputenv("QT_SCALE_FACTOR", QByteArray::number(ForcedRatio()));
}

} // namespace

bool TB_StartDesktop(int& argc, char** argv) {
  if (QCoreApplication::instance() == nullptr) {
    if (!CanReachDisplay())
      return false;
    ForceScaleOfEverything();
    // Kept until the process ends: windows of a plug-in may still go at exit.
    [[maybe_unused]] static const QApplication* const application = new QApplication(argc, argv);
  }
  if (!TB_HasDesktop())
    return false;
  Input::Get();
  InstallMessageWindows();
  return true;
}
