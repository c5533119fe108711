#include "ImageFiles.h"

#include "ToolboxDesktop.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QTemporaryDir home;
  // Recent files and styles of the person who runs the tests stay out of it.
  for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
    qputenv(variable, home.path().toLocal8Bit());
  testing::InitGoogleTest(&argc, argv);
  if (!TB_StartDesktop(argc, argv)) {
    std::fputs("no screen to test on\n", stderr);
    return 1;
  }
  QCoreApplication::setOrganizationName("Corvaline");
  QCoreApplication::setApplicationName("Corvaline");
  editor::StartImageFiles();
  return RUN_ALL_TESTS();
}
