// Menus: lists of texts that popups show. Items count from 1.
#pragma once

#include "MacTypes.h"

struct MenuInfo;
typedef MenuInfo** MenuHandle;

// A menu that was disposed of is empty to every call, and a popup that still names it draws an
// empty box.
TB_EXPORT void DisposeMenu(MenuHandle menu);

TB_EXPORT short CountMenuItems(MenuHandle menu);
// The text is taken as it stands: no character of it has a meaning of its own.
TB_EXPORT void AppendMenu(MenuHandle menu, ConstStr255Param text);
TB_EXPORT void DeleteMenuItem(MenuHandle menu, short item);
// An empty text for an item that is not there.
TB_EXPORT void GetMenuItemText(MenuHandle menu, short item, Str255 text);
