// Takes the pictures of the editor and of the filter's dialog for the documentation.
// usage: editor_screenshots PHOTO HEIGHTS light|dark SUFFIX FOLDER
#include "EditorTexts.h"
#include "ImageFiles.h"
#include "MainWindow.h"
#include "StylePanel.h"

#include "ToolboxDesktop.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QStyleFactory>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int MOST_PATIENCE = 20000; // in milliseconds, for the styles' pictures

QPalette DarkPalette() {
  const QColor window(46, 47, 51), base(33, 34, 37), text(232, 232, 234), faint(128, 129, 134);
  QPalette palette(window);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                          QPalette::ToolTipText, QPalette::BrightText}) {
    palette.setColor(role, text);
    palette.setColor(QPalette::Disabled, role, faint);
  }
  palette.setColor(QPalette::Base, base);
  palette.setColor(QPalette::AlternateBase, window);
  palette.setColor(QPalette::ToolTipBase, base);
  palette.setColor(QPalette::Highlight, QColor(214, 130, 60));
  palette.setColor(QPalette::HighlightedText, Qt::black);
  return palette;
}

void Settle() {
  for (int i = 0; i < 20; ++i)
    QApplication::processEvents(QEventLoop::AllEvents, 20);
}

// Lights the photograph, taking a picture of the dialog before OK.
bool Light(editor::MainWindow& window, const QString& picture) {
  bool saved = false;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr)
      return;
    poll.stop();
    QTimer::singleShot(700, dialog, [&saved, &picture, dialog] {
      saved = dialog->grab().save(picture);
      QKeyEvent accept(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
      QApplication::sendEvent(dialog, &accept);
    });
  });
  poll.start(20);
  return window.runFilter(CVDialog::Yes) && saved;
}

// A mask that leaves the corners of the picture out.
QImage SoftMask(QSize size) {
  QImage mask(size, QImage::Format_Grayscale8);
  mask.fill(0);
  const editor::Brush brush{size.height() * 11 / 10, editor::BrushInk::Select};
  const double middle = size.height() * 0.52;
  editor::PaintStroke(mask, {size.width() * 0.35, middle}, {size.width() * 0.65, middle}, brush);
  return mask;
}

bool TakePictures(const QStringList& arguments) {
  const QString& suffix = arguments.at(4);
  const QString& folder = arguments.at(5);
  CVPlugin plugin;
  if (const CVResult loaded = editor::LoadFilter(plugin); !loaded.ok())
    return false;
  editor::MainWindow window(plugin);
  window.resize(1180, 720);
  window.show();
  Settle();
  if (!window.open(arguments.at(1)) || !window.loadChannel(arguments.at(2)) ||
      !Light(window, folder + "/lighting-" + suffix + ".png"))
    return false;
  editor::EditorDocument& document = window.document();
  document.select({{}, SoftMask(document.size())});
  for (QAction* action : window.findChildren<QAction*>("brush"))
    action->trigger();
  editor::StylePanel& styles = window.styles();
  styles.show();
  QElapsedTimer sinceShown;
  sinceShown.start();
  const auto isReady = [&] { return styles.isUpToDate() && window.canvas().isUpToDate(); };
  while (!isReady() && !sinceShown.hasExpired(MOST_PATIENCE))
    QApplication::processEvents(QEventLoop::AllEvents, 50);
  return isReady() && window.grab().save(folder + "/editor-" + suffix + ".png");
}

} // namespace

int main(int argc, char** argv) {
  if (argc != 6 || !TB_StartDesktop(argc, argv)) {
    std::fputs("usage: editor_screenshots PHOTO HEIGHTS light|dark SUFFIX FOLDER\n", stderr);
    return 2;
  }
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  const QStringList arguments = QApplication::arguments();
  if (arguments.at(3) == "dark")
    QApplication::setPalette(DarkPalette());
  QApplication::setOrganizationName("Corvaline");
  QApplication::setApplicationName("Corvaline");
  editor::UseSystemLanguage();
  editor::StartImageFiles();
  if (TakePictures(arguments))
    return 0;
  std::fputs("editor_screenshots: a picture could not be taken\n", stderr);
  return 1;
}
