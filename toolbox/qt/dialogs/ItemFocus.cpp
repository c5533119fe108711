#include "ItemFocus.h"

#include "ControlBlock.h"
#include "EventQueue.h"
#include "Input.h"
#include "MacStrings.h"

#include <QAccessible>
#include <algorithm>
#include <optional>

namespace {

constexpr int PAGES = 10; // of a slider

bool CanHaveFocus(const DialogItem& item) {
  return IsUsable(item) && item.kind != ItemKind::StaticText && !item.isPicture &&
         !ItemName(item).isEmpty();
}

// Numbers of those items, from top to bottom and left to right.
std::vector<int> FocusOrder(const DialogWindow& window) {
  std::vector<int> order;
  for (int number = 1; number <= static_cast<int>(window.items.size()); ++number) {
    if (CanHaveFocus(*window.Item(number)))
      order.push_back(number);
  }
  std::sort(order.begin(), order.end(), [&](int one, int other) {
    const Rect& first = window.Item(one)->box;
    const Rect& second = window.Item(other)->box;
    return first.top != second.top ? first.top < second.top : first.left < second.left;
  });
  return order;
}

// The value that a key asks for, if it asks for one.
std::optional<int> ValueByKey(ControlHandle control, int key) {
  const int value = GetControlValue(control);
  const int minimum = GetControlMinimum(control);
  const int maximum = GetControlMaximum(control);
  const int page = std::max(1, (maximum - minimum) / PAGES);
  const bool downIsMore = BlockOf(control).definitionNumber == POPUP_DEFINITION; // as in its menu
  switch (key) {
  case Qt::Key_Left:
    return value - 1;
  case Qt::Key_Right:
    return value + 1;
  case Qt::Key_Down:
    return value + (downIsMore ? 1 : -1);
  case Qt::Key_Up:
    return value + (downIsMore ? -1 : 1);
  case Qt::Key_PageDown:
    return value + (downIsMore ? page : -page);
  case Qt::Key_PageUp:
    return value + (downIsMore ? -page : page);
  case Qt::Key_Home:
    return minimum;
  case Qt::Key_End:
    return maximum;
  default:
    return std::nullopt;
  }
}

} // namespace

bool IsUsable(const DialogItem& item) {
  return (item.type & itemDisable) == 0 &&
         (item.control == nullptr || (IsVisible(item.control) && IsActive(item.control)));
}

bool HasRange(const DialogItem& item) {
  return item.control != nullptr &&
         (item.kind == ItemKind::Control || item.kind == ItemKind::Popup);
}

QString ItemName(const DialogItem& item) {
  if (item.kind == ItemKind::StaticText)
    return QString::fromStdString(TB_FillInParamText(item.title));
  if (item.control != nullptr && item.kind != ItemKind::Popup)
    return QString::fromStdString(TB_StdString((**item.control).contrlTitle));
  return QString::fromStdString(item.name);
}

void FocusItem(DialogWindow& window, int number) {
  window.focusedItem = number;
  const DialogItem* item = window.Item(number);
  if (item != nullptr && item->edit != nullptr)
    item->edit->setFocus();
  else
    window.setFocus();
  window.update();
  if (item != nullptr && item->edit == nullptr && QAccessible::isActive()) {
    QAccessibleEvent event(&window, QAccessible::Focus);
    if (const QAccessibleInterface* dialog = QAccessible::queryAccessibleInterface(&window)) {
      if (QAccessibleInterface* child = dialog->focusChild())
        event.setChild(dialog->indexOfChild(child));
    }
    QAccessible::updateAccessibility(&event);
  }
}

void MoveItemFocus(DialogWindow& window, FocusStep step) {
  const std::vector<int> order = FocusOrder(window);
  if (order.empty())
    return;
  const auto count = static_cast<int>(order.size());
  const auto found = std::find(order.begin(), order.end(), window.focusedItem);
  int place = step == FocusStep::Forwards ? 0 : count - 1;
  if (found != order.end())
    place =
        (static_cast<int>(found - order.begin()) + (step == FocusStep::Forwards ? 1 : count - 1)) %
        count;
  FocusItem(window, order[static_cast<size_t>(place)]);
}

bool TakeFocusKey(DialogWindow& window, const QKeyEvent& key) {
  if (key.key() == Qt::Key_F6) {
    const bool back = key.modifiers().testFlag(Qt::ShiftModifier);
    MoveItemFocus(window, back ? FocusStep::Backwards : FocusStep::Forwards);
    return true;
  }
  const DialogItem* item = window.Item(window.focusedItem);
  const auto modifiers = key.modifiers() & ~Qt::KeypadModifier;
  if (item == nullptr || item->edit != nullptr || !IsUsable(*item) || modifiers != Qt::NoModifier)
    return false;
  if (key.key() == Qt::Key_Space) {
    RequestPress(window, window.focusedItem);
    return true;
  }
  const auto value = HasRange(*item) ? ValueByKey(item->control, key.key()) : std::nullopt;
  if (value)
    RequestValue(window, window.focusedItem, *value);
  return value.has_value();
}

void RequestPress(const DialogWindow& window, int number) {
  if (Input* input = Input::Get())
    input->RequestItem(window.port(), ITEM_PRESSED, number, 0);
}

void RequestValue(const DialogWindow& window, int number, int value) {
  const DialogItem* item = window.Item(number);
  Input* input = Input::Get();
  if (input == nullptr || item == nullptr || !HasRange(*item))
    return;
  const int inside =
      std::clamp<int>(value, GetControlMinimum(item->control),
                      std::max(GetControlMinimum(item->control), GetControlMaximum(item->control)));
  input->RequestItem(window.port(), ITEM_CHANGED, number, static_cast<short>(inside));
}
