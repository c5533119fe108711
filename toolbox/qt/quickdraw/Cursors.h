// The shape of the mouse pointer.
//
// A cursor is resource 'CURS': { "picture": "light.svg", "hotSpot": [8, 8], "size": 24 } (an SVG or
// PNG beside the resource file, drawn `size` units wide and high, hot spot in those units), or
// { "shape": "wait" } for one of the desktop's own: arrow, wait, cross, ibeam, hand, closedHand.
#pragma once

#include "MacTypes.h"

// One pointer shape, as GetCursor loads it.
struct Cursor {
  short cursorID;
};
typedef Cursor* CursPtr;
typedef Cursor** CursHandle;

enum { iBeamCursor = 1, crossCursor = 2, plusCursor = 3, watchCursor = 4 };

// The resource, or the desktop's own shape for numbers 1 to 4 without one; null for no such cursor.
// The handle stays the library's.
TB_EXPORT CursHandle GetCursor(short cursorID);
// In force for all the program's windows until InitCursor. A null cursor changes nothing.
TB_EXPORT void SetCursor(const Cursor* cursor);
// Back to the arrow, or whatever each window asks for.
TB_EXPORT void InitCursor();
