#include "LightPanel.h"

#include "LM_light_kinds.h"
#include "LM_sliders.h"
#include "LM_style_fields.h"

#include <QScrollArea>
#include <QSignalBlocker>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

namespace editor {
namespace {

// Of sliders whose middle is 0.
constexpr int LOWEST = -LM_SLIDER_CENTER, HIGHEST = LM_CENTERED_SLIDER_MAX - LM_SLIDER_CENTER;

// Sources that are no channel.
enum Source { BRIGHTNESS = -1, FILE_MAP = -2 };

} // namespace

LightPanel::LightPanel(LightsModel& model, QWidget* parent)
    : QDockWidget(tr("Lights"), parent), _model(model), _why(new QLabel(this)) {
  setObjectName("lightPanel");
  setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
  setFeatures(DockWidgetClosable | DockWidgetMovable);
  auto* content = new QWidget;
  auto* column = new QVBoxLayout(content);
  for (QWidget* part : {_makeLights(), _makeLight(), _makeSurface(), _makeRelief()})
    column->addWidget(part);
  column->addStretch();
  auto* scroll = new QScrollArea(this);
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setWidget(content);
  scroll->setFocusProxy(_list);
  scroll->setMinimumWidth(content->minimumSizeHint().width() +
                          scroll->style()->pixelMetric(QStyle::PM_ScrollBarExtent));
  setWidget(scroll);
  connect(&_model, &LightsModel::changed, this, &LightPanel::_show);
  connect(&_model, &LightsModel::refused, this, [this](const QString& why) {
    _why->setText(why);
    _why->show();
  });
  _show();
}

QWidget* LightPanel::_makeLights() {
  auto* group = new QGroupBox;
  auto* rows = new QVBoxLayout(group);
  _list = new LightList(_model, group);
  rows->addWidget(_list);
  auto* buttons = new QHBoxLayout;
  for (QAction* action : _list->actions()) {
    if (action->objectName().isEmpty())
      continue;
    auto* button = new QToolButton(group);
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    button->setIconSize({20, 20});
    button->setAccessibleName(action->text());
    buttons->addWidget(button);
  }
  buttons->addStretch();
  rows->addLayout(buttons);
  _why->setWordWrap(true);
  _why->hide();
  rows->addWidget(_why);
  return group;
}

QWidget* LightPanel::_makeLight() {
  auto* group = new QGroupBox(tr("Light"));
  auto* form = new QFormLayout(group);
  _light = group;
  _kind = new QComboBox(group);
  _kind->setAccessibleName(tr("Kind of light"));
  _kind->setToolTip(tr("How the light falls: from afar, from a bulb, or in a cone"));
  for (const LM_light_kind& kind : LM_LIGHT_KINDS)
    _kind->addItem(KindName(kind.code), kind.code);
  form->addRow(_kind);
  connect(_kind, &QComboBox::activated, this,
          [this](int row) { _model.setType(static_cast<uint16_t>(_kind->itemData(row).toInt())); });
  _color = _addColor(form, tr("Colour of this light"), tr("Choose the colour of this light"),
                     [this](LM_style& style) -> LM_color48& { return _selected(style).color; });
  const LM_style_light usual = LM_NewStyleLight();
  _addSlider(form, tr("Intensity"), tr("How bright the light is; below 0 it takes light away"),
             {LOWEST, HIGHEST, usual.intensity}, nullptr, &LM_style_light::intensity);
  _spread = _addSlider(form, tr("Spread"), tr("How far the light fills its cone, tight or wide"),
                       {0, LM_SLIDER_MAX, usual.spread}, nullptr, &LM_style_light::spread);
  return group;
}

QWidget* LightPanel::_makeSurface() {
  auto* group = new QGroupBox(tr("Surface"));
  auto* form = new QFormLayout(group);
  const LM_style usual = LM_NewStyle();
  _addSlider(form, tr("Gloss"), tr("How sharp the highlights are, dull or glossy"),
             {0, LM_SLIDER_MAX, usual.gloss}, &LM_style::gloss);
  _addSlider(form, tr("Material"), tr("The colour of highlights, white sheen or the surface's own"),
             {0, LM_MATERIAL_SLIDER_MAX, usual.material}, &LM_style::material);
  _addSlider(form, tr("Exposure"), tr("How bright the whole result is"),
             {0, LM_SLIDER_MAX, usual.exposure}, &LM_style::exposure);
  _addSlider(form, tr("Ambience"), tr("Light from everywhere; below 0 it darkens"),
             {LOWEST, HIGHEST, usual.ambientBrightness}, &LM_style::ambientBrightness);
  _ambientColor = _addColor(form, tr("Colour of the ambient light"),
                            tr("Choose the colour of the ambient light"),
                            [](LM_style& style) -> LM_color48& { return style.ambientColor; });
  return group;
}

QWidget* LightPanel::_makeRelief() {
  auto* group = new QGroupBox(tr("Relief"));
  auto* form = new QFormLayout(group);
  _source = new QComboBox(group);
  _source->setAccessibleName(tr("Relief channel"));
  _source->setToolTip(tr("Where the heights of the relief come from"));
  form->addRow(_source);
  connect(_source, &QComboBox::activated, this, [this](int row) {
    const int chosen = _source->itemData(row).toInt();
    LM_height_source relief;
    relief.kind = chosen == BRIGHTNESS ? LM_height_kind::Auto : LM_height_kind::Style;
    if (chosen != FILE_MAP)
      _model.chooseRelief(relief, static_cast<int16_t>(chosen == BRIGHTNESS ? 1 : chosen));
  });
  _height = _addSlider(form, tr("Height"), tr("How deep the relief is, flat or deep"),
                       {0, LM_SLIDER_MAX, LM_NewStyle().bumpAmplitude}, &LM_style::bumpAmplitude);
  _whiteIsHigh = new QCheckBox(tr("White is high"), group);
  _whiteIsHigh->setToolTip(tr("Bright places stand out; without it dark ones do"));
  form->addRow(_whiteIsHigh);
  connect(_whiteIsHigh, &QCheckBox::clicked, this, [this](bool isHigh) {
    _model.change([&](LM_style& style) { style.whiteIsHigh = isHigh ? 1 : 0; },
                  tr("White is high"));
  });
  return group;
}

template <typename Control, typename Set>
void LightPanel::_follow(Control* control, const QString& name, Set set) {
  connect(control, &Control::edited, this, [this, name, set](const auto& value, bool isHeld) {
    const auto edit = [&](LM_style& style) { set(style, value); };
    if (isHeld)
      _model.tryEdit(edit);
    else
      _model.changeSoon(edit, name);
  });
  connect(control, &Control::released, this, [this, name] { _model.keep(name); });
}

ValueSlider* LightPanel::_addSlider(QFormLayout* form, const QString& name, const QString& tip,
                                    const ValueRange& range, int16_t LM_style::*ofSurface,
                                    int16_t LM_style_light::*ofLight) {
  auto* slider = new ValueSlider(name, tip, range, this);
  auto* label = new QLabel(name);
  label->setBuddy(slider);
  form->addRow(label, slider);
  const Setting setting{slider, ofSurface, ofLight};
  _follow(slider, name, [this, setting](LM_style& style, int value) {
    _value(style, setting) = static_cast<int16_t>(value);
  });
  _settings << setting;
  return slider;
}

ColorChoice* LightPanel::_addColor(QFormLayout* form, const QString& name, const QString& tip,
                                   const std::function<LM_color48&(LM_style&)>& field) {
  auto* choice = new ColorChoice(name, tip, this);
  form->addRow(choice);
  _follow(choice, name,
          [field](LM_style& style, const LM_color48& color) { field(style) = color; });
  return choice;
}

void LightPanel::_show() {
  LM_style style = _model.style();
  const bool hasLight = _model.selected() >= 0;
  _light->setEnabled(hasLight);
  for (QAction* action : _list->actions())
    action->setEnabled(hasLight || action->objectName() == "light-add" ||
                       action->shortcut() == QKeySequence::Paste);
  for (const Setting& setting : std::as_const(_settings))
    if (hasLight || setting.ofLight == nullptr)
      setting.slider->setValue(_value(style, setting));
  if (hasLight) {
    const LM_style_light& light = _selected(style);
    _kind->setCurrentIndex(_kind->findData(LM_LightKindOfCode(light.type).code));
    _color->setColor(light.color);
    _spread->setEnabled(LM_LightKindOfCode(light.type).type == LM_LIGHT_SPOT);
  }
  _ambientColor->setColor(style.ambientColor);
  _whiteIsHigh->setChecked(style.whiteIsHigh != 0);
  _showSources();
  _why->hide();
}

void LightPanel::_showSources() {
  const LM_height_source& relief = _model.relief();
  const bool isFile = relief.kind == LM_height_kind::File;
  if (_source->count() == 0 || _model.channels() != _shownChannels ||
      isFile != (_source->findData(FILE_MAP) >= 0)) {
    _shownChannels = _model.channels();
    _source->clear();
    _source->addItem(tr("None"), 0);
    for (const QString& channel : std::as_const(_shownChannels))
      _source->addItem(channel, _source->count());
    _source->addItem(tr("Brightness, without its grain"), BRIGHTNESS);
    if (isFile)
      _source->addItem(tr("A map in a file"), FILE_MAP);
  }
  int chosen = _model.style().bumpChannel;
  if (relief.kind == LM_height_kind::Channel)
    chosen = relief.channel;
  else if (isFile)
    chosen = FILE_MAP;
  else if (relief.kind == LM_height_kind::None)
    chosen = 0;
  else if (relief.kind != LM_height_kind::Style && chosen > 0)
    chosen = BRIGHTNESS;
  _source->setCurrentIndex(std::max(0, _source->findData(chosen)));
  const bool hasRelief = _source->currentIndex() > 0;
  _height->setEnabled(hasRelief);
  _whiteIsHigh->setEnabled(hasRelief);
}

} // namespace editor
