// The whole interactive path on a small picture: a host that delivers tiles, the session, and the
// real dialog, moved by scripted events. Styles go to a folder of the test's own.
#pragma once

#include "LM_mac_UI.h"
#include "LM_style.h"
#include "ToolboxProbe.h"
#include "ToolboxScript.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// Milliseconds until a key has flashed its button, and the next dialog is there.
constexpr int KEY_ANSWERED = 250;

enum class HostService { NextTile, ShowPixels, QueryProperty, PickColor };

// What the host answers, and what it was asked.
struct HostAnswers {
  // Asked at each call of a service: the error to answer, 0 for none.
  std::function<int16_t(HostService)> trouble = [](HostService) { return int16_t{0}; };
  std::vector<std::string> channels = {"Red", "Green", "Blue", "Height"};
  int16_t picker = 0; // its result code
  CVColorRequest asked = {};
  std::string prompt;
  std::vector<int16_t> alerts; // numbers of those that were shown
  int shown = 0;               // how often the preview was shown
};

class DialogRun : public testing::Test {
protected:
  DialogRun();
  ~DialogRun() override;

  // A whole interactive run. The script is started when the dialog's turn comes. Answers what the
  // dialog came to: 0 after OK.
  enum class Script { RunsToItsEnd, MayBeCut };
  int16_t Run(ToolboxScript& script, Script expected = Script::RunsToItsEnd);
  // Opens the dialog, does the steps, cancels it.
  int16_t RunAndCancel(const std::function<void(ToolboxScript&)>& steps);

  // The contract keeps the plug-in's pointer as a number.
  LM_globals* Globals() const {
    return reinterpret_cast<LM_globals*>(slot); // NOLINT(performance-no-int-to-ptr)
  }
  DialogPtr Dialog() const { return Globals()->dialog; }
  // So many omni lights in a row, the first one selected, shown by the controls.
  void UseLights(int count) const;
  std::string PopupText(int16_t item) const;

  // The style folder.
  std::filesystem::path StylePath(const std::string& name) const;
  // Files of the style folder, hidden ones too, in order.
  std::vector<std::string> StyleFiles() const;
  std::string Bytes(const std::string& name) const;
  // Writes a style that has this gloss and this relief channel.
  void WriteStyle(const std::string& name, int16_t gloss, int16_t channel = 0) const;
  void WriteStyle(const std::string& name, const LM_style& style) const;

  std::filesystem::path folder;
  FilterRecord record{};
  intptr_t slot = 0;
  HostAnswers answers;
};

// An item's rectangle and its middle as the resource of a dialog has them.
Rect BoxInResource(int16_t dialog, int16_t item);
Point MiddleOf(int16_t item, int16_t dialog = LM_PARAMETER_DIALOG);
void ClickItem(ToolboxScript& script, int16_t item, int16_t dialog = LM_PARAMETER_DIALOG);
void DragBetween(ToolboxScript& script, Point from, Point to);

// Where UseLights puts the body of a light, and the middle of the work area.
Point BodyOf(int light);
constexpr Point WORK_AREA_MIDDLE = {156, 156};
