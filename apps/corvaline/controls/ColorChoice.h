// Choosing a light's colour: swatches, a temperature, or any colour.
#pragma once

#include "LM_vectors.h"
#include "ValueSlider.h"

#include <QColor>
#include <QColorDialog>
#include <QColorTransform>
#include <QToolButton>

namespace editor {

// A button that shows the colour and opens a window to choose any, which stays open beside the
// picture while one goes on; a row of swatches; and a slider of temperatures.
class ColorChoice : public QWidget {
  Q_OBJECT

public:
  ColorChoice(const QString& name, const QString& tip, QWidget* parent);

  void setColor(const LM_color48& color); // nothing is sent
  // What the colours look like, which are those of a picture's own space.
  void setToScreen(const QColorTransform& toScreen);

Q_SIGNALS:
  // isHeld: as a slider's; released() follows.
  void edited(const LM_color48& color, bool isHeld);
  void released();

private:
  void _choose(const QColor& color);
  void _show(const LM_color48& color);
  void _openPicker();
  void _drawSwatches();

  QString _name;
  LM_color48 _color = {{65535, 65535, 65535}};
  QColorTransform _toScreen;
  QToolButton* _button;
  QList<QToolButton*> _swatches;
  ValueSlider* _temperature;
  QColorDialog* _picker = nullptr; // once it was opened
};

QColor ColorOf(const LM_color48& color);
LM_color48 ColorOf(const QColor& color);
// A square of the colour, in logical pixels.
QIcon Swatch(const QColor& color, int side, bool isOn = true);

} // namespace editor
