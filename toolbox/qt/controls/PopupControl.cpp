#include "ControlBlock.h"
#include "MenuBlock.h"
#include "PortState.h"
#include "QDShapes.h"
#include "QDText.h"
#include "StyledControl.h"

#include <QStyleOptionComboBox>
#include <new>
#include <utility>

namespace {

struct PopupBlock {
  PopupPrivateData* master;
  PopupPrivateData data;
  short titleWidth;
};

constexpr short TITLE_MARGIN = 4; // to the left of a title
constexpr short BASELINE = 3;     // of a title, below the popup's middle

MenuHandle MenuOf(ControlHandle control) {
  const auto data = reinterpret_cast<PopupPrivateDataHandle>((**control).contrlData);
  return data != nullptr ? (**data).mHandle : nullptr;
}

// The title's part of a popup without one is empty.
short TitleWidth(ControlHandle control) {
  const auto* block = reinterpret_cast<const PopupBlock*>((**control).contrlData);
  return block != nullptr ? block->titleWidth : short{0};
}

// The maximum comes as the title's width. From then on it is the number of the menu's items, of
// which there are none yet.
void InitPopup(ControlHandle control) {
  auto* block = new (std::nothrow) PopupBlock{};
  if (block == nullptr)
    return;
  block->data = {NewMenu()};
  block->master = &block->data;
  ControlRecord& record = **control;
  block->titleWidth = std::exchange(record.contrlMax, short{0});
  record.contrlData = reinterpret_cast<Handle>(&block->master);
}

void DisposePopup(ControlHandle control) {
  DisposeMenu(MenuOf(control));
  delete reinterpret_cast<PopupBlock*>((**control).contrlData);
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
  option.currentText = MenuText(MenuOf(control), (**control).contrlValue);
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

short TrackPopup(ControlHandle control) {
  const ControlRecord& record = **control;
  const MenuHandle menu = MenuOf(control);
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
  case calcCntlRgn:
    return StandardButtonDefinition(0, control, message, param);
  default:
    return 0;
  }
}
