#include "ScriptedDialog.h"

#include "LM_dialog_services.h"
#include "LM_preview.h"
#include "LM_session.h"

#include <gtest/gtest.h>

namespace {

ScriptedDialog* dialog = nullptr;

int16_t Construct(FilterRecord* record, LM_globals* g) {
  static char standIn;
  g->dialog = reinterpret_cast<GrafPort*>(&standIn);
  dialog->previewBox = {112, 12, 368, 268};
  return LM_SetUpPreview(record, g, {100, 0, 380, 280}, &dialog->previewBox);
}
void Dispose(LM_globals* g) {
  g->dialog = nullptr;
}
int16_t RunDialog(FilterRecord*, LM_globals* g) {
  if (g->UseCurrentSettings() == 0)
    g->Default();
  g->InvalidateCaches();
  const int16_t result = dialog->action(g);
  g->FreeCaches();
  Dispose(g);
  return result;
}

constexpr LM_dialog_services SCRIPTED = {Construct, RunDialog, Dispose};

// The preview's walk ends with an empty input rectangle, after which one more continue runs the
// dialog.
int16_t Preview(ScriptedHost& host) {
  int16_t result = CV_RESULT_OK;
  while (result == CV_RESULT_OK && SettingsOf(host)->previewComplete == 0) {
    host.requests.push_back(Line(host.record));
    host.Deliver();
    result = host.Call(LM_SEL_CONTINUE);
  }
  return result == CV_RESULT_OK ? host.Call(LM_SEL_CONTINUE) : result;
}

} // namespace

ScriptedDialog::ScriptedDialog() {
  dialog = this;
  LM_SetDialogServices(&SCRIPTED);
}

ScriptedDialog::~ScriptedDialog() {
  LM_SetDialogServices(nullptr);
  dialog = nullptr;
}

int SessionEntry(int selector, void* record, intptr_t* data, int16_t* result) {
  return LM_AnswerHost(selector, record, data, result);
}

LM_globals* SettingsOf(const ScriptedHost& host) {
  return reinterpret_cast<LM_globals*>(host.data);
}

int16_t RunWithDialog(ScriptedHost& host) {
  int16_t result = host.Call(LM_SEL_PARAMETERS);
  if (result == CV_RESULT_OK)
    result = host.Call(LM_SEL_START);
  if (result == CV_RESULT_OK)
    result = Preview(host);
  if (result == CV_RESULT_OK)
    result = host.Walk();
  if (host.data != 0) {
    EXPECT_EQ(host.Call(LM_SEL_FINISH), CV_RESULT_OK);
  }
  return result;
}
