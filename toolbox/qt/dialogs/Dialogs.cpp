#include "Dialogs.h"

#include "ControlBlock.h"
#include "DialogTemplate.h"
#include "Input.h"
#include "MacStrings.h"
#include "TextStyle.h"
#include "ToolboxDesktop.h"

#include <algorithm>
#include <memory>

namespace {

// Makes the control or edit field of an item. False when that fails.
bool EquipItem(DialogWindow& window, const ItemTemplate& from, DialogItem& item) {
  if (item.kind == ItemKind::EditText) {
    item.edit = new EditField(&window);
    item.edit->setText(QString::fromStdString(item.title));
    item.edit->setAccessibleName(QString::fromStdString(item.name));
    window.PlaceEditField(item);
    return true;
  }
  if ((item.type & ctrlItem) == 0)
    return true;
  item.control = NewControl(window.port(), &item.box, TB_PString(item.title), from.value,
                            from.minimum, from.maximum, from.procID, from.refCon);
  if (item.control == nullptr)
    return false;
  if (item.kind != ItemKind::Popup)
    return true;
  const MenuHandle menu = PopupMenuOf(item.control);
  if (menu == nullptr)
    return false;
  for (const std::string& choice : from.choices)
    AppendMenu(menu, TB_PString(choice));
  const short count = CountMenuItems(menu);
  SetControlMaximum(item.control, count);
  SetControlMinimum(item.control, count > 0 ? 1 : 0);
  SetControlValue(item.control, std::max<short>(from.value, 1));
  return true;
}

bool AddItems(DialogWindow& window, const DialogTemplate& dialog) {
  for (const ItemTemplate& from : dialog.items) {
    window.items.push_back(std::make_unique<DialogItem>(from.item));
    if (!EquipItem(window, from, *window.items.back()))
      return false;
  }
  return true;
}

// Takes a dialog back that could not be finished, whatever kept it from that.
struct HalfBuilt {
  void operator()(GrafPort* port) const {
    if (DialogWindow::Of(port) != nullptr)
      DisposeDialog(port);
    else
      DisposePort(port);
  }
};

DialogItem* FindItem(DialogPtr dialog, int16_t item) {
  const DialogWindow* window = DialogWindow::Of(dialog);
  return window != nullptr ? window->Item(item) : nullptr;
}

// An edit field by the handle given out for its item; null for another handle.
EditField* FindField(Handle itemHandle) {
  for (const DialogWindow* window : DialogWindow::All()) {
    for (const auto& item : window->items) {
      if (reinterpret_cast<Handle>(item.get()) == itemHandle)
        return item->edit;
    }
  }
  return nullptr;
}

Handle HandleOf(DialogItem& item) {
  if (item.control != nullptr)
    return reinterpret_cast<Handle>(item.control);
  if (item.kind == ItemKind::UserItem)
    return ItemHandleOf(item.draw);
  return reinterpret_cast<Handle>(&item);
}

} // namespace

DialogPtr GetNewDialog(int16_t dialogID, void*, WindowPtr) {
  const std::optional<DialogTemplate> dialog = LoadDialogTemplate(dialogID);
  if (!dialog || !TB_HasDesktop())
    return nullptr;
  const Rect bounds = {0, 0, dialog->height, dialog->width};
  std::unique_ptr<GrafPort, HalfBuilt> port(NewPort(bounds, RatioForNewWindow(), true));
  if (port == nullptr)
    return nullptr;
  auto* window = new DialogWindow(port.get());
  window->centred = TakeCentring(dialogID);
  window->setWindowTitle(QString::fromStdString(dialog->title));
  return AddItems(*window, *dialog) ? port.release() : nullptr;
}

void DisposeDialog(DialogPtr dialog) {
  DialogWindow* window = DialogWindow::Of(dialog);
  if (window == nullptr)
    return;
  window->hide();
  while (dialog->state->controls != nullptr)
    DisposeControl(dialog->state->controls);
  dialog->state->window = nullptr;
  delete window;
  DisposePort(dialog);
}

void GetDialogItem(DialogPtr dialog, int16_t item, int16_t* itemType, Handle* itemHandle,
                   Rect* box) {
  DialogItem* found = FindItem(dialog, item);
  if (itemType != nullptr)
    *itemType = found != nullptr ? found->type : int16_t{0};
  if (itemHandle != nullptr)
    *itemHandle = found != nullptr ? HandleOf(*found) : nullptr;
  if (box != nullptr)
    *box = found != nullptr ? found->box : Rect{0, 0, 0, 0};
}

void SetDialogItem(DialogPtr dialog, int16_t item, int16_t itemType, Handle itemHandle,
                   const Rect* box) {
  DialogItem* found = FindItem(dialog, item);
  if (found == nullptr)
    return;
  found->type = itemType;
  found->box = *box;
  if (found->kind == ItemKind::UserItem)
    found->draw = reinterpret_cast<UserItemUPP>(itemHandle);
  if (found->control != nullptr)
    (**found->control).contrlRect = *box;
  DialogWindow::Of(dialog)->PlaceEditField(*found);
}

int16_t FindDialogItem(DialogPtr dialog, Point point) {
  const DialogWindow* window = DialogWindow::Of(dialog);
  if (window == nullptr)
    return -1;
  const auto& items = window->items;
  const auto found = std::find_if(items.begin(), items.end(), [&](const auto& item) {
    return PtInRect(point, &item->box) != 0;
  });
  return found != items.end() ? static_cast<int16_t>(found - items.begin()) : int16_t{-1};
}

void GetDialogItemText(Handle itemHandle, Str255 text) {
  const EditField* field = FindField(itemHandle);
  PLstrcpy(text, TB_PString(field != nullptr ? field->text().toStdString() : std::string()));
}

void SetDialogItemText(Handle itemHandle, ConstStr255Param text) {
  if (EditField* field = FindField(itemHandle))
    field->setText(ToQString(text));
}

void SelectDialogItemText(DialogPtr dialog, int16_t item, int16_t start, int16_t end) {
  const DialogItem* found = FindItem(dialog, item);
  if (found == nullptr || found->edit == nullptr)
    return;
  const int length = static_cast<int>(found->edit->text().size());
  const int first = std::clamp<int>(start, 0, length);
  found->edit->setFocus();
  found->edit->setSelection(first, std::clamp<int>(end, first, length) - first);
}
