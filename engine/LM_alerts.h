// The stop alerts of the program, by what went wrong. Texts are resources. Each returns when the
// user has dismissed it; without a screen the text goes to standard error.
#pragma once

#include "LM_export.h"
#include "MacTypes.h"

void LM_ShowNoDisplayPixelsError();  // 16000: the host cannot show pixels
void LM_ShowHostNotCorvalineError(); // 16000 too: to the user both say that this host will not do
LM_EXPORT void LM_ShowTooFewLightsError(); // 16002: the last light is not removed
void LM_ShowNoFPUError();                  // 16003
LM_EXPORT void LM_ShowStyleSaveError();    // 16007
LM_EXPORT void LM_ShowStyleLoadError();    // 16008
LM_EXPORT void LM_FileDeleteLockedError(ConstStr255Param name); // 16009: the style is a locked file
LM_EXPORT void LM_FileSaveLockedError(ConstStr255Param name);   // 16010
