#include "SampleDialog.h"

#include "MacResources.h"
#include "MacStrings.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

constexpr char DIALOGS[] = R"({
  "DLOG": {
    "900": { "title": "Lighting", "size": [440, 320], "items": [
      { "number": 1, "kind": "button", "title": "OK", "box": [340, 276, 80, 26] },
      { "number": 2, "kind": "button", "title": "Cancel", "box": [240, 276, 80, 26] },
      { "number": 3, "kind": "userItem", "box": [336, 272, 88, 34] },
      { "number": 4, "kind": "userItem", "name": "Light well", "box": [20, 230, 32, 32] },
      { "number": 5, "kind": "checkBox", "title": "Preview", "box": [240, 24, 120, 20], "value": 1 },
      { "number": 6, "kind": "popup", "choices": ["Directional", "Omni", "Spot & more"],
        "value": 2, "box": [240, 52, 160, 26] },
      { "number": 7, "kind": "control", "definition": "SampleSlider", "title": "Gloss",
        "min": 0, "max": 100, "value": 50, "refCon": [134, 60], "box": [240, 92, 180, 30] },
      { "number": 8, "kind": "staticText", "title": "Replace \u201c^0\u201d? It is used.",
        "box": [240, 140, 180, 40], "small": true },
      { "number": 9, "kind": "userItem", "enabled": false, "box": [70, 230, 32, 32] },
      { "number": 10, "kind": "userItem", "box": [20, 20, 200, 200] } ] },
    "901": { "title": "Save", "size": [300, 120], "items": [
      { "number": 1, "kind": "button", "title": "OK", "box": [210, 84, 80, 26] },
      { "number": 2, "kind": "button", "title": "Cancel", "box": [120, 84, 80, 26] },
      { "number": 3, "kind": "staticText", "title": "Name:", "box": [10, 14, 60, 20] },
      { "number": 4, "kind": "editText", "title": "Dusk", "name": "Name", "box": [70, 10, 220, 26] } ] },
    "910": { "title": "No size", "items": [] },
    "911": { "size": [100, 100], "items": [
      { "number": 2, "kind": "userItem", "box": [0, 0, 1, 1] } ] },
    "912": { "size": [100, 100], "items": [
      { "number": 1, "kind": "userItem", "box": [0, 0, 1, 1] },
      { "number": 1, "kind": "userItem", "box": [0, 0, 1, 1] } ] },
    "913": { "size": [100, 100], "items": [
      { "number": 1, "kind": "wheel", "box": [0, 0, 1, 1] } ] },
    "914": { "size": [100, 100], "items": [
      { "number": 1, "kind": "control", "definition": "Nobody's", "box": [0, 0, 1, 1] } ] },
    "915": { "size": [100, 100], "items": [
      { "number": 1, "kind": "userItem", "box": [0, 0, 1e9, 1] } ] },
    "916": { "size": [100000, 100000], "items": [] }
  },
  "ALRT": { "16009": { "kind": "stop", "text": "\u201c^0\u201d is locked.", "buttons": ["OK"] } },
  "cicn": { "128": { "picture": "well.svg" }, "129": { "picture": "well.svg", "overlay": true },
            "130": { "picture": "missing.svg" }, "131": { "picture": "broken.svg" } },
  "CURS": { "128": { "picture": "well.svg", "hotSpot": [4, 4], "size": 16 } }
})";

constexpr char WELL[] =
    R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 32 32">
<circle cx="16" cy="16" r="15" fill="#ffcc00"/><path d="M4 16H28" stroke="currentColor"/></svg>)";
constexpr char BROKEN[] = "<svg><";

const TB_EmbeddedFile FILES[] = {
    {"en/dialogs.json", reinterpret_cast<const unsigned char*>(DIALOGS), sizeof DIALOGS - 1},
    {"well.svg", reinterpret_cast<const unsigned char*>(WELL), sizeof WELL - 1},
    {"broken.svg", reinterpret_cast<const unsigned char*>(BROKEN), sizeof BROKEN - 1}};

std::string PointText(intptr_t packed) {
  return std::to_string(static_cast<int16_t>(packed & 0xFFFF)) + "," +
         std::to_string(static_cast<int16_t>((packed >> 16) & 0xFFFF));
}

void DrawSlider(ControlHandle control) {
  const ControlRecord& record = **control;
  const Rect& box = record.contrlRect;
  EraseRect(&box);
  MoveTo(box.left, static_cast<short>(box.top + 10));
  LineTo(static_cast<short>(box.right - 1), static_cast<short>(box.top + 10));
  const int width = box.right - box.left - 12;
  const int range = std::max(1, record.contrlMax - record.contrlMin);
  MoveTo(static_cast<short>(box.left + 6 + width * (record.contrlValue - record.contrlMin) / range),
         static_cast<short>(box.top + 11));
  DrawPISlider();
}

void DragSlider(ControlHandle control) {
  const Rect& box = (**control).contrlRect;
  Point mouse;
  do
    GetMouse(&mouse);
  while (StillDown());
  GetMouse(&mouse);
  const int value = (mouse.h - box.left - 6) * 100 / (box.right - box.left - 12);
  (**control).contrlValue = static_cast<short>(std::clamp(value, 0, 100));
  Draw1Control(control);
}

int32_t SliderDefinition(short, ControlHandle control, short message, intptr_t param) {
  switch (message) {
  case initCntl:
    SliderLog().push_back("init " + std::to_string((**control).contrlRfCon >> 16) + " " +
                          std::to_string((**control).contrlRfCon & 0xFFFF));
    return 0;
  case drawCntl:
    SliderLog().push_back("draw " + std::to_string(param));
    DrawSlider(control);
    return 0;
  case testCntl: {
    SliderLog().push_back("test " + PointText(param));
    const Point point = {static_cast<int16_t>(param >> 16), static_cast<int16_t>(param & 0xFFFF)};
    return PtInRect(point, &(**control).contrlRect) ? 130 : 0;
  }
  case dragCntl:
    SliderLog().push_back("drag " + std::to_string(param));
    DragSlider(control);
    return 1;
  case dispCntl:
    SliderLog().push_back("dispose");
    return 0;
  default:
    SliderLog().push_back("message " + std::to_string(message));
    return 0;
  }
}

} // namespace

std::vector<std::string>& SliderLog() {
  static std::vector<std::string> log;
  return log;
}

void UseSampleResources() {
  TB_SetLanguage("en");
  EXPECT_TRUE(TB_UseResources(FILES, std::size(FILES)));
  RegisterControlDefinition(SLIDER_DEFINITION, TB_PString("SampleSlider"), SliderDefinition);
}

SampleDialog::SampleDialog(int16_t number, bool shown) : dialog(nullptr) {
  UseSampleResources();
  ParamText(TB_PString("Dusk"), TB_PString(""), TB_PString(""), TB_PString(""));
  dialog = GetNewDialog(number, nullptr, nullptr);
  if (dialog == nullptr)
    throw std::runtime_error("the sample dialog was not made");
  SetPort(dialog);
  if (shown) {
    ShowWindow(dialog);
    DrawDialog(dialog);
  }
}

SampleDialog::~SampleDialog() {
  DisposeDialog(dialog);
}

Rect SampleDialog::Box(int16_t item) const {
  Rect box;
  GetDialogItem(dialog, item, nullptr, nullptr, &box);
  return box;
}

ControlHandle SampleDialog::Control(int16_t item) const {
  Handle handle = nullptr;
  GetDialogItem(dialog, item, nullptr, &handle, nullptr);
  return ItemControlOf(handle);
}

Point SampleDialog::Middle(int16_t item) const {
  const Rect box = Box(item);
  return Point{static_cast<int16_t>((box.top + box.bottom) / 2),
               static_cast<int16_t>((box.left + box.right) / 2)};
}

int16_t HitItem(ModalFilterUPP filter) {
  int16_t item = 77; // not what any dialog answers
  ModalDialog(filter, &item);
  return item;
}

void AwaitEnd(const ToolboxScript& script) {
  while (!script.Done())
    RunEvents(16);
}

TestPort::TestPort(short width, short height, double ratio) : port(nullptr), _saved(nullptr) {
  GetPort(&_saved);
  const Rect bounds = {0, 0, height, width};
  port = NewOffscreenPort(bounds, ratio);
  SetPort(port);
}

TestPort::~TestPort() {
  DisposePort(port);
  SetPort(_saved);
}

std::vector<std::string> TestPort::Rows() const {
  std::vector<std::string> rows;
  for (short v = 0; v < port->portRect.bottom; ++v) {
    std::string row;
    for (short h = 0; h < port->portRect.right; ++h) {
      RGBColor color;
      GetCPixel(h, v, &color);
      const bool black = color.red == 0 && color.green == 0 && color.blue == 0;
      const bool white = color.red == 65535 && color.green == 65535 && color.blue == 65535;
      row += black ? '#' : white ? '.' : '?';
    }
    rows.push_back(row);
  }
  return rows;
}
