// The entry of the module that has the dialog. LM_main.cpp loads it.
#include "CVFilterRecord.h"
#include "LM_entry.h"
#include "LM_ui_services.h"

extern "C" __attribute__((visibility("default"))) int
LM_dialog_main(int selector, void* record, intptr_t* data, int16_t* result) {
  LM_SetDialogServices(&LM_DesktopDialogServices());
  return LM_AnswerHost(selector, record, data, result);
}
