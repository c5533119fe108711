// corvaline: a small image editor around a filter plug-in.
#include "EditorOptions.h"
#include "EditorTexts.h"
#include "ImageFiles.h"
#include "MainWindow.h"

#include "ToolboxDesktop.h"
#include "failure.h"
#include "posix_file.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QMessageBox>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int REFUSED = 6;

// What the command line asks for, once the window stands.
void Begin(editor::MainWindow& window, const editor::EditorOptions& options) {
  if (!options.image.empty())
    window.open(QFile::decodeName(options.image.c_str()));
  else if (!options.style.empty())
    window.chooseAndOpen();
  if (!options.style.empty())
    window.applyStyle(QFile::decodeName(options.style.c_str()));
  if (options.dialog)
    window.runFilter(CVDialog::Yes);
}

int RunEditor(const editor::EditorOptions& options) {
  CVPlugin plugin;
  const CVResult loaded = editor::LoadFilter(plugin);
  editor::MainWindow window(plugin);
  window.restorePanels();
  window.show();
  if (!loaded.ok())
    QMessageBox::warning(&window, "Corvaline", QString::fromStdString(loaded.message));
  // The dialog runs events of its own, and needs the window on the screen below it.
  QTimer::singleShot(0, &window, [&] { Begin(window, options); });
  return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
  // What is printed must not land in a picture, should nobody have opened the standard files.
  if (!limn::HoldStandardFiles())
    return REFUSED;
  editor::EditorOptions options;
  if (const auto code = editor::ReadEditorOptions(argc, argv, options))
    return *code;
  // The editor's arguments are not the desktop's.
  static int desktopArgc = 1;
  if (!TB_StartDesktop(desktopArgc, argv)) {
    std::fputs("corvaline: there is no screen to open a window on\n", stderr);
    return REFUSED;
  }
  QApplication::setApplicationName("Corvaline");
  QApplication::setOrganizationName("Corvaline");
  QApplication::setDesktopFileName("corvaline");
  QApplication::setWindowIcon(QIcon(":/icons/corvaline.svg"));
  editor::UseSystemLanguage();
  try {
    editor::StartImageFiles();
    return RunEditor(options);
  } catch (const limn::Failure& failure) {
    std::fprintf(stderr, "corvaline: %s\n", failure.what());
    return static_cast<int>(failure.Code());
  }
}
