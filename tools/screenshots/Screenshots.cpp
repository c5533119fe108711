// Takes the pictures of the editor and of the filter's dialog for the documentation.
// usage: editor_screenshots light|dark SUFFIX FOLDER PHOTO [DIALOG'S-PHOTO HEIGHTS]
// With the suffix "film" the pictures are those of a moving one.
#include "EditorTexts.h"
#include "ImageFiles.h"
#include "MainWindow.h"
#include "StylePanel.h"

#include "ToolboxDesktop.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleFactory>
#include <QTimer>

#include <cmath>
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
  constexpr int POLLS_OF_DRAWING = 35; // until all of the dialog is drawn
  bool saved = false;
  int polls = 0;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || ++polls < POLLS_OF_DRAWING)
      return;
    poll.stop();
    saved = dialog->grab().save(picture);
    QKeyEvent accept(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(dialog, &accept);
  });
  poll.start(20);
  return window.runFilter(CVDialog::Yes) && saved;
}

// Waits until all that the window shows is there.
bool Await(editor::MainWindow& window) {
  QElapsedTimer since;
  since.start();
  const auto isReady = [&] {
    return window.canvas().isUpToDate() &&
           (!window.styles().isVisible() || window.styles().isUpToDate());
  };
  while (!isReady() && !since.hasExpired(MOST_PATIENCE))
    QApplication::processEvents(QEventLoop::AllEvents, 50);
  Settle();
  return isReady();
}

bool TakeDialog(const CVPlugin& plugin, const QString& photo, const QString& heights,
                const QString& picture) {
  editor::MainWindow window(plugin);
  window.show();
  Settle();
  return window.open(photo) && window.loadChannel(heights) && Light(window, picture);
}

bool TakeEditor(const CVPlugin& plugin, const QString& photo, const QString& picture) {
  editor::MainWindow window(plugin);
  window.resize(1240, 760);
  window.restorePanels();
  window.show();
  Settle();
  return window.open(photo) && window.applyStyle("Evening Lamp") && Await(window) &&
         window.grab().save(picture);
}

// A window's frames, with a pointer where the mouse is.
class Film {
public:
  Film(editor::MainWindow& window, QString folder) : _window(window), _folder(std::move(folder)) {}

  void send(QEvent::Type type, QPointF place, Qt::MouseButton button, Qt::MouseButtons buttons) {
    _place = place;
    QWidget* canvas = _window.canvas().viewport();
    QMouseEvent event(type, place, canvas->mapToGlobal(place), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(canvas, &event);
  }
  bool take() {
    if (!Await(_window))
      return false;
    QImage frame = _window.grab().toImage();
    QPainter painter(&frame);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(_window.canvas().viewport()->mapTo(&_window, _place));
    painter.setPen(QPen(Qt::white, 1.2));
    painter.setBrush(Qt::black);
    painter.drawPolygon(
        QPolygonF({{0, 0}, {0, 17}, {4, 13.5}, {6.8, 20}, {9.6, 18.8}, {6.8, 12.4}, {12, 12}}));
    painter.end();
    return frame.save(_folder + QString("/frame-%1.png").arg(_count++, 3, 10, QChar('0')));
  }

private:
  editor::MainWindow& _window;
  QString _folder;
  QPointF _place;
  int _count = 0;
};

// A lamp is dragged once around the photograph, so that the film can begin anew where it ends.
bool TakeFilm(const CVPlugin& plugin, const QString& photo, const QString& folder) {
  constexpr int FRAMES = 48;
  constexpr const char* LAMP = R"({
    "lights": [{"type": "omni", "color": [65535, 52428, 35389], "intensity": 62,
                "center": [-34, -30], "radius": 70}],
    "ambientColor": [48496, 60292, 65535], "ambientBrightness": -20, "material": 180, "gloss": 60,
    "bumpChannel": 1, "bumpAmplitude": 76, "relief": {"source": "auto"}})";
  editor::MainWindow window(plugin);
  window.resize(820, 640);
  window.styles().show();
  window.show();
  Settle();
  if (!window.open(photo) || !window.applyStyle(LAMP) || !Await(window))
    return false;
  const QPointF start = window.lightOverlay().placeOf(0, LM_HANDLE_CENTER);
  const QPointF middle = QRectF(window.canvas().viewport()->rect()).center();
  const QPointF away = start - middle;
  const QPointF across(-away.y(), away.x());
  Film film(window, folder);
  film.send(QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
  bool isTaken = true;
  for (int i = 0; isTaken && i < FRAMES; ++i) {
    const double turn = 2 * M_PI * i / FRAMES;
    const QPointF place = middle + away * std::cos(turn) + across * std::sin(turn);
    film.send(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton);
    isTaken = film.take();
  }
  film.send(QEvent::MouseButtonRelease, start, Qt::LeftButton, Qt::NoButton);
  return isTaken;
}

bool TakePictures(const QStringList& arguments) {
  CVPlugin plugin;
  if (const CVResult loaded = editor::LoadFilter(plugin); !loaded.ok())
    return false;
  const QString& suffix = arguments.at(2);
  const QString& folder = arguments.at(3);
  if (suffix == "film")
    return TakeFilm(plugin, arguments.at(4), folder);
  return TakeDialog(plugin, arguments.at(5), arguments.at(6),
                    folder + "/lighting-" + suffix + ".png") &&
         TakeEditor(plugin, arguments.at(4), folder + "/editor-" + suffix + ".png");
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 5 || !TB_StartDesktop(argc, argv)) {
    std::fputs("usage: editor_screenshots light|dark SUFFIX FOLDER PHOTO\n", stderr);
    return 2;
  }
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  const QStringList arguments = QApplication::arguments();
  if (arguments.at(1) == "dark")
    QApplication::setPalette(DarkPalette());
  QApplication::setOrganizationName("Corvaline");
  QApplication::setApplicationName("Corvaline");
  editor::UseSystemLanguage();
  editor::StartImageFiles();
  const bool isComplete = arguments.size() == (arguments.at(2) == "film" ? 5 : 7);
  if (isComplete && TakePictures(arguments))
    return 0;
  std::fputs("editor_screenshots: a picture could not be taken\n", stderr);
  return 1;
}
