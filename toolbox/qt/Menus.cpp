#include "Menus.h"

#include "DialogWindow.h"
#include "EventQueue.h"
#include "MacResources.h"
#include "MacStrings.h"
#include "MacWindows.h"
#include "MenuBlock.h"
#include "ResourceJson.h"
#include "TextStyle.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <unordered_map>

namespace {

struct MenuItem {
  std::string text;
  bool enabled = true;
};

} // namespace

struct MenuInfo {
  short menuID;
  std::string title;
  std::vector<MenuItem> items;
};

namespace {

constexpr size_t MAX_ITEMS = 32767;

struct MenuBlock {
  MenuInfo* master;
  MenuInfo info;
};

std::unordered_map<MenuHandle, std::unique_ptr<MenuBlock>>& LivingMenus() {
  static std::unordered_map<MenuHandle, std::unique_ptr<MenuBlock>> menus;
  return menus;
}

// Null for a menu that was disposed of.
MenuInfo* InfoOf(MenuHandle menu) {
  const auto found = LivingMenus().find(menu);
  return found != LivingMenus().end() ? &found->second->info : nullptr;
}

MenuItem* ItemOf(MenuHandle menu, int item) {
  MenuInfo* info = InfoOf(menu);
  if (info == nullptr || item < 1 || static_cast<size_t>(item) > info->items.size())
    return nullptr;
  return &info->items[static_cast<size_t>(item - 1)];
}

// Home and End choose the first and the last item; of themselves they only scroll a long menu.
class PopupMenu : public QMenu {
public:
  using QMenu::QMenu;

protected:
  void keyPressEvent(QKeyEvent* event) override {
    QMenu::keyPressEvent(event);
    QList<QAction*> choices = actions();
    choices.removeIf([](const QAction* action) { return !action->isEnabled(); });
    if (event->key() == Qt::Key_Home && !choices.isEmpty())
      setActiveAction(choices.first());
    else if (event->key() == Qt::Key_End && !choices.isEmpty())
      setActiveAction(choices.last());
  }
};

QMenu* BuildMenu(const MenuInfo& info, QWidget* parent) {
  QMenu* menu = new PopupMenu(parent);
  for (const MenuItem& item : info.items) {
    QAction* action =
        menu->addAction(QString::fromStdString(item.text).replace('&', QLatin1String("&&")));
    action->setEnabled(item.enabled);
  }
  return menu;
}

// The item chosen, or 0. The menu may go while it is open, with its parent.
short RunMenu(QMenu* built, QPoint place, int item) {
  const QPointer<QMenu> menu = built;
  const QList<QAction*> actions = menu->actions();
  QAction* at = item >= 1 && item <= actions.size() ? actions[item - 1] : nullptr;
  menu->setActiveAction(at);
  const QAction* chosen = menu->exec(place, at);
  short number = 0;
  if (menu != nullptr && chosen != nullptr)
    number = static_cast<short>(menu->actions().indexOf(const_cast<QAction*>(chosen)) + 1);
  delete menu.data();
  return number;
}

} // namespace

MenuHandle NewMenu(short menuID, ConstStr255Param title) {
  auto block = std::make_unique<MenuBlock>();
  block->info = {menuID, title != nullptr ? TB_StdString(title) : std::string(), {}};
  block->master = &block->info;
  MenuHandle menu = &block->master;
  LivingMenus()[menu] = std::move(block);
  return menu;
}

MenuHandle GetMenu(short menuID) {
  const nlohmann::json* resource = TB_Resource("MENU", menuID);
  if (resource == nullptr)
    return nullptr;
  MenuHandle menu = NewMenu(menuID, TB_PString(StringMember(*resource, "title")));
  for (const std::string& text : StringsMember(*resource, "items"))
    AppendMenu(menu, TB_PString(text));
  return menu;
}

void DisposeMenu(MenuHandle menu) {
  LivingMenus().erase(menu);
}

short CountMenuItems(MenuHandle menu) {
  const MenuInfo* info = InfoOf(menu);
  return info != nullptr ? static_cast<short>(info->items.size()) : short{0};
}

void AppendMenu(MenuHandle menu, ConstStr255Param text) {
  InsertMenuItem(menu, text, CountMenuItems(menu));
}

void InsertMenuItem(MenuHandle menu, ConstStr255Param text, short afterItem) {
  MenuInfo* info = InfoOf(menu);
  if (info == nullptr || info->items.size() >= MAX_ITEMS)
    return;
  const auto place =
      std::clamp<ptrdiff_t>(afterItem, 0, static_cast<ptrdiff_t>(info->items.size()));
  info->items.insert(info->items.begin() + place, MenuItem{TB_StdString(text)});
}

void DeleteMenuItem(MenuHandle menu, short item) {
  if (ItemOf(menu, item) != nullptr)
    InfoOf(menu)->items.erase(InfoOf(menu)->items.begin() + (item - 1));
}

void GetMenuItemText(MenuHandle menu, short item, Str255 text) {
  const MenuItem* found = ItemOf(menu, item);
  PLstrcpy(text, TB_PString(found != nullptr ? found->text : std::string()));
}

void SetMenuItemText(MenuHandle menu, short item, ConstStr255Param text) {
  if (MenuItem* found = ItemOf(menu, item))
    found->text = TB_StdString(text);
}

void EnableMenuItem(MenuHandle menu, short item) {
  if (MenuItem* found = ItemOf(menu, item))
    found->enabled = true;
}

void DisableMenuItem(MenuHandle menu, short item) {
  if (MenuItem* found = ItemOf(menu, item))
    found->enabled = false;
}

QString MenuText(MenuHandle menu, int item) {
  const MenuItem* found = ItemOf(menu, item);
  return found != nullptr ? QString::fromStdString(found->text) : QString();
}

short OpenMenu(MenuHandle menu, WindowPtr window, Point place, short item, short width) {
  DialogWindow* owner = DialogWindow::Of(window);
  const MenuInfo* info = InfoOf(menu);
  if (owner == nullptr || info == nullptr)
    return 0;
  QMenu* built = BuildMenu(*info, owner);
  QFont font = PortFont(*window);
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * owner->scale()))));
  built->setFont(font);
  built->setMinimumWidth(static_cast<int>(std::ceil(width * owner->scale())));
  const QPointF corner =
      owner->mapToGlobal(QPointF(0, 0)) + QPointF(place.h, place.v) * owner->scale();
  return RunMenu(built, corner.toPoint(), item);
}

int32_t PopUpMenuSelect(MenuHandle menu, short top, short left, short item) {
  const MenuInfo* info = InfoOf(menu);
  if (info == nullptr || qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr)
    return 0;
  const short menuID = info->menuID;
  Point place = {top, left};
  if (FrontWindow() != nullptr)
    SubPt(GlobalOrigin(*FrontWindow()), &place);
  const short chosen = FrontWindow() != nullptr
                           ? OpenMenu(menu, FrontWindow(), place, item, 0)
                           : RunMenu(BuildMenu(*info, nullptr), QPoint(left, top), item);
  if (chosen == 0)
    return 0;
  return static_cast<int32_t>((static_cast<uint32_t>(static_cast<uint16_t>(menuID)) << 16) |
                              static_cast<uint16_t>(chosen));
}
