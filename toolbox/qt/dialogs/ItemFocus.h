// Dialog items from the keyboard and for assistive programs. Private to this layer.
//
// F6 goes from item to item, Shift+F6 back, and Tab does where the program leaves it alone. The
// item that has the keyboard is framed: Space presses it, and a slider or popup is changed by the
// arrow keys, Page Up, Page Down, Home and End. Nothing has it until such a key asks for it.
#pragma once

#include "DialogWindow.h"

#include <QKeyEvent>

enum class FocusStep { Forwards, Backwards };

// Whether an item can be used: shown, enabled, and its control active.
bool IsUsable(const DialogItem& item);
// An item with a value between bounds: a slider or another control of a definition, or a popup.
bool HasRange(const DialogItem& item);
// What the item is called, for who cannot see it.
QString ItemName(const DialogItem& item);

void MoveItemFocus(DialogWindow& window, FocusStep step);
// Gives the keyboard to an item; 0 to none.
void FocusItem(DialogWindow& window, int number);
// Uses a key that belongs to the focus. False when it is the program's.
bool TakeFocusKey(DialogWindow& window, const QKeyEvent& key);

// Asks the loop that runs the dialog to press an item, or to give its control a value: then the
// item is hit, as if the mouse had done it.
void RequestPress(const DialogWindow& window, int number);
void RequestValue(const DialogWindow& window, int number, int value);
