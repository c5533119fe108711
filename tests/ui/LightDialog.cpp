#include "LightDialog.h"

#include "Events.h"
#include "LM_item_drawing.h"
#include "LM_mac_slider_handler.h"
#include "MacResources.h"
#include "MacStrings.h"
#include "ToolboxDesktop.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace {

constexpr char RESOURCES[] = R"({
  "DLOG": { "950": { "size": [640, 400], "items": [
    { "number": 1, "kind": "button", "title": "OK", "box": [540, 360, 80, 24] },
    { "number": 2, "kind": "button", "title": "Cancel", "box": [440, 360, 80, 24] },
    { "number": 3, "kind": "userItem", "box": [536, 356, 88, 32] },
    { "number": 4, "kind": "userItem", "box": [340, 360, 60, 20] },
    { "number": 5, "kind": "userItem", "box": [320, 300, 30, 20] },
    { "number": 6, "kind": "userItem", "box": [20, 20, 280, 280] },
    { "number": 7, "kind": "userItem", "box": [360, 300, 30, 20] },
    { "number": 8, "kind": "userItem", "box": [32, 32, 256, 256] },
    { "number": 9, "kind": "checkBox", "title": "On", "box": [420, 300, 60, 18] },
    { "number": 10, "kind": "checkBox", "title": "White", "box": [500, 300, 60, 18] },
    { "number": 11, "kind": "popup", "choices": ["a", "b", "c"], "box": [350, 12, 70, 18] },
    { "number": 12, "kind": "popup", "choices": ["none", "red"], "box": [350, 82, 70, 18] },
    { "number": 13, "kind": "control", "definition": "SliderControl", "title": "Gloss",
      "max": 254, "value": 127, "refCon": [150, 60], "box": [330, 140, 201, 30] },
    { "number": 14, "kind": "control", "definition": "SliderControl", "title": "Narrow",
      "max": 254, "value": 127, "refCon": [150, 60], "box": [330, 180, 69, 30] },
    { "number": 15, "kind": "control", "definition": "SliderControl", "title": "Same",
      "max": 0, "value": 0, "refCon": [150, 60], "box": [330, 220, 201, 30] },
    { "number": 16, "kind": "userItem", "box": [0, 0, 0, 0] },
    { "number": 17, "kind": "control", "definition": "SliderControl", "title": "Intensity",
      "max": 254, "value": 127, "refCon": [150, 60], "box": [330, 260, 140, 30] },
    { "number": 18, "kind": "control", "definition": "SliderControl", "title": "Spread",
      "max": 255, "value": 127, "refCon": [150, 60], "box": [480, 260, 140, 30] },
    { "number": 19, "kind": "control", "definition": "SliderControl", "title": "Height",
      "max": 254, "value": 127, "refCon": [134, 60], "box": [540, 140, 90, 30] },
    { "number": 20, "kind": "popup", "choices": ["x"], "box": [500, 82, 70, 18] },
    { "number": 21, "kind": "userItem", "box": [20, 320, 40, 40] },
    { "number": 22, "kind": "userItem", "box": [80, 320, 40, 40] },
    { "number": 23, "kind": "userItem", "box": [340, 330, 60, 20] },
    { "number": 24, "kind": "userItem", "box": [330, 20, 130, 40] },
    { "number": 25, "kind": "userItem", "box": [480, 20, 150, 40] },
    { "number": 26, "kind": "userItem", "box": [330, 90, 130, 40] },
    { "number": 27, "kind": "userItem", "box": [480, 90, 150, 40] },
    { "number": 28, "kind": "userItem", "box": [500, 12, 90, 16] },
    { "number": 29, "kind": "checkBox", "title": "Preview", "box": [220, 320, 80, 18] } ] } },
  "ALRT": { "16002": { "kind": "stop", "text": "Too few lights." } },
  "STR#": { "134": ["Flat", "High"], "150": ["Low", "Full"], "139": ["Save", "Delete"],
            "140": ["Light"] },
  "cicn": { "128": { "picture": "red.svg" }, "130": { "picture": "blue.svg" },
            "131": { "picture": "green.svg" }, "133": { "picture": "half.svg", "overlay": true } }
})";

#define SQUARE(color, width)                                                                       \
  "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 10 10\"><rect width=\"" width           \
  "\" height=\"10\" fill=\"" color "\"/></svg>"

TB_EmbeddedFile File(const char* path, const char* text) {
  return {path, reinterpret_cast<const unsigned char*>(text), std::char_traits<char>::length(text)};
}

void UseResources() {
  static const TB_EmbeddedFile FILES[] = {
      File("en/dialog.json", RESOURCES), File("red.svg", SQUARE("#f00", "10")),
      File("green.svg", SQUARE("#0f0", "10")), File("blue.svg", SQUARE("#00f", "10")),
      File("half.svg", SQUARE("#fff", "5"))};
  TB_SetLanguage("en");
  ASSERT_TRUE(TB_UseResources(FILES, std::size(FILES)));
  ASSERT_EQ(RegisterControlDefinition(LM_SLIDER_DEFINITION, TB_PString("SliderControl"), SC_main),
            0);
}

int16_t Show(const CVPixelMap* map, const CVRect32* source, int32_t row, int32_t column, void*) {
  return ShowPixelMap(map, source, row, column);
}

} // namespace

uint32_t PixelAt(int h, int v) {
  RGBColor color;
  GetCPixel(static_cast<short>(h), static_cast<short>(v), &color);
  return RGB(color.red >> 8, color.green >> 8, color.blue >> 8);
}

Pixels PixelsOf(const Rect& rect) {
  Pixels pixels;
  for (int v = rect.top; v < rect.bottom; ++v) {
    for (int h = rect.left; h < rect.right; ++h)
      pixels.push_back(PixelAt(h, v));
  }
  return pixels;
}

LightDialog::LightDialog() {
  UseResources();
  dialog = GetNewDialog(LIGHT_DIALOG, nullptr, nullptr);
  globals = LM_NewGlobals();
  if (dialog == nullptr || globals == nullptr)
    throw std::runtime_error("the dialog was not made");
  LM_SetGlobalsOfDialog(dialog, globals);
  SetPort(dialog);
  record.showPixels = Show;
  globals->record = &record;
  const Rect work = Box(LM_WORK_AREA_ITEM);
  const int side = work.right - work.left;
  _frame.resize(static_cast<size_t>(side) * side * 3);
  for (size_t i = 0; i < _frame.size(); ++i)
    _frame[i] = static_cast<uint8_t>(i % 3 == 0 ? i / 840 / 2 : i * 7 % 101);
  CVPixelMap& map = globals->previewMaps[LM_FRAME_MAP];
  map.bounds = {0, 0, side, side};
  map.imageMode = CV_MODE_RGB;
  map.rowBytes = side * 3;
  map.columnBytes = 3;
  map.planeBytes = 1;
  map.baseAddress = _frame.data();
  globals->frameOriginX = work.left;
  globals->frameOriginY = work.top;
  globals->frameCenterX = static_cast<int16_t>(work.left + side / 2);
  globals->frameCenterY = static_cast<int16_t>(work.top + side / 2);
  globals->Default();
  ShowWindow(dialog);
  DrawDialog(dialog);
}

LightDialog::~LightDialog() {
  DisposeDialog(dialog);
  LM_DestroyGlobals(globals);
}

LM_light_UI& LightDialog::UseLight(LM_light_type type, int16_t h, int16_t v) {
  globals->curLight = 0;
  LM_light_UI& light = globals->lights[0];
  light.type = type;
  light.center = {h, v};
  light.handle1 = {40, 0};
  light.handle2 = {0, 20};
  light.radius = 30;
  return light;
}

Point LightDialog::Middle(int16_t item) const {
  const Rect box = Box(item);
  return {static_cast<int16_t>((box.top + box.bottom) / 2),
          static_cast<int16_t>((box.left + box.right) / 2)};
}

void WithMouseDown(ToolboxScript& script, const std::function<void()>& body) {
  script.Start();
  EventRecord event;
  ASSERT_TRUE(TakeEvent(1 << mouseDown, &event, 10000)) << "no press arrived";
  body();
  FlushEvents();
  EXPECT_FALSE(IsButtonDown()) << "the script did not release the button";
}
