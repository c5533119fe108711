// The stop alerts of the program, by what went wrong. Texts are resources. Each returns when the
// user has dismissed it; without a screen the text goes to standard error.
#pragma once

#include "MacDialogs.h"

constexpr Str255 LM_NO_TEXT = {0};

// The host cannot show pixels, or is another one: to the user both say that it will not do.
inline void LM_ShowNoDisplayPixelsError() {
  StopAlert(16000, nullptr);
}
inline void LM_ShowHostNotCorvalineError() {
  StopAlert(16000, nullptr);
}

// The last light is not removed.
inline void LM_ShowTooFewLightsError() {
  StopAlert(16002, nullptr);
}

inline void LM_ShowNoFPUError() {
  StopAlert(16003, nullptr);
}

inline void LM_ShowStyleSaveError() {
  StopAlert(16007, nullptr);
}
inline void LM_ShowStyleLoadError() {
  StopAlert(16008, nullptr);
}

// The style is a locked file.
inline void LM_FileDeleteLockedError(ConstStr255Param name) {
  ParamText(name, LM_NO_TEXT, LM_NO_TEXT, LM_NO_TEXT);
  StopAlert(16009, nullptr);
}
inline void LM_FileSaveLockedError(ConstStr255Param name) {
  ParamText(name, LM_NO_TEXT, LM_NO_TEXT, LM_NO_TEXT);
  StopAlert(16010, nullptr);
}
