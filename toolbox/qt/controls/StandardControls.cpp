#include "ControlBlock.h"
#include "QDShapes.h"
#include "StyledControl.h"

#include <QStyleOptionButton>

namespace {

constexpr short CHECK_BOX = 1;

void DrawButtonControl(short varCode, ControlHandle control) {
  QStyleOptionButton option;
  PrepareOption(control, option);
  option.text = ControlText(control);
  if (varCode == CHECK_BOX)
    option.state |= (**control).contrlValue > 0 ? QStyle::State_On : QStyle::State_Off;
  else if (!option.state.testFlag(QStyle::State_Sunken))
    option.state |= QStyle::State_Raised;
  const QStyle::ControlElement element =
      varCode == CHECK_BOX ? QStyle::CE_CheckBox : QStyle::CE_PushButton;
  DrawStyled(control, [&](QPainter& painter, const QStyle& style) {
    style.drawControl(element, &option, &painter);
  });
}

bool Holds(const Rect& rect, intptr_t packedPoint) {
  const auto packed = static_cast<uint32_t>(packedPoint);
  const Point point = {static_cast<int16_t>(packed >> 16), static_cast<int16_t>(packed & 0xFFFF)};
  return PtInRect(point, &rect) != 0;
}

} // namespace

int32_t StandardButtonDefinition(short varCode, ControlHandle control, short message,
                                 intptr_t param) {
  switch (message) {
  case drawCntl:
    if (IsVisible(control)) {
      EraseRect(&(**control).contrlRect);
      DrawButtonControl(varCode, control);
    }
    return 0;
  case testCntl:
    if (!Holds((**control).contrlRect, param))
      return 0;
    return varCode == CHECK_BOX ? inCheckBox : inButton;
  default:
    return 0;
  }
}
