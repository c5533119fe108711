#include "ControlBlock.h"
#include "DialogWindow.h"
#include "EventQueue.h"
#include "HostDialogs.h"
#include "Input.h"
#include "ItemFocus.h"

#include <QElapsedTimer>

namespace {

constexpr int16_t NO_ITEM = 0;
constexpr int16_t NO_DIALOG = -1;
constexpr uint32_t TAB = 9;
constexpr int IDLE_MILLISECONDS = 500;

DialogWindow* FrontDialog() {
  const auto& windows = DialogWindow::All();
  if (windows.empty())
    return nullptr;
  if (FrontWindow() == nullptr)
    windows.back()->Open();
  return DialogWindow::Of(FrontWindow());
}

bool IsActiveButton(const DialogItem* item) {
  return item != nullptr && item->kind == ItemKind::Button && item->control != nullptr &&
         IsVisible(item->control) && IsActive(item->control) && (item->type & itemDisable) == 0;
}

int16_t HitByClosing(const DialogWindow& window) {
  const DialogItem* item = window.Item(kCancelItem);
  return item != nullptr && item->kind == ItemKind::Button ? kCancelItem : kOKItem;
}

int16_t NumberOf(const DialogWindow& window, ControlHandle control) {
  for (size_t i = 0; i < window.items.size(); ++i) {
    if (window.items[i]->control == control)
      return static_cast<int16_t>(i + 1);
  }
  return NO_ITEM;
}

int16_t IfEnabled(const DialogWindow& window, int16_t number) {
  const DialogItem* item = window.Item(number);
  return item != nullptr && (item->type & itemDisable) == 0 ? number : NO_ITEM;
}

int16_t HitControl(const DialogWindow& window, ControlHandle control, Point point) {
  const int16_t number = NumberOf(window, control);
  const short before = GetControlValue(control);
  const short part = TrackControl(control, point, nullptr);
  if (part == 0 || (part >= inThumb && GetControlValue(control) == before))
    return NO_ITEM;
  return IfEnabled(window, number);
}

int16_t HitByMouse(const DialogWindow& window, const EventRecord& event) {
  PortScope port(window.port());
  Point point = event.where;
  GlobalToLocal(&point);
  ControlHandle control = nullptr;
  if (FindControl(point, window.port(), &control) != 0)
    return HitControl(window, control, point);
  const auto number = static_cast<int16_t>(FindDialogItem(window.port(), point) + 1);
  const DialogItem* item = window.Item(number);
  // An inactive control swallows its clicks.
  return item != nullptr && item->control == nullptr ? IfEnabled(window, number) : NO_ITEM;
}

int16_t PressButton(const DialogWindow& window, int16_t number) {
  if (!IsActiveButton(window.Item(number)))
    return NO_ITEM;
  FlashDialogButton(window.port(), number);
  return number;
}

int16_t HitByKey(DialogWindow& window, const EventRecord& event) {
  const uint32_t character = event.message & charCodeMask;
  if (character == kReturnCharCode || character == kEnterCharCode)
    return PressButton(window, kOKItem);
  if (character == kEscapeCharCode || (character == '.' && (event.modifiers & cmdKey) != 0))
    return PressButton(window, kCancelItem);
  if (character == TAB) {
    const bool back = (event.modifiers & shiftKey) != 0;
    MoveItemFocus(window, back ? FocusStep::Backwards : FocusStep::Forwards);
  }
  return NO_ITEM;
}

// An item that is used without the mouse.
int16_t HitByRequest(const DialogWindow& window, const EventRecord& event) {
  const auto number = static_cast<int16_t>(event.message >> 16);
  const auto value = static_cast<int16_t>(event.message & 0xFFFF);
  const DialogItem* item = window.Item(number);
  if (item == nullptr || !IsUsable(*item))
    return NO_ITEM;
  PortScope port(window.port());
  if (event.what == ITEM_CHANGED) {
    const short before = GetControlValue(item->control);
    SetControlValue(item->control, value);
    return GetControlValue(item->control) != before ? number : NO_ITEM;
  }
  switch (item->kind) {
  case ItemKind::Button:
    return PressButton(window, number);
  case ItemKind::Popup:
    return TrackPopup(item->control) != 0 ? number : NO_ITEM;
  case ItemKind::CheckBox:
  case ItemKind::UserItem:
    return number;
  default:
    return NO_ITEM;
  }
}

// Whatever clip region the program has left: what it hid would ask for an update again and again.
void UpdateWindow(DialogWindow& window) {
  PortState& state = *window.port()->state;
  const QRegion saved = state.clip;
  SetPortClip(state, WholePlane());
  DrawWithin(window, state.update.boundingRect());
  SetPortClip(state, saved);
}

// What the Dialog Manager itself does with an event.
int16_t HandleEvent(DialogWindow& window, const EventRecord& event, WindowPtr target) {
  DialogWindow* updated = event.what == updateEvt ? DialogWindow::Of(target) : nullptr;
  if (updated != nullptr)
    UpdateWindow(*updated);
  if (target != window.port())
    return NO_ITEM;
  if (event.what == mouseDown)
    return HitByMouse(window, event);
  if (event.what == keyDown)
    return HitByKey(window, event);
  return NO_ITEM;
}

// One call of the loop; processEvent may be null.
int16_t RunModalDialog(CVProcessEventProc processEvent, ModalFilterUPP filter) {
  for (;;) {
    DialogWindow* window = FrontDialog();
    if (window == nullptr)
      return NO_DIALOG;
    if (window->closeRequested())
      return HitByClosing(*window);
    QueuedEvent next = NextEvent(IDLE_MILLISECONDS);
    EventRecord& event = next.record;
    const WindowPtr target = next.window;
    // Events of windows further back, released buttons excepted, are not this dialog's.
    if (target != nullptr && target != window->port() && event.what != updateEvt)
      continue;
    int16_t item = NO_ITEM;
    if (event.what == ITEM_PRESSED || event.what == ITEM_CHANGED) {
      item = HitByRequest(*window, event);
      if (item != NO_ITEM)
        return item;
      continue;
    }
    if (filter != nullptr && filter(window->port(), &event, &item))
      return item;
    // The filter may have run loops of its own; the window may be gone.
    window = DialogWindow::Of(FrontWindow());
    if (window == nullptr)
      return NO_DIALOG;
    if (processEvent != nullptr)
      processEvent(&event);
    item = HandleEvent(*window, event, target);
    if (item != NO_ITEM)
      return item;
  }
}

} // namespace

void MoveableModalDialog(CVProcessEventProc processEvent, ModalFilterUPP filter, int16_t* itemHit) {
  *itemHit = RunModalDialog(processEvent, filter);
}

void ModalDialog(ModalFilterUPP filter, int16_t* itemHit) {
  MoveableModalDialog(nullptr, filter, itemHit);
}

void FlashDialogButton(DialogPtr dialog, int16_t item) {
  constexpr int FLASH_MILLISECONDS = 133;
  const DialogWindow* window = DialogWindow::Of(dialog);
  const DialogItem* found = window != nullptr ? window->Item(item) : nullptr;
  if (found == nullptr || !IsActiveButton(found))
    return;
  HiliteControl(found->control, inButton);
  QElapsedTimer timer;
  timer.start();
  for (int left = FLASH_MILLISECONDS; Input::Get() != nullptr && left > 0;
       left = FLASH_MILLISECONDS - static_cast<int>(timer.elapsed()))
    Input::Get()->Pump(left);
  HiliteControl(found->control, 0);
}
