// Windows. A window is a port with a place on the screen; dialogs are the only kind made here.
#ifndef MAC_WINDOWS_H
#define MAC_WINDOWS_H

#include "QDPorts.h"
#include "QDRegions.h"

// What hangs on a window for its owner's use.
struct AuxWinRec {
  WindowPtr awOwner;
  intptr_t awRefCon;
};
typedef AuxWinRec** AuxWinHandle;

// The auxiliary record of a window, which lives as long as the window. False without one.
TB_EXPORT Boolean GetAuxWin(WindowPtr window, AuxWinHandle* record);

TB_EXPORT void ShowWindow(WindowPtr window);
TB_EXPORT void HideWindow(WindowPtr window);
TB_EXPORT void SelectWindow(WindowPtr window);
TB_EXPORT Boolean IsWindowVisible(WindowPtr window);
// The visible window opened last, or null.
TB_EXPORT WindowPtr FrontWindow();
TB_EXPORT void SetWTitle(WindowPtr window, ConstStr255Param title);
TB_EXPORT void GetWTitle(WindowPtr window, Str255 title);
TB_EXPORT void SetWRefCon(WindowPtr window, intptr_t value);
TB_EXPORT intptr_t GetWRefCon(WindowPtr window);

// Parts of the current port that the next update event of its window redraws.
TB_EXPORT void InvalRect(const Rect* rect);
TB_EXPORT void ValidRect(const Rect* rect);

#endif
