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
#include <QFileInfo>
#include <QIcon>
#include <QMessageBox>
#include <QPointer>

#include <cstdio>
#include <vector>

namespace {

// The windows, which end when they are closed.
class Windows {
public:
  explicit Windows(CVPlugin plugin) : _plugin(std::move(plugin)) {}
  ~Windows() {
    for (const QPointer<editor::MainWindow>& window : _all)
      delete window;
  }
  Windows(const Windows&) = delete;
  Windows& operator=(const Windows&) = delete;

  editor::MainWindow& add() {
    auto* window = new editor::MainWindow(_plugin);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->restorePanels();
    window->show();
    _all.emplace_back(window);
    return *window;
  }
  // One that shows this picture, as it is in its file; else one without a picture.
  editor::MainWindow& of(const QString& picture) {
    editor::MainWindow* free = nullptr;
    for (const QPointer<editor::MainWindow>& window : _all) {
      if (window == nullptr)
        continue;
      const editor::EditorDocument& document = window->document();
      if (document.isEmpty())
        free = window;
      else if (QFileInfo(document.path()) == QFileInfo(picture) && !document.isModified())
        return *window;
    }
    return free != nullptr ? *free : add();
  }

private:
  CVPlugin _plugin;
  std::vector<QPointer<editor::MainWindow>> _all;
};

void Open(editor::MainWindow& window, const std::string& image,
          const editor::EditorOptions& options) {
  if (!image.empty())
    window.open(QFile::decodeName(image.c_str()));
  else if (!options.style.empty())
    window.chooseAndOpen();
  if (!options.style.empty())
    window.applyStyle(QFile::decodeName(options.style.c_str()));
  if (options.dialog)
    window.runFilter(CVDialog::Yes);
}

// What the command line asks for, once the first window stands.
void Begin(Windows& windows, const editor::EditorOptions& options) {
  std::vector<std::string> images = options.images;
  if (images.empty())
    images.emplace_back();
  for (size_t i = 0; i < images.size(); ++i)
    Open(i == 0 ? windows.of({}) : windows.add(), images[i], options);
  for (editor::LostLights& lost : editor::FindLostLights()) {
    editor::MainWindow& window = windows.of(lost.picture);
    window.offer(std::move(lost));
  }
}

int RunEditor(const editor::EditorOptions& options) {
  CVPlugin plugin;
  const CVResult loaded = editor::LoadFilter(plugin);
  Windows windows(plugin);
  editor::MainWindow& first = windows.add();
  if (!loaded.ok())
    QMessageBox::warning(&first, "Corvaline", QString::fromStdString(loaded.message));
  // The dialog runs events of its own, and needs the window on the screen below it.
  QMetaObject::invokeMethod(
      &first, [&] { Begin(windows, options); }, Qt::QueuedConnection);
  return QApplication::exec();
}

int Run(int argc, char** argv) {
  // What is printed must not land in a picture, should nobody have opened the standard files.
  if (!limn::HoldStandardFiles())
    return static_cast<int>(limn::ExitCode::Refused);
  editor::EditorOptions options;
  if (const auto code = editor::ReadEditorOptions(argc, argv, options))
    return *code;
  // The editor's arguments are not the desktop's.
  static int desktopArgc = 1;
  if (!TB_StartDesktop(desktopArgc, argv))
    throw limn::Failure(limn::ExitCode::Refused, "there is no screen to open a window on");
  QApplication::setApplicationName("Corvaline");
  QApplication::setOrganizationName("Corvaline");
  QApplication::setDesktopFileName("corvaline");
  QApplication::setWindowIcon(QIcon(":/icons/corvaline.svg"));
  editor::UseSystemLanguage();
  editor::StartImageFiles();
  return RunEditor(options);
}

} // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (...) {
    const limn::Failure failure = limn::CaughtFailure();
    std::fprintf(stderr, "corvaline: %s\n", failure.what());
    return static_cast<int>(failure.Code());
  }
}
