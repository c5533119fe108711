// Menus: lists of texts that popups show. Items count from 1.
//
// A menu is resource 'MENU': { "title": "Type", "items": ["Directional", "Omni", "Spot"] }.
#ifndef MAC_MENUS_H
#define MAC_MENUS_H

#include "MacTypes.h"

struct MenuInfo;
typedef MenuInfo** MenuHandle;

// Released with DisposeMenu. A menu that was disposed of is empty to every call, and a popup that
// still names it draws an empty box.
TB_EXPORT MenuHandle NewMenu(short menuID, ConstStr255Param title);
// From the resource; null when there is none.
TB_EXPORT MenuHandle GetMenu(short menuID);
TB_EXPORT void DisposeMenu(MenuHandle menu);

TB_EXPORT short CountMenuItems(MenuHandle menu);
// The text is taken as it stands: no character of it has a meaning of its own.
TB_EXPORT void AppendMenu(MenuHandle menu, ConstStr255Param text);
TB_EXPORT void InsertMenuItem(MenuHandle menu, ConstStr255Param text, short afterItem);
TB_EXPORT void DeleteMenuItem(MenuHandle menu, short item);
// An empty text for an item that is not there.
TB_EXPORT void GetMenuItemText(MenuHandle menu, short item, Str255 text);
TB_EXPORT void SetMenuItemText(MenuHandle menu, short item, ConstStr255Param text);
TB_EXPORT void EnableMenuItem(MenuHandle menu, short item);
TB_EXPORT void DisableMenuItem(MenuHandle menu, short item);

// Opens the menu with its item `item` at the global point, and waits for a choice. Menu number in
// the high word and item in the low one, or 0.
TB_EXPORT int32_t PopUpMenuSelect(MenuHandle menu, short top, short left, short item);

#endif
