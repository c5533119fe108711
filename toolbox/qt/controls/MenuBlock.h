// Menus behind their handles. Private to this layer.
#pragma once

#include "Menus.h"
#include "QDPorts.h"

#include <QString>

// A menu without items. Released with DisposeMenu.
MenuHandle NewMenu();
// The text of an item; empty without one.
QString MenuText(MenuHandle menu, int item);
// Opens the menu over a point of the window's port with `item` at it, at least `width` units wide,
// and waits. The item chosen, or 0.
short OpenMenu(MenuHandle menu, WindowPtr window, Point place, short item, short width);
