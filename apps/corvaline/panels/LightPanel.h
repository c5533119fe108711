// The lights' settings at the window's side.
#pragma once

#include "ColorChoice.h"
#include "LightList.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>

#include <functional>

namespace editor {

// The lights in a list, the selected light, the surface and the relief. What is dragged is only
// tried; letting go keeps it as one step.
class LightPanel : public QDockWidget {
  Q_OBJECT

public:
  LightPanel(LightsModel& model, QWidget* parent);

  LightList& list() { return *_list; }

private:
  // A slider, and the setting it stands for: of the surface, or of the selected light.
  struct Setting {
    ValueSlider* slider;
    int16_t LM_style::*ofSurface;
    int16_t LM_style_light::*ofLight;
  };

  QWidget* _makeLights();
  QWidget* _makeLight();
  QWidget* _makeSurface();
  QWidget* _makeRelief();
  ValueSlider* _addSlider(QFormLayout* form, const QString& name, const QString& tip,
                          const ValueRange& range, int16_t LM_style::*ofSurface,
                          int16_t LM_style_light::*ofLight = nullptr);
  ColorChoice* _addColor(QFormLayout* form, const QString& name, const QString& tip,
                         const std::function<LM_color48&(LM_style&)>& field);
  int16_t& _value(LM_style& style, const Setting& setting) const {
    return setting.ofLight != nullptr ? _selected(style).*setting.ofLight
                                      : style.*setting.ofSurface;
  }
  // Tries or keeps what a control is set to, which `set` puts into a style.
  template <typename Control, typename Set>
  void _follow(Control* control, const QString& name, Set set);
  LM_style_light& _selected(LM_style& style) const { return style.lights[_model.selected()]; }
  void _show();
  void _showSources();

  LightsModel& _model;
  LightList* _list = nullptr;
  QLabel* _why;
  QComboBox* _kind = nullptr;
  QComboBox* _source = nullptr;
  QStringList _shownChannels; // among the sources
  QCheckBox* _whiteIsHigh = nullptr;
  ColorChoice *_color = nullptr, *_ambientColor = nullptr;
  ValueSlider *_spread = nullptr, *_height = nullptr;
  QWidget* _light = nullptr;
  QList<Setting> _settings;
};

} // namespace editor
