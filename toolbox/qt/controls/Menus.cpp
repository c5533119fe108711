#include "Menus.h"

#include "HandleBlock.h"
#include "MacStrings.h"
#include "MenuBlock.h"
#include "TextStyle.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <algorithm>
#include <cmath>
#include <memory>
#include <unordered_map>
#include <vector>

struct MenuInfo {
  std::vector<std::string> items;
};

namespace {

constexpr size_t MAX_ITEMS = 32767;

typedef HandleBlock<MenuInfo> MenuBlock;

std::unordered_map<MenuHandle, std::unique_ptr<MenuBlock>>& LivingMenus() {
  static std::unordered_map<MenuHandle, std::unique_ptr<MenuBlock>> menus;
  return menus;
}

// Null for a menu that was disposed of.
MenuInfo* InfoOf(MenuHandle menu) {
  const auto found = LivingMenus().find(menu);
  return found != LivingMenus().end() ? &found->second->record : nullptr;
}

std::string* ItemOf(MenuHandle menu, int item) {
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
    const QList<QAction*> choices = actions();
    if (event->key() == Qt::Key_Home && !choices.isEmpty())
      setActiveAction(choices.first());
    else if (event->key() == Qt::Key_End && !choices.isEmpty())
      setActiveAction(choices.last());
  }
};

QMenu* BuildMenu(const MenuInfo& info, QWidget* parent) {
  QMenu* menu = new PopupMenu(parent);
  for (const std::string& item : info.items)
    menu->addAction(QString::fromStdString(item).replace('&', QLatin1String("&&")));
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

MenuHandle NewMenu() {
  auto block = std::make_unique<MenuBlock>();
  block->master = &block->record;
  MenuHandle menu = &block->master;
  LivingMenus()[menu] = std::move(block);
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
  MenuInfo* info = InfoOf(menu);
  if (info != nullptr && info->items.size() < MAX_ITEMS)
    info->items.push_back(TB_StdString(text));
}

void DeleteMenuItem(MenuHandle menu, short item) {
  if (ItemOf(menu, item) != nullptr)
    InfoOf(menu)->items.erase(InfoOf(menu)->items.begin() + (item - 1));
}

void GetMenuItemText(MenuHandle menu, short item, Str255 text) {
  const std::string* found = ItemOf(menu, item);
  PLstrcpy(text, TB_PString(found != nullptr ? *found : std::string()));
}

QString MenuText(MenuHandle menu, int item) {
  const std::string* found = ItemOf(menu, item);
  return found != nullptr ? QString::fromStdString(*found) : QString();
}

short OpenMenu(MenuHandle menu, WindowPtr window, Point place, short item, short width) {
  const PortState* owner = WindowStateOf(window);
  const MenuInfo* info = InfoOf(menu);
  if (owner == nullptr || info == nullptr)
    return 0;
  const double scale = owner->windowScale;
  QMenu* built = BuildMenu(*info, owner->window);
  QFont font = PortFont(*window);
  font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * scale))));
  built->setFont(font);
  built->setMinimumWidth(static_cast<int>(std::ceil(width * scale)));
  const QPointF corner =
      owner->window->mapToGlobal(QPointF(0, 0)) + QPointF(place.h, place.v) * scale;
  return RunMenu(built, corner.toPoint(), item);
}
