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

constexpr ValueRange CENTERED = {-LM_SLIDER_CENTER, LM_CENTERED_SLIDER_MAX - LM_SLIDER_CENTER, 0};

ValueRange With(ValueRange range, int usual) {
  range.usual = usual;
  return range;
}

ValueRange To(int high, int usual) {
  return {0, high, usual};
}

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
  _addSlider(
      form, tr("Intensity"), tr("How bright the light is; below 0 it takes light away"),
      With(CENTERED, usual.intensity),
      [this](LM_style& style) -> int16_t& { return _selected(style).intensity; }, true);
  _spread = _addSlider(
      form, tr("Spread"), tr("How far the light fills its cone, tight or wide"),
      To(LM_SLIDER_MAX, usual.spread),
      [this](LM_style& style) -> int16_t& { return _selected(style).spread; }, true);
  return group;
}

QWidget* LightPanel::_makeSurface() {
  auto* group = new QGroupBox(tr("Surface"));
  auto* form = new QFormLayout(group);
  const LM_style usual = LM_NewStyle();
  _addSlider(
      form, tr("Gloss"), tr("How sharp the highlights are, dull or glossy"),
      To(LM_SLIDER_MAX, usual.gloss), [](LM_style& style) -> int16_t& { return style.gloss; },
      false);
  _addSlider(
      form, tr("Material"), tr("The colour of highlights, white sheen or the surface's own"),
      To(LM_MATERIAL_SLIDER_MAX, usual.material),
      [](LM_style& style) -> int16_t& { return style.material; }, false);
  _addSlider(
      form, tr("Exposure"), tr("How bright the whole result is"), To(LM_SLIDER_MAX, usual.exposure),
      [](LM_style& style) -> int16_t& { return style.exposure; }, false);
  _addSlider(
      form, tr("Ambience"), tr("Light from everywhere; below 0 it darkens"),
      With(CENTERED, usual.ambientBrightness),
      [](LM_style& style) -> int16_t& { return style.ambientBrightness; }, false);
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
  _height = _addSlider(
      form, tr("Height"), tr("How deep the relief is, flat or deep"),
      To(LM_SLIDER_MAX, LM_NewStyle().bumpAmplitude),
      [](LM_style& style) -> int16_t& { return style.bumpAmplitude; }, false);
  _whiteIsHigh = new QCheckBox(tr("White is high"), group);
  _whiteIsHigh->setToolTip(tr("Bright places stand out; without it dark ones do"));
  form->addRow(_whiteIsHigh);
  connect(_whiteIsHigh, &QCheckBox::clicked, this, [this](bool isHigh) {
    _model.change([&](LM_style& style) { style.whiteIsHigh = isHigh ? 1 : 0; },
                  tr("White is high"));
  });
  return group;
}

ValueSlider* LightPanel::_addSlider(QFormLayout* form, const QString& name, const QString& tip,
                                    const ValueRange& range, const Field& field, bool ofLight) {
  auto* slider = new ValueSlider(name, tip, range, this);
  auto* label = new QLabel(name);
  label->setBuddy(slider);
  form->addRow(label, slider);
  connect(slider, &ValueSlider::edited, this, [this, name, field](int value, bool isHeld) {
    const auto edit = [&](LM_style& style) { field(style) = static_cast<int16_t>(value); };
    if (isHeld)
      _model.tryEdit(edit);
    else
      _model.changeSoon(edit, name);
  });
  connect(slider, &ValueSlider::released, this, [this, name] { _model.keep(name); });
  _settings.append({slider, field, ofLight});
  return slider;
}

ColorChoice* LightPanel::_addColor(QFormLayout* form, const QString& name, const QString& tip,
                                   const std::function<LM_color48&(LM_style&)>& field) {
  auto* choice = new ColorChoice(name, tip, this);
  form->addRow(choice);
  connect(choice, &ColorChoice::edited, this,
          [this, name, field](const LM_color48& color, bool isHeld) {
            const auto edit = [&](LM_style& style) { field(style) = color; };
            if (isHeld)
              _model.tryEdit(edit);
            else
              _model.changeSoon(edit, name);
          });
  connect(choice, &ColorChoice::released, this, [this, name] { _model.keep(name); });
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
    if (hasLight || !setting.ofLight)
      setting.slider->setValue(setting.field(style));
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
  QStringList names = {tr("None")};
  names += _model.channels();
  names << tr("Brightness, without its grain");
  const bool isFile = relief.kind == LM_height_kind::File;
  if (isFile)
    names << tr("A map in a file");
  QStringList shown;
  for (int row = 0; row < _source->count(); ++row)
    shown << _source->itemText(row);
  if (shown != names) {
    _source->clear();
    for (int i = 0; i <= _model.channels().size(); ++i)
      _source->addItem(names[i], i);
    _source->addItem(names[_model.channels().size() + 1], BRIGHTNESS);
    if (isFile)
      _source->addItem(names.last(), FILE_MAP);
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
