// A dialog that does what a test tells it, for interactive runs of the session without a screen.
#pragma once

#include "LM_globals.h"
#include "ScriptedHost.h"

#include <functional>

// In use while one of these lives. `action` is what the user does to the settings, and how the
// dialog ends: 0 after OK.
struct ScriptedDialog {
  ScriptedDialog();
  ~ScriptedDialog();
  ScriptedDialog(const ScriptedDialog&) = delete;
  ScriptedDialog& operator=(const ScriptedDialog&) = delete;

  std::function<int16_t(LM_globals*)> action;
  Rect previewBox = {};
};

// The session's entry point, as the module has it.
int SessionEntry(int selector, void* record, intptr_t* data, int16_t* result);

LM_globals* SettingsOf(const ScriptedHost& host);

// A whole interactive run: parameters, start, preview tiles, dialog, tiles, finish. Answers the
// first result that is not 0.
int16_t RunWithDialog(ScriptedHost& host);
