// A slider with its number beside it.
#pragma once

#include <QSlider>
#include <QSpinBox>

namespace editor {

struct ValueRange {
  int low, high, usual;
  int step = 1;
  const char* unit = ""; // after the number
};

// The number can be typed. Both take the wheel, and a double click on the slider sets the usual
// value.
class ValueSlider : public QWidget {
  Q_OBJECT

public:
  ValueSlider(const QString& name, const QString& tip, const ValueRange& range, QWidget* parent);

  int value() const { return _slider->value() * _range.step; }
  void setValue(int value); // nothing is sent

Q_SIGNALS:
  // isHeld: the mouse holds the slider, and released() follows.
  void edited(int value, bool isHeld);
  void released();

protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

private:
  ValueRange _range;
  QSlider* _slider; // in steps
  QSpinBox* _number;
};

} // namespace editor
