// The shape of the mouse pointer.
//
// A cursor is resource 'CURS': { "picture": "light.svg", "hotSpot": [8, 8], "size": 24 } (an SVG or
// PNG beside the resource file, drawn `size` units wide and high, hot spot in those units).
#pragma once

#include "MacTypes.h"

// One pointer shape, as GetCursor loads it.
struct Cursor {
  short cursorID;
};
typedef Cursor** CursHandle;

// The desktop's own shape for waiting.
enum { watchCursor = 4 };

// Null for no such cursor. The handle stays the library's.
TB_EXPORT CursHandle GetCursor(short cursorID);
// In force for all the program's windows until InitCursor. A null cursor changes nothing.
TB_EXPORT void SetCursor(const Cursor* cursor);
// Back to the arrow, or whatever each window asks for.
TB_EXPORT void InitCursor();
