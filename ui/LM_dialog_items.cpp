// Items of a dialog: their controls, rectangles, popups and redrawing.
#include "LM_mac_UI.h"
#include "MacStrings.h"

namespace {

struct Item {
  int16_t type = 0;
  Handle handle = nullptr;
  Rect box = {};
};

Item FindItem(DialogPtr dialog, int16_t item) {
  Item found;
  GetDialogItem(dialog, item, &found.type, &found.handle, &found.box);
  return found;
}

bool IsControl(const Item& item) {
  return (item.type & ~itemDisable & ~resCtrl) == ctrlItem && item.handle != nullptr;
}

void SetDisabled(DialogPtr dialog, int16_t number, bool disabled) {
  const Item item = FindItem(dialog, number);
  const int type = disabled ? item.type | itemDisable : item.type & ~itemDisable;
  if (type != item.type)
    SetDialogItem(dialog, number, static_cast<int16_t>(type), item.handle, &item.box);
}

void Hilite(DialogPtr dialog, int16_t item, int16_t part) {
  const ControlHandle control = LM_ItemControl(dialog, item);
  if (control != nullptr)
    HiliteControl(control, part);
}

constexpr int16_t ACTIVE = 0;
constexpr int16_t INACTIVE = 255;

} // namespace

Handle LM_ItemHandle(DialogPtr dialog, int16_t item) {
  return FindItem(dialog, item).handle;
}

ControlHandle LM_ItemControl(DialogPtr dialog, int16_t item) {
  const Item found = FindItem(dialog, item);
  return IsControl(found) ? ItemControlOf(found.handle) : nullptr;
}

int16_t LM_ControlValue(DialogPtr dialog, int16_t item) {
  const ControlHandle control = LM_ItemControl(dialog, item);
  return control != nullptr ? GetControlValue(control) : int16_t{0};
}

void LM_SetControlValue(DialogPtr dialog, int16_t item, int16_t value) {
  const ControlHandle control = LM_ItemControl(dialog, item);
  if (control != nullptr)
    SetControlValue(control, value);
}

void LM_EnableControl(DialogPtr dialog, int16_t item) {
  Hilite(dialog, item, ACTIVE);
}

void LM_DisableControl(DialogPtr dialog, int16_t item) {
  Hilite(dialog, item, INACTIVE);
}

void LM_EnableItem(DialogPtr dialog, int16_t item) {
  SetDisabled(dialog, item, false);
}

void LM_DisableItem(DialogPtr dialog, int16_t item) {
  SetDisabled(dialog, item, true);
}

bool LM_ItemIsDisabled(DialogPtr dialog, int16_t item) {
  return (FindItem(dialog, item).type & itemDisable) != 0;
}

Rect LM_ItemGetBox(DialogPtr dialog, int16_t item) {
  return FindItem(dialog, item).box;
}

void LM_ItemSetBox(DialogPtr dialog, int16_t item, const Rect& box) {
  const Item found = FindItem(dialog, item);
  SetDialogItem(dialog, item, found.type, found.handle, &box);
}

void LM_ItemForceDraw(DialogPtr dialog, int16_t item) {
  const Rect box = LM_ItemGetBox(dialog, item);
  const RgnHandle region = NewRgn();
  if (region == nullptr)
    return;
  RectRgn(region, &box);
  UpdateDialog(dialog, region);
  DisposeRgn(region);
}

void LM_UserItemSetDrawProc(DialogPtr dialog, int16_t item, UserItemUPP procedure) {
  const Item found = FindItem(dialog, item);
  if ((found.type & ~itemDisable) == userItem)
    SetDialogItem(dialog, item, found.type, ItemHandleOf(procedure), &found.box);
}

MenuHandle LM_PopupMenu(DialogPtr dialog, int16_t item) {
  const ControlHandle control = LM_ItemControl(dialog, item);
  // The definition's own data: no block of the Memory Manager, so it has no size to ask for.
  if (control == nullptr || (*control)->contrlData == nullptr)
    return nullptr;
  return (*reinterpret_cast<PopupPrivateDataHandle>((*control)->contrlData))->mHandle;
}

void LM_PopupGetItem(DialogPtr dialog, int16_t item, int16_t menuItem, Str255 text) {
  text[0] = 0;
  const MenuHandle menu = LM_PopupMenu(dialog, item);
  if (menu != nullptr)
    GetMenuItemText(menu, menuItem, text);
}

int16_t LM_PopupItemIndex(DialogPtr dialog, int16_t item, ConstStr255Param name, Boolean exactly) {
  const MenuHandle menu = LM_PopupMenu(dialog, item);
  Str255 text;
  int16_t place = menu != nullptr ? CountMenuItems(menu) : int16_t{0};
  for (; place > 0; --place) {
    GetMenuItemText(menu, place, text);
    if (EqualString(name, text, exactly, exactly) != 0)
      break;
  }
  return place;
}

void LM_PopupUseMenuRange(DialogPtr dialog, int16_t item) {
  const ControlHandle control = LM_ItemControl(dialog, item);
  const MenuHandle menu = LM_PopupMenu(dialog, item);
  if (control == nullptr || menu == nullptr)
    return;
  const int16_t count = CountMenuItems(menu);
  SetControlMaximum(control, count);
  SetControlMinimum(control, count > 0 ? 1 : 0);
}

void LM_PopupClear(DialogPtr dialog, int16_t item) {
  const MenuHandle menu = LM_PopupMenu(dialog, item);
  if (menu == nullptr)
    return;
  for (int16_t place = CountMenuItems(menu); place > 0; --place)
    DeleteMenuItem(menu, place);
}

void LM_DisposePopupMenus(DialogPtr dialog) {
  for (const int16_t item : {LM_STYLE_ITEM, LM_LIGHT_TYPE_ITEM, LM_BUMP_CHANNEL_ITEM}) {
    const MenuHandle menu = LM_PopupMenu(dialog, item);
    if (menu != nullptr)
      DisposeMenu(menu);
  }
}
