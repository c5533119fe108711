// Dialog utilities of the host process: movable modal dialogs, and the slider's indicator.
// ShowAbout is in MacDialogs.h.
#pragma once

#include "CVFilterRecord.h"
#include "Dialogs.h"

// What stands for a resource: a handle without bytes, which nothing purges; the same each time, and
// the library's to keep. Null when there is no such resource.
TB_EXPORT Handle GetResource(OSType type, int16_t number);
// Sets ResError: resNotFound for a block that has been purged, which cannot be had again.
TB_EXPORT void LoadResource(Handle resource);
// noErr, resNotFound or memFullErr, of the last of these calls.
TB_EXPORT OSErr ResError();

// The dialog made next from this resource ('DLOG') opens in the middle of the window that is active
// when it is shown, or of the screen. Other dialogs open where the desktop puts them.
TB_EXPORT void CenterDialog(Handle dialogResource);
// Whether this resource ('DLOG') makes a movable modal dialog of the host with that signature: all
// dialogs can be moved here, so it only has to be a dialog, and the host Corvaline.
TB_EXPORT Boolean SetUpMoveableModal(Handle dialogResource, OSType hostSignature);
// ModalDialog, which also calls processEvent (null for none) with each event that the filter did
// not consume, and now and then with a null event, so that a host's windows stay alive.
TB_EXPORT void MoveableModalDialog(CVProcessEventProc processEvent, ModalFilterUPP filter,
                                   int16_t* itemHit);

// Draws a slider's indicator, its tip at the pen: a triangle that covers the unit squares from 5
// left to 5 right of the pen, in the pen's row and the 5 rows below it. Moves the pen back to where
// it was. Between OpenRgn and CloseRgn its outline is recorded.
TB_EXPORT void DrawPISlider();
