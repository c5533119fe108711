// Alerts, and the host's own dialog utilities, as far as they need no screen.
//
// What is shown goes through a presenter. The one in place at first prints to standard error; a
// program with a screen installs its own.
#pragma once

#include "MacTypes.h"

#include <string>
#include <string_view>
#include <vector>

struct EventRecord;
struct GrafPort;
typedef GrafPort* DialogPtr;
// Sees an event before the dialog does. 1: consumed, *item is the item hit.
typedef Boolean (*ModalFilterUPP)(DialogPtr dialog, EventRecord* event, int16_t* item);

// Sets the texts that stand for ^0 to ^3 in alerts and dialogs; a null one stays as it is.
TB_EXPORT void ParamText(ConstStr255Param text0, ConstStr255Param text1, ConstStr255Param text2,
                         ConstStr255Param text3);
// Shows alert `number` (resource type ALRT) and answers the item hit: 1 is the first button. -1
// when there is no such resource.
TB_EXPORT int16_t StopAlert(int16_t number, ModalFilterUPP filter);

// Releases a handle that the host made. services: FilterRecord.handleServices.
TB_EXPORT void HostDisposeHandle(void* services, Handle handle);
// Shows the about box `number` (resource type ALRT). about: the host's record, or null.
TB_EXPORT void ShowAbout(const CVAboutRecord* about, int16_t number);

// --- For hosts and the layer with a screen ---

// A message ready to be shown: the language chosen, ^0 to ^3 filled in.
struct TB_Message {
  int16_t number;
  std::string kind;                 // "stop" or "about"
  std::string text;                 // one sentence that says what is the matter
  std::string detail;               // what to do about it; may be empty
  std::vector<std::string> buttons; // at least one; the first is the default
};
// Shows a message and answers the button chosen, from 1. hostWindow: CVAboutRecord.hostWindow, or
// null. filter may be null.
typedef int16_t (*TB_MessagePresenter)(const TB_Message& message, void* hostWindow,
                                       ModalFilterUPP filter);
// Installs the presenter of alerts, of about boxes; null means the printing one. Answers the
// one before, null for the printing one.
TB_EXPORT TB_MessagePresenter TB_SetAlertPresenter(TB_MessagePresenter presenter);
TB_EXPORT TB_MessagePresenter TB_SetAboutPresenter(TB_MessagePresenter presenter);
// The text with ^0 to ^3 replaced by what ParamText set.
TB_EXPORT std::string TB_FillInParamText(std::string_view text);
