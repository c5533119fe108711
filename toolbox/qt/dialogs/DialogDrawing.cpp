#include "ControlBlock.h"
#include "DialogWindow.h"
#include "Ink.h"
#include "Input.h"
#include "MacDialogs.h"
#include "QDShapes.h"
#include "TextStyle.h"

namespace {

void DrawStaticText(PortState& state, const DialogItem& item) {
  PortPainter text(state);
  if (!text.painter.isActive())
    return;
  text.changed = ToQRect(item.box);
  text.painter.setFont(TextFontOf(item.small ? 9 : 0, 0));
  text.painter.setPen(QColor::fromRgb(ThemeTextColor()));
  text.painter.drawText(text.changed,
                        static_cast<int>(item.align | Qt::AlignTop) | Qt::TextWordWrap,
                        QString::fromStdString(TB_FillInParamText(item.title)));
}

void DrawItem(DialogWindow& window, int number) {
  const DialogItem& item = *window.Item(number);
  if (item.control != nullptr && IsVisible(item.control))
    SendToControl(item.control, drawCntl, 0);
  if (item.kind == ItemKind::StaticText)
    DrawStaticText(*window.port()->state, item);
  else if (item.kind == ItemKind::UserItem && item.draw != nullptr)
    item.draw(window.port(), static_cast<int16_t>(number));
}

} // namespace

void DrawWithin(DialogWindow& window, const QRegion& squares) {
  PortScope scope(window.port());
  PortState& state = *window.port()->state;
  const QRegion saved = state.clip;
  const QRegion visible = saved.intersected(squares);
  state.update -= visible;
  SetPortClip(state, visible);
  EraseRect(&window.port()->portRect);
  for (int number = 1; number <= static_cast<int>(window.items.size()); ++number) {
    const DialogItem& item = *window.Item(number);
    // The outline of the default button and its like reach beyond their box.
    const QRect reach = ToQRect(item.box).adjusted(-8, -8, 8, 8);
    if (!visible.intersects(reach))
      continue;
    SetPortClip(state, visible);
    DrawItem(window, number);
  }
  SetPortClip(state, saved);
  // What the clip region hid waits for the next update event.
  RequestUpdate(state, squares.subtracted(visible));
}

void DrawDialog(DialogPtr dialog) {
  if (DialogWindow* window = DialogWindow::Of(dialog))
    DrawWithin(*window, ToQRect(dialog->portRect));
}

void UpdateDialog(DialogPtr dialog, RgnHandle updateRegion) {
  DialogWindow* window = DialogWindow::Of(dialog);
  if (window != nullptr)
    DrawWithin(*window, RegionSquares(updateRegion).intersected(ToQRect(dialog->portRect)));
}
