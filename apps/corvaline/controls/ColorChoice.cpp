#include "ColorChoice.h"

#include "Temperature.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace editor {
namespace {

constexpr int SIDE = 18; // of a swatch

// Light as people have it about them, then plain colours.
QList<std::pair<QString, QColor>> Swatches() {
  return {{ColorChoice::tr("White"), QColor(255, 255, 255)},
          {ColorChoice::tr("Candle"), QColor(255, 147, 41)},
          {ColorChoice::tr("Warm lamp"), QColor(255, 197, 143)},
          {ColorChoice::tr("Moonlight"), QColor(150, 180, 255)},
          {ColorChoice::tr("Red"), QColor(255, 40, 30)},
          {ColorChoice::tr("Yellow"), QColor(255, 230, 0)},
          {ColorChoice::tr("Green"), QColor(40, 230, 80)},
          {ColorChoice::tr("Blue"), QColor(40, 80, 255)},
          {ColorChoice::tr("Magenta"), QColor(255, 40, 220)}};
}

QToolButton* FlatButton(const QString& name, QWidget* parent) {
  auto* button = new QToolButton(parent);
  button->setAutoRaise(true);
  button->setIconSize({SIDE, SIDE});
  button->setToolTip(name);
  button->setAccessibleName(name);
  return button;
}

} // namespace

QColor ColorOf(const LM_color48& color) {
  return QColor::fromRgba64(color.component[0], color.component[1], color.component[2]);
}

LM_color48 ColorOf(const QColor& color) {
  const QRgba64 wide = color.rgba64();
  return {{wide.red(), wide.green(), wide.blue()}};
}

QIcon Swatch(const QColor& color, int side, bool isOn) {
  constexpr int DENSITY = 2;
  QPixmap pixmap(side * DENSITY, side * DENSITY);
  pixmap.setDevicePixelRatio(DENSITY);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(128, 128, 128), 1));
  painter.setBrush(isOn ? QBrush(color) : QBrush(color, Qt::BDiagPattern));
  painter.drawRoundedRect(QRectF(1, 1, side - 2, side - 2), 3, 3);
  QIcon icon(pixmap);
  icon.addPixmap(pixmap, QIcon::Selected);
  return icon;
}

ColorChoice::ColorChoice(const QString& name, const QString& tip, QWidget* parent)
    : QWidget(parent), _name(name), _button(FlatButton(name, this)),
      _temperature(new ValueSlider(tr("Temperature: %1").arg(name),
                                   tr("The colour of a glowing body, in kelvin: candles have 2000, "
                                      "lamps 2700, the sun 5500, a clear sky 10000"),
                                   {LOWEST_KELVIN, HIGHEST_KELVIN, 6500, KELVIN_STEP, " K"},
                                   this)) {
  _button->setToolTip(tip);
  _button->setAutoRaise(false);
  _button->setIconSize({2 * SIDE, SIDE});
  connect(_button, &QToolButton::clicked, this, &ColorChoice::_openPicker);
  auto* swatches = new QHBoxLayout;
  swatches->setSpacing(0);
  swatches->addWidget(_button);
  swatches->addSpacing(4);
  for (const auto& [swatchName, color] : Swatches()) {
    QToolButton* swatch = FlatButton(swatchName, this);
    swatches->addWidget(swatch);
    _swatches << swatch;
    connect(swatch, &QToolButton::clicked, this, [this, color = color] { _choose(color); });
  }
  swatches->addStretch();
  auto* rows = new QVBoxLayout(this);
  rows->setContentsMargins(0, 0, 0, 0);
  rows->setSpacing(2);
  rows->addLayout(swatches);
  rows->addWidget(_temperature);
  connect(_temperature, &ValueSlider::edited, this, [this](int kelvin, bool isHeld) {
    _show(ColorOfTemperature(kelvin));
    Q_EMIT edited(_color, isHeld);
  });
  connect(_temperature, &ValueSlider::released, this, &ColorChoice::released);
  _drawSwatches();
}

void ColorChoice::setToScreen(const QColorTransform& toScreen) {
  if (toScreen == _toScreen)
    return;
  _toScreen = toScreen;
  _drawSwatches();
}

void ColorChoice::_drawSwatches() {
  const auto colors = Swatches();
  for (qsizetype i = 0; i < colors.size(); ++i)
    _swatches[i]->setIcon(Swatch(_toScreen.map(colors[i].second), SIDE));
  _show(_color);
}

void ColorChoice::_choose(const QColor& color) {
  setColor(ColorOf(color));
  Q_EMIT edited(_color, false);
}

// A temperature that was typed stays as it is while its colour does.
void ColorChoice::setColor(const LM_color48& color) {
  if (std::equal(color.component, color.component + LM_PLANES, _color.component))
    return;
  _show(color);
  _temperature->setValue(NearestTemperature(color));
}

void ColorChoice::_show(const LM_color48& color) {
  _color = color;
  const QColor shown = ColorOf(color);
  QPixmap pixmap(2 * SIDE, SIDE);
  pixmap.fill(_toScreen.map(shown));
  _button->setIcon(QIcon(pixmap));
  _button->setAccessibleDescription(shown.name());
  if (_picker != nullptr && _picker->currentColor() != shown) {
    const QSignalBlocker quiet(_picker);
    _picker->setCurrentColor(shown);
  }
}

void ColorChoice::_openPicker() {
  if (_picker == nullptr) {
    _picker = new QColorDialog(this);
    _picker->setOptions(QColorDialog::NoButtons | QColorDialog::DontUseNativeDialog);
    _picker->setWindowTitle(_name);
    _picker->setModal(false);
    connect(_picker, &QColorDialog::currentColorChanged, this, &ColorChoice::_choose);
  }
  const QSignalBlocker quiet(_picker);
  _picker->setCurrentColor(ColorOf(_color));
  _picker->show();
  // At the foot of the panel, where it covers the least of the picture.
  const QPoint foot = window()->mapToGlobal(QPoint(0, window()->height()));
  _picker->move(foot - QPoint(0, _picker->frameGeometry().height()));
  _picker->raise();
}

} // namespace editor
