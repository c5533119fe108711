#include "ValueSlider.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <algorithm>

namespace editor {

ValueSlider::ValueSlider(const QString& name, const QString& tip, const ValueRange& range,
                         QWidget* parent)
    : QWidget(parent), _range(range), _slider(new QSlider(Qt::Horizontal, this)),
      _number(new QSpinBox(this)) {
  _slider->setRange(range.low / range.step, range.high / range.step);
  _slider->setPageStep(std::max(1, (range.high - range.low) / range.step / 10));
  _slider->installEventFilter(this);
  _number->setRange(range.low, range.high);
  _number->setSingleStep(range.step);
  _number->setSuffix(range.unit);
  _number->setKeyboardTracking(false);
  _number->setAlignment(Qt::AlignRight);
  for (QWidget* part : {static_cast<QWidget*>(_slider), static_cast<QWidget*>(_number)}) {
    part->setAccessibleName(name);
    part->setToolTip(tip);
    part->setStatusTip(tip);
  }
  setFocusProxy(_slider);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(_slider, 1);
  row->addWidget(_number);
  setValue(range.usual);
  connect(_slider, &QSlider::valueChanged, this, [this] {
    const QSignalBlocker quiet(_number);
    _number->setValue(value());
    Q_EMIT edited(value(), _slider->isSliderDown());
  });
  connect(_slider, &QSlider::sliderReleased, this, &ValueSlider::released);
  connect(_number, &QSpinBox::valueChanged, this, [this](int number) {
    const QSignalBlocker quiet(_slider);
    _slider->setValue(number / _range.step);
    Q_EMIT edited(number, false);
  });
}

void ValueSlider::setValue(int value) {
  const QSignalBlocker quietSlider(_slider), quietNumber(_number);
  _number->setValue(value);
  if (!_slider->isSliderDown())
    _slider->setValue(value / _range.step);
}

bool ValueSlider::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonDblClick)
    return QWidget::eventFilter(watched, event);
  _slider->setSliderDown(false);
  _number->setValue(_range.usual);
  return true;
}

} // namespace editor
