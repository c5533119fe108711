// Windows. A window is a port with a place on the screen; dialogs are the only kind made here.
#pragma once

#include "QDPorts.h"
#include "QDRegions.h"

// What hangs on a window for its owner's use.
struct AuxWinRec {
  intptr_t awRefCon;
};
typedef AuxWinRec** AuxWinHandle;

// The auxiliary record of a window, which lives as long as the window. False without one.
TB_EXPORT Boolean GetAuxWin(WindowPtr window, AuxWinHandle* record);

TB_EXPORT void ShowWindow(WindowPtr window);
TB_EXPORT void SetWRefCon(WindowPtr window, intptr_t value);
TB_EXPORT intptr_t GetWRefCon(WindowPtr window);
