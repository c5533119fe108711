// The lights on the picture, and the panel beside it.
#include "MainWindow.h"

#include "LM_style_fields.h"

#include <QMenu>
#include <QStatusBar>

namespace editor {

constexpr int SENTENCE = 6000; // in milliseconds that one is shown

void MainWindow::_makeLights(QMenu* menu) {
  _lights = new LightsModel(this);
  _overlay = new LightOverlay(*_lights, *_canvas);
  _canvas->setOverlay(_overlay);
  _lightPanel = new LightPanel(*_lights, this);
  _addPanel(menu, _lightPanel, Qt::LeftDockWidgetArea, tr("Li&ghts"), Qt::Key_F8,
            tr("Show the lights and their settings"));
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
    const QColorTransform& toScreen = _document.original().toScreen;
    _lights->setToScreen(toScreen);
    for (auto* choice : _lightPanel->findChildren<ColorChoice*>())
      choice->setToScreen(toScreen);
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

} // namespace editor
