#include "LM_alerts.h"

#include "MacDialogs.h"

namespace {

void StopWithName(int16_t alert, ConstStr255Param name) {
  static const Str255 empty = {0};
  ParamText(name, empty, empty, empty);
  StopAlert(alert, nullptr);
}

} // namespace

void LM_ShowNoDisplayPixelsError() {
  StopAlert(16000, nullptr);
}
void LM_ShowHostNotCorvalineError() {
  StopAlert(16000, nullptr);
}
void LM_ShowTooFewLightsError() {
  StopAlert(16002, nullptr);
}
void LM_ShowNoFPUError() {
  StopAlert(16003, nullptr);
}
void LM_ShowStyleSaveError() {
  StopAlert(16007, nullptr);
}
void LM_ShowStyleLoadError() {
  StopAlert(16008, nullptr);
}
void LM_FileDeleteLockedError(ConstStr255Param name) {
  StopWithName(16009, name);
}
void LM_FileSaveLockedError(ConstStr255Param name) {
  StopWithName(16010, name);
}
