#include "ColorPicker.h"

#include "DialogWindow.h"
#include "MacStrings.h"
#include "TextStyle.h"
#include "ToolboxDesktop.h"

#include <QApplication>
#include <QColorDialog>
#include <QPointer>

namespace {

QColor ToQColor(const RGBColor& color) {
  return QColor::fromRgba64(color.red, color.green, color.blue);
}

// Components of 8 bits, as the chooser shows them, widened so that white stays white.
RGBColor FromQColor(const QColor& color) {
  return {static_cast<uint16_t>(color.red() * 257), static_cast<uint16_t>(color.green() * 257),
          static_cast<uint16_t>(color.blue() * 257)};
}

} // namespace

Boolean GetColor(Point, ConstStr255Param prompt, const RGBColor* inColor, RGBColor* outColor) {
  if (!TB_HasDesktop())
    return 0;
  QWidget* owner = DialogWindow::Of(FrontWindow());
  // The owner may take the chooser with it, when the program ends meanwhile.
  const QPointer<QColorDialog> chooser =
      new QColorDialog(ToQColor(*inColor), owner != nullptr ? owner : QApplication::activeWindow());
  chooser->setWindowTitle(ToQString(prompt));
  const bool accepted = chooser->exec() == QDialog::Accepted && chooser != nullptr;
  if (accepted)
    *outColor = FromQColor(chooser->selectedColor());
  delete chooser.data();
  return accepted ? 1 : 0;
}
