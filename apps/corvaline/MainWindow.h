// The editor's window: one image, its menus and its tool bar.
#pragma once

#include "Canvas.h"
#include "EditorDocument.h"
#include "FilterRunner.h"
#include "LightOverlay.h"
#include "LightPanel.h"
#include "RecentFiles.h"
#include "Recovery.h"
#include "StylePanel.h"

#include <QActionGroup>
#include <QKeySequence>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>

#include <functional>

namespace editor {

class MainWindow : public QMainWindow {
  Q_OBJECT

public:
  // plugin: the filter; when it is not loaded its menu entries are disabled.
  explicit MainWindow(CVPlugin plugin);
  ~MainWindow() override;

  // These tell the user what went wrong and answer whether it went well. Opening asks first what to
  // do with unsaved changes.
  bool open(const QString& path);
  bool saveTo(const QString& path);
  // Writes how the picture is lit, and its mask beside that.
  bool saveRecipe(const QString& path);
  // Asks whether to bring back what a program that ended has kept; the answer is the last one.
  void offer(LostLights lost);
  bool loadChannel(const QString& path);
  // Lighting… with Yes, Repeat with No.
  bool runFilter(CVDialog dialog);
  // Lights the image with a style: a style file, its JSON form, or a style's name.
  bool applyStyle(const QString& name);
  // Writes the recipe's style: a style file, or JSON where the name ends in .json. What a style
  // file has no room for is left out of it.
  bool saveStyle(const QString& path);
  // Makes the light pixels.
  bool bake();
  // Puts the limn apply command on the clipboard that lights the original like this. maskPath:
  // where to write the mask that it needs if one was painted.
  bool copyCommand(const QString& maskPath);

  EditorDocument& document() { return _document; }
  Canvas& canvas() { return *_canvas; }
  StylePanel& styles() { return *_styles; }
  LightsModel& lights() { return *_lights; }
  LightOverlay& lightOverlay() { return *_overlay; }
  LightPanel& lightPanel() { return *_lightPanel; }
  // Shows the panels that the user did not close the last time. Closed until then.
  void restorePanels();

public Q_SLOTS:
  void chooseAndOpen();
  void chooseAndLoadChannel();
  bool save();
  bool saveAs();
  void chooseAndSaveRecipe();
  void chooseAndCopyCommand();
  void chooseAndSaveStyle();
  void showHelp();

protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

private:
  enum class Needs { Nothing, Image, Light };
  static constexpr int NOTICE_MILLISECONDS = 8000; // that a notice stays

  template <typename Slot>
  QAction* _add(QMenu* menu, const QString& icon, const QString& text,
                const QList<QKeySequence>& shortcuts, const QString& tip, Needs needs, Slot slot);
  void _makeFileMenu();
  void _makeEditMenu();
  void _makeTools(QMenu* menu);
  void _makeViewMenu();
  void _makeFilterMenu();
  void _makeHelpMenu();
  // Adds a panel that a key shows and hides. What the user chose counts the next time too, under
  // the panel's name.
  void _addPanel(QMenu* menu, QDockWidget* panel, Qt::DockWidgetArea side, const QString& text,
                 Qt::Key key, const QString& tip);
  void _makeStylePanel(QMenu* menu);
  void _makeLightMenu();
  // Or tells why not.
  bool _isDone(const CVResult& result);
  // Tells how far something is in the status bar, %1 percent, when it takes a while.
  EditorDocument::GoOn _progress(const QString& text);
  void _makeLights(QMenu* menu);
  void _makeToolBar();
  void _showState();
  void _showZoom();
  void _useIcons();
  // Does `work`, which may take a moment, or tells that `what` failed, and why.
  bool _try(const QString& what, const std::function<void()>& work);
  // Shows it, and tells what came back with it.
  void _take(OpenedImage image);
  bool _maySaveAsFile(bool& asJson);
  bool _mayLose(); // asks about unsaved changes; true to go on
  QMessageBox::StandardButton _ask(QMessageBox::Icon icon, const QString& text, const QString& more,
                                   QMessageBox::StandardButtons buttons,
                                   QMessageBox::StandardButton usual);
  void _complain(const QString& what, const QString& why);
  QString _folder() const;

  EditorDocument _document;
  Recovery _recovery;
  FilterRunner _filter;
  Canvas* _canvas;
  StylePanel* _styles = nullptr;
  LightsModel* _lights = nullptr;
  LightOverlay* _overlay = nullptr;
  LightPanel* _lightPanel = nullptr;
  RecentFiles* _recent = nullptr;
  QList<QAction*> _imageActions, _lightActions; // those that need an image, and a lit one
  QAction *_open = nullptr, *_save = nullptr, *_undo = nullptr, *_redo = nullptr;
  QAction *_lighting = nullptr, *_repeat = nullptr, *_original = nullptr, *_fit = nullptr;
  QActionGroup* _tools = nullptr;
  QLabel* _lightFact = new QLabel(this);
  QLabel* _imageFacts = new QLabel(this);
  QLabel* _zoomFact = new QLabel(this);
};

} // namespace editor
