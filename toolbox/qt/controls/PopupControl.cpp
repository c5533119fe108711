#include "ControlBlock.h"
#include "HandleBlock.h"
#include "MenuBlock.h"
#include "PortState.h"
#include "QDShapes.h"
#include "QDText.h"
#include "StyledControl.h"

#include <QStyleOptionComboBox>
#include <utility>

namespace {

struct PopupRecord : PopupPrivateData {
  short titleWidth;
};
typedef HandleBlock<PopupPrivateData, PopupRecord> PopupBlock;

constexpr short TITLE_MARGIN = 4; // to the left of a title
constexpr short BASELINE = 3;     // of a title, below the popup's middle

PopupPrivateDataHandle DataOf(ControlHandle control) {
  return reinterpret_cast<PopupPrivateDataHandle>((**control).contrlData);
}

// The title's part of a popup without one is empty.
short TitleWidth(ControlHandle control) {
  const PopupPrivateDataHandle data = DataOf(control);
  return data != nullptr ? static_cast<const PopupRecord*>(*data)->titleWidth : short{0};
}

// The maximum comes as the title's width. From then on it is the number of the menu's items, of
// which there are none yet.
void InitPopup(ControlHandle control) {
  const PopupPrivateDataHandle data = PopupBlock::New();
  if (data == nullptr)
    return;
  ControlRecord& record = **control;
  static_cast<PopupRecord&>(**data) = {{NewMenu()}, std::exchange(record.contrlMax, short{0})};
  record.contrlData = reinterpret_cast<Handle>(data);
}

void DisposePopup(ControlHandle control) {
  DisposeMenu(PopupMenuOf(control));
  PopupBlock::Dispose(DataOf(control));
  (**control).contrlData = nullptr;
}

void DrawTitle(const ControlRecord& record) {
  const short face = CurrentPort()->txFace;
  TextFace(bold);
  MoveTo(static_cast<short>(record.contrlRect.left + TITLE_MARGIN),
         static_cast<short>((record.contrlRect.top + record.contrlRect.bottom) / 2 + BASELINE));
  DrawString(record.contrlTitle);
  TextFace(face);
}

void DrawPopup(ControlHandle control) {
  QStyleOptionComboBox option;
  PrepareOption(control, option);
  option.rect.setLeft(option.rect.left() + TitleWidth(control));
  option.currentText = MenuText(PopupMenuOf(control), (**control).contrlValue);
  option.subControls = QStyle::SC_All;
  DrawStyled(control, [&](QPainter& painter, const QStyle& style) {
    style.drawComplexControl(QStyle::CC_ComboBox, &option, &painter);
    const QRect field =
        style.subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField);
    option.currentText =
        option.fontMetrics.elidedText(option.currentText, Qt::ElideRight, field.width() - 2);
    style.drawControl(QStyle::CE_ComboBoxLabel, &option, &painter);
  });
}

} // namespace

MenuHandle PopupMenuOf(ControlHandle control) {
  const PopupPrivateDataHandle data = DataOf(control);
  return data != nullptr ? (**data).mHandle : nullptr;
}

short TrackPopup(ControlHandle control) {
  const ControlRecord& record = **control;
  const MenuHandle menu = PopupMenuOf(control);
  if (CountMenuItems(menu) == 0)
    return 0;
  HiliteControl(control, inMenu);
  const auto left = static_cast<short>(record.contrlRect.left + TitleWidth(control));
  const auto width = static_cast<short>(record.contrlRect.right - left);
  const short chosen = OpenMenu(menu, record.contrlOwner, Point{record.contrlRect.top, left},
                                record.contrlValue, width);
  HiliteControl(control, 0);
  if (chosen == 0)
    return 0;
  SetControlValue(control, chosen);
  return inMenu;
}

int32_t PopupDefinition(short, ControlHandle control, short message, intptr_t param) {
  switch (message) {
  case initCntl:
    InitPopup(control);
    return 0;
  case dispCntl:
    DisposePopup(control);
    return 0;
  case drawCntl:
    if (IsVisible(control)) {
      EraseRect(&(**control).contrlRect);
      DrawTitle(**control);
      DrawPopup(control);
    }
    return 0;
  case testCntl:
    return StandardButtonDefinition(0, control, message, param) != 0 ? inMenu : 0;
  default:
    return 0;
  }
}
