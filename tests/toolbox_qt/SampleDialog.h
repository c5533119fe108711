// A small dialog of every kind of item, and helpers to look into ports.
#pragma once

#include "HostDialogs.h"
#include "QuickDraw.h"
#include "ToolboxProbe.h"
#include "ToolboxScript.h"

#include <string>
#include <vector>

constexpr int16_t SAMPLE_DIALOG = 900;
constexpr int16_t NAME_DIALOG = 901;
constexpr int16_t SLIDER_DEFINITION = 129;

// Items of the sample dialog.
enum SampleItem : int16_t {
  OK_ITEM = 1,
  CANCEL_ITEM = 2,
  OUTLINE_ITEM = 3,
  WELL_ITEM = 4,
  CHECK_ITEM = 5,
  POPUP_ITEM = 6,
  SLIDER_ITEM = 7,
  TEXT_ITEM = 8,
  DISABLED_ITEM = 9,
  BOX_ITEM = 10
};
// Items of the name dialog: 1 OK, 2 Cancel, 3 the prompt, 4 the field.
constexpr int16_t FIELD_ITEM = 4;

// Hands in the resources and registers the slider, once.
void UseSampleResources();

// A dialog that goes when the test ends. shown: it is opened and drawn.
class SampleDialog {
public:
  explicit SampleDialog(int16_t number = SAMPLE_DIALOG, bool shown = true);
  ~SampleDialog();
  SampleDialog(const SampleDialog&) = delete;
  SampleDialog& operator=(const SampleDialog&) = delete;

  DialogPtr dialog;
  Rect Box(int16_t item) const;
  ControlHandle Control(int16_t item) const;
  Point Middle(int16_t item) const;
};

// Runs the dialog in front until an item is hit. Answers its number.
int16_t HitItem(ModalFilterUPP filter = nullptr);
// Waits until the script has done all its steps.
void AwaitEnd(const ToolboxScript& script);

// A port without a window that goes when the test ends, made current for its life.
class TestPort {
public:
  explicit TestPort(short width, short height, double ratio = 1);
  ~TestPort();
  TestPort(const TestPort&) = delete;
  TestPort& operator=(const TestPort&) = delete;

  GrafPtr port;
  // Rows of '#' (black), '.' (white) and '?' (anything else), one character a unit.
  std::vector<std::string> Rows() const;

private:
  GrafPtr _saved;
};

// What the sample slider was asked to do, in order.
std::vector<std::string>& SliderLog();
