// The lights on the picture, and the panel beside it.
#include "MainWindow.h"

#include "LM_style_fields.h"

#include <QMenu>
#include <QSettings>
#include <QStatusBar>

namespace editor {

static constexpr const char* LIGHTS_SETTING = "lightPanel";
constexpr int SENTENCE = 6000; // in milliseconds that one is shown

void MainWindow::_makeLights(QMenu* menu) {
  _lights = new LightsModel(this);
  _overlay = new LightOverlay(*_lights, *_canvas);
  _canvas->setOverlay(_overlay);
  _lightPanel = new LightPanel(*_lights, this);
  addDockWidget(Qt::LeftDockWidgetArea, _lightPanel);
  _lightPanel->hide();
  QAction* toggle = _lightPanel->toggleViewAction();
  toggle->setText(tr("Li&ghts"));
  toggle->setShortcut(Qt::Key_F8);
  toggle->setStatusTip(tr("Show the lights and their settings"));
  menu->addAction(toggle);
  connect(toggle, &QAction::toggled, this, [this](bool isShown) {
    if (isVisible())
      QSettings().setValue(LIGHTS_SETTING, isShown);
  });
  connect(_lights, &LightsModel::refused, this,
          [this](const QString& why) { statusBar()->showMessage(why, SENTENCE); });
  const auto showArea = [this] { _lights->setArea(_document.filterArea()); };
  const auto showChannels = [this] { _lights->setChannels(_document.channelNames()); };
  const auto showRecipe = [this] {
    const LM_style* const lights = _document.lights();
    _lights->setRelief(_document.recipe().relief);
    _lights->setStyle(lights != nullptr ? *lights : LM_NewStyle());
  };
  connect(&_document, &EditorDocument::opened, this, [=, this] {
    showRecipe();
    showArea();
    showChannels();
    _lights->setToScreen(_document.original().toScreen);
  });
  connect(&_document, &EditorDocument::recipeChanged, this, showRecipe);
  connect(_lights, &LightsModel::tried, &_document, &EditorDocument::tryLights);
  connect(_lights, &LightsModel::gaveUp, &_document, &EditorDocument::stopTrying);
  connect(_lights, &LightsModel::kept, this, [this](const LM_style& style, const QString& step) {
    Recipe recipe = _document.withLights(style);
    recipe.relief = _lights->relief();
    _document.keep(recipe, step);
  });
  connect(&_document, &EditorDocument::selectionChanged, this, showArea);
  connect(&_document, &EditorDocument::channelsChanged, this, showChannels);
}

void MainWindow::_restoreLights() {
  _lightPanel->setVisible(QSettings().value(LIGHTS_SETTING, true).toBool());
}

} // namespace editor
