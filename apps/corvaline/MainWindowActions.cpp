// The window's menus, tool bar and status bar.
#include "MainWindow.h"

#include "ThemeIcons.h"

#include <QApplication>
#include <QMenuBar>
#include <QSettings>
#include <QSpinBox>
#include <QToolBar>

namespace editor {
namespace {

constexpr int BRUSH_STEP_PERCENT = 20;

int Larger(int diameter) {
  return diameter + 1 + diameter * BRUSH_STEP_PERCENT / 100;
}

int Smaller(int diameter) {
  return diameter - 1 - diameter * BRUSH_STEP_PERCENT / 120;
}

} // namespace

template <typename Slot>
QAction* MainWindow::_add(QMenu* menu, const QString& icon, const QString& text,
                          const QList<QKeySequence>& shortcuts, const QString& tip, Needs needs,
                          Slot slot) {
  QAction* action = menu->addAction(text);
  action->setObjectName(icon);
  action->setShortcuts(shortcuts);
  action->setStatusTip(tip);
  const QString keys = shortcuts.isEmpty()
                           ? QString()
                           : " (" + shortcuts.first().toString(QKeySequence::NativeText) + ")";
  action->setToolTip(tip + keys);
  connect(action, &QAction::triggered, this, slot);
  if (needs == Needs::Image)
    _imageActions << action;
  if (needs == Needs::Light)
    _lightActions << action;
  return action;
}

void MainWindow::_makeFileMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&File"));
  _open = _add(menu, "open", tr("&Open…"), {QKeySequence::Open}, tr("Open an image"),
               Needs::Nothing, &MainWindow::chooseAndOpen);
  _recent = new RecentFiles(tr("Open &Recent"), menu);
  menu->addMenu(_recent);
  connect(_recent, &RecentFiles::chosen, this, &MainWindow::open, Qt::QueuedConnection);
  menu->addSeparator();
  _save =
      _add(menu, "save", tr("&Save"), {QKeySequence::Save},
           tr("Save the image with what its file says about it"), Needs::Image, &MainWindow::save);
  _add(menu, "", tr("Save &As…"), {QKeySequence("Ctrl+Shift+S")},
       tr("Save the image under another name or in another format"), Needs::Image,
       &MainWindow::saveAs);
  _add(menu, "", tr("Save &Recipe…"), {QKeySequence("Ctrl+Alt+S")},
       tr("Save how the image is lit beside it, so that its lights come back with it"),
       Needs::Light, &MainWindow::chooseAndSaveRecipe);
  menu->addSeparator();
  _add(menu, "", tr("&Close"), {QKeySequence("Ctrl+W")}, tr("Close this window"), Needs::Nothing,
       &MainWindow::close);
  _add(menu, "", tr("&Quit"), {QKeySequence("Ctrl+Q")}, tr("Close the editor's windows"),
       Needs::Nothing, &QApplication::closeAllWindows);
}

void MainWindow::_makeEditMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Edit"));
  _undo = _add(menu, "undo", tr("&Undo %1").arg(QString()),
               QKeySequence::keyBindings(QKeySequence::Undo), tr("Take the last change back"),
               Needs::Nothing, [this] {
                 _lights->flush();
                 _document.undo();
               });
  _redo = _add(menu, "redo", tr("&Redo %1").arg(QString()),
               {QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")},
               tr("Make the change again that was taken back"), Needs::Nothing, [this] {
                 _lights->flush();
                 _document.redo();
               });
  menu->addSeparator();
  _add(menu, "", tr("&Copy Command"), {QKeySequence("Ctrl+Alt+C")},
       tr("Copy the limn apply command that lights the image like this again"), Needs::Light,
       &MainWindow::chooseAndCopyCommand);
  menu->addSeparator();
  _add(menu, "", tr("Select &All"), {QKeySequence::SelectAll}, tr("Select the whole image"),
       Needs::Image, [this] {
         _document.select({_document.bounds(), {}});
       });
  _add(menu, "", tr("&Deselect"), {QKeySequence("Ctrl+D")},
       tr("Remove the rectangle and the painted mask"), Needs::Image,
       [this] { _document.select({}); });
  menu->addSeparator();
  _add(menu, "", tr("Load Cha&nnel…"), {QKeySequence("Ctrl+Shift+C")},
       tr("Load a grey image as a further channel, such as the heights of a relief"), Needs::Image,
       &MainWindow::chooseAndLoadChannel);
  menu->addSeparator();
  _makeTools(menu);
}

void MainWindow::_makeTools(QMenu* menu) {
  const struct {
    const char* icon;
    QString text;
    const char* key;
    QString tip;
    Tool tool;
  } tools[] = {
      {"hand", tr("&Hand"), "H", tr("Move the view by dragging"), Tool::Hand},
      {"rectangle", tr("Rec&tangle"), "M", tr("Select a rectangle; a click removes it"),
       Tool::Rectangle},
      {"brush", tr("&Brush"), "B", tr("Paint what is selected; with Alt or Ctrl take away"),
       Tool::Brush},
  };
  _tools = new QActionGroup(this);
  for (const auto& [icon, text, key, tip, tool] : tools) {
    QAction* action = _add(menu, icon, text, {QKeySequence(key)}, tip, Needs::Image,
                           [this, tool = tool] { _canvas->setTool(tool); });
    action->setCheckable(true);
    _tools->addAction(action)->setChecked(tool == _canvas->tool());
  }
  _add(menu, "", tr("&Larger Brush"), {QKeySequence("]"), QKeySequence(".")},
       tr("Make the brush larger"), Needs::Image,
       [this] { _canvas->setBrushDiameter(Larger(_canvas->brush().diameter)); });
  _add(menu, "", tr("S&maller Brush"), {QKeySequence("["), QKeySequence(",")},
       tr("Make the brush smaller"), Needs::Image,
       [this] { _canvas->setBrushDiameter(Smaller(_canvas->brush().diameter)); });
}

void MainWindow::_addPanel(QMenu* menu, QDockWidget* panel, Qt::DockWidgetArea side,
                           const QString& text, Qt::Key key, const QString& tip) {
  addDockWidget(side, panel);
  panel->hide();
  QAction* toggle = panel->toggleViewAction();
  toggle->setText(text);
  toggle->setShortcut(key);
  toggle->setStatusTip(tip);
  menu->addAction(toggle);
  connect(toggle, &QAction::toggled, this, [this, panel](bool isShown) {
    if (!isVisible())
      return;
    QSettings().setValue(panel->objectName(), isShown);
    (isShown ? panel->widget() : _canvas)->setFocus();
  });
}

void MainWindow::restorePanels() {
  for (auto* panel : findChildren<QDockWidget*>())
    panel->setVisible(QSettings().value(panel->objectName(), true).toBool());
}

void MainWindow::_makeViewMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&View"));
  _add(menu, "", tr("Zoom &In"), {QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")},
       tr("Show the image larger"), Needs::Image, [this] { _canvas->zoomIn(); });
  _add(menu, "", tr("Zoom &Out"), {QKeySequence("Ctrl+-")}, tr("Show the image smaller"),
       Needs::Image, [this] { _canvas->zoomOut(); });
  _fit = _add(menu, "fit", tr("&Fit to Window"), {QKeySequence("Ctrl+0")},
              tr("Show the whole image"), Needs::Image, [this] { _canvas->zoomToFit(); });
  _add(menu, "", tr("&Actual Size"), {QKeySequence("Ctrl+1")},
       tr("Show each pixel of the image as one of the screen"), Needs::Image,
       [this] { _canvas->setZoom(1.0); });
  menu->addSeparator();
  // The key works while it is held, so it is no shortcut; the menu shows it as one.
  _original =
      _add(menu, "original", tr("&Before") + "\tO", {},
           tr("Show the image without light; hold O for a short look"), Needs::Image, [] {});
  _original->setCheckable(true);
  connect(_original, &QAction::toggled, _canvas, &Canvas::showOriginal);
  _add(menu, "", tr("Before and Af&ter"), {QKeySequence("Y")},
       tr("Show the image without light to the left of a line; drag the line"), Needs::Image,
       [this](bool show) { _canvas->showSplit(show); })
      ->setCheckable(true);
  _add(menu, "", tr("&Clipped Pixels"), {QKeySequence("K")},
       tr("Mark pixels that are burnt (red) or drowned (blue)"), Needs::Image,
       [this](bool mark) { _canvas->markEnds(mark); })
      ->setCheckable(true);
  menu->addSeparator();
  _makeStylePanel(menu);
  _makeLights(menu);
}

void MainWindow::_makeLightMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Light"));
  _add(menu, "", tr("&Bake"), {QKeySequence("Ctrl+B")},
       tr("Make the light pixels, so that more light can be put on top"), Needs::Light,
       &MainWindow::bake);
  _add(menu, "", tr("&Save Style…"), {QKeySequence("Ctrl+Alt+T")},
       tr("Save the lights as a style, for other images too"), Needs::Light,
       &MainWindow::chooseAndSaveStyle);
  menu->addSeparator();
  _add(menu, "", tr("&Remove Light"), {QKeySequence("Ctrl+Shift+L")},
       tr("Show and save the image without light"), Needs::Light,
       [this] { _document.keep(_document.withoutLights(), tr("Remove Light")); });
}

void MainWindow::_makeFilterMenu() {
  QMenu* menu = menuBar()->addMenu(tr("Fil&ter"));
  _repeat = _add(menu, "repeat", tr("&Repeat"), {QKeySequence("Ctrl+F")},
                 tr("Make the light pixels, and light the image again with the same settings"),
                 Needs::Nothing, [this] { runFilter(CVDialog::No); });
  menu->addSeparator();
  _lighting =
      _add(menu, "lighting", tr("&Lighting…"), {QKeySequence("Ctrl+L")},
           tr("Put lights on the image"), Needs::Nothing, [this] { runFilter(CVDialog::Yes); });
}

void MainWindow::_makeHelpMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Help"));
  _add(menu, "", tr("&Pages"), {QKeySequence::HelpContents}, tr("Read how pictures are lit"),
       Needs::Nothing, &MainWindow::showHelp);
  _add(menu, "", tr("&About Lighting…"), {}, tr("Say what puts light on images"), Needs::Nothing,
       [this] { _isDone(_filter.about()); })
      ->setEnabled(_filter.isLoaded());
}

void MainWindow::_makeToolBar() {
  QToolBar* bar = addToolBar(tr("Tools"));
  bar->setMovable(false);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->setIconSize({24, 24});
  bar->addActions({_open, _save});
  bar->addSeparator();
  bar->addActions({_undo, _redo});
  bar->addSeparator();
  bar->addActions(_tools->actions());
  auto* brushSize = new QSpinBox(bar);
  brushSize->setRange(1, Canvas::MAX_BRUSH);
  brushSize->setValue(_canvas->brush().diameter);
  brushSize->setSuffix(tr(" px"));
  brushSize->setToolTip(tr("Diameter of the brush ([ and ])"));
  brushSize->setAccessibleName(tr("Diameter of the brush"));
  bar->addWidget(brushSize);
  connect(brushSize, &QSpinBox::valueChanged, _canvas, &Canvas::setBrushDiameter);
  connect(_canvas, &Canvas::brushChanged, brushSize, &QSpinBox::setValue);
  bar->addSeparator();
  bar->addActions({_fit, _original});
  bar->addSeparator();
  bar->addActions({_lighting, _repeat});
}

void MainWindow::_useIcons() {
  for (QAction* action : findChildren<QAction*>())
    if (!action->objectName().isEmpty())
      action->setIcon(ThemeIcon(action->objectName(), palette()));
}

} // namespace editor
