// corvaline: a small image editor around a filter plug-in.
#include "EditorTexts.h"
#include "ImageFiles.h"
#include "MainWindow.h"

#include "ToolboxDesktop.h"
#include "failure.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>

#include <cstdio>
#include <cstring>

namespace {

constexpr const char* USAGE =
    "usage: corvaline [IMAGE]\n"
    "\n"
    "Opens an image to light it. --version shows the version, --help this text.\n";

constexpr int WRONG_USAGE = 2;
constexpr int REFUSED = 6;

// The exit code of a command line that opens no window, or -1.
int AnswerWithoutWindow(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0)
      return std::fputs(USAGE, stdout) < 0 ? 1 : 0;
    if (std::strcmp(argv[i], "--version") == 0)
      return std::puts("corvaline " LIMN_VERSION) < 0 ? 1 : 0;
  }
  return -1;
}

int RunEditor(const QString& path) {
  CVPlugin plugin;
  const CVResult loaded = editor::LoadFilter(plugin);
  editor::MainWindow window(plugin);
  window.show();
  if (!loaded.ok())
    QMessageBox::warning(&window, "Corvaline", QString::fromStdString(loaded.message));
  if (!path.isEmpty())
    window.open(path);
  return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
  if (const int code = AnswerWithoutWindow(argc, argv); code >= 0)
    return code;
  if (!TB_StartDesktop(argc, argv)) {
    std::fputs("corvaline: there is no screen to open a window on\n", stderr);
    return REFUSED;
  }
  const QStringList arguments = QApplication::arguments().mid(1);
  const bool wrongOption =
      !arguments.isEmpty() && arguments.first().startsWith('-') && arguments.first() != "--";
  const QStringList images = arguments.mid(arguments.value(0) == "--" ? 1 : 0);
  if (wrongOption || images.size() > 1) {
    std::fputs(USAGE, stderr);
    return WRONG_USAGE;
  }
  QApplication::setApplicationName("Corvaline");
  QApplication::setOrganizationName("Corvaline");
  QApplication::setWindowIcon(QIcon(":/icons/corvaline.svg"));
  editor::UseSystemLanguage();
  try {
    editor::StartImageFiles();
    return RunEditor(images.value(0));
  } catch (const limn::Failure& failure) {
    std::fprintf(stderr, "corvaline: %s\n", failure.what());
    return static_cast<int>(failure.Code());
  }
}
