// Whole drags, from press to release, in a real dialog.
#include "LightDialog.h"

#include "Events.h"
#include "LM_item_drawing.h"
#include "LM_light_UI_mac.h"
#include "MacDialogs.h"

#include <gtest/gtest.h>

namespace {

constexpr LM_light_type TYPES[] = {LM_LIGHT_OMNI, LM_LIGHT_DIRECTIONAL, LM_LIGHT_SPOT};

std::vector<int16_t> alerts;

class LightDrag : public testing::Test {
protected:
  LightDrag() {
    alerts.clear();
    _presenter = TB_SetAlertPresenter([](const TB_Message& message, void*, ModalFilterUPP) {
      alerts.push_back(message.number);
      return int16_t{1};
    });
  }
  ~LightDrag() override { TB_SetAlertPresenter(_presenter); }

  // Looks at the picture while the mouse is down.
  void Look(ToolboxScript& script, Pixels& into, int16_t item = LM_WORK_AREA_ITEM) {
    script.Wait(60).Call([this, &into, item] {
      const LM_port_scope port(test.dialog);
      into = PixelsOf(test.Box(item));
    });
  }
  Point Trash() const { return test.Middle(LM_TRASH_ITEM); }
  // The dialog's point at (h, v) from the middle of the preview.
  static Point At(int h, int v) {
    return {static_cast<int16_t>(160 + v), static_cast<int16_t>(160 + h)};
  }

  LightDialog test;

private:
  TB_MessagePresenter _presenter;
};

TEST_F(LightDrag, AMoveLeavesNoFigureBehind) {
  for (LM_light_type type : TYPES) {
    LM_light_UI& light = test.UseLight(type);
    const Pixels before = test.Picture();
    const Pixels preview = PixelsOf(test.Box(LM_WORK_AREA_ITEM));
    Pixels during;
    ToolboxScript script;
    script.Press(160, 160).MoveTo(200, 130).MoveTo(90, 110);
    Look(script, during);
    script.MoveTo(600, 10).MoveTo(230, 190).Release(231, 191);
    WithMouseDown(script, [&] { light.MoveUI(test.dialog, test.globals); });
    EXPECT_NE(during, preview) << "the figure was not shown, type " << type;
    EXPECT_EQ(test.Picture(), before) << "type " << type;
    EXPECT_EQ(light.center, (LM_vectori2{71, 31})) << "type " << type;
  }
}

TEST_F(LightDrag, AReshapeLeavesNoFigureBehind) {
  for (LM_light_type type : TYPES) {
    const short lastHandle = type == LM_LIGHT_DIRECTIONAL ? 2 : 5;
    for (short code = 2; code <= lastHandle; ++code) {
      LM_light_UI& light = test.UseLight(type, -20, 10);
      const Pixels before = test.Picture();
      const Pixels preview = PixelsOf(test.Box(LM_WORK_AREA_ITEM));
      Pixels during;
      ToolboxScript script;
      script.Press(180, 170).MoveTo(220, 150).MoveTo(100, 130).MoveTo(500, -20);
      Look(script, during);
      script.MoveTo(70, 240).Release(75, 245);
      WithMouseDown(script, [&] { light.DragGrabHandle(test.dialog, test.globals, code); });
      EXPECT_NE(during, preview) << "the outline was not shown, type " << type;
      EXPECT_EQ(test.Picture(), before) << "type " << type << ", handle " << code;
    }
  }
}

TEST_F(LightDrag, AReleaseOutsideThePreviewKeepsTheLastPlaceInside) {
  LM_light_UI& light = test.UseLight(LM_LIGHT_SPOT);
  const Pixels before = test.Picture();
  ToolboxScript script;
  script.Press(160, 160).MoveTo(210, 150).Wait(60).MoveTo(400, 150).Release(420, 390);
  WithMouseDown(script, [&] { light.MoveUI(test.dialog, test.globals); });
  EXPECT_EQ(light.center, (LM_vectori2{50, -10}));
  EXPECT_EQ(test.Picture(), before);
}

TEST_F(LightDrag, HandlesStayOnePixelInsideThePreview) {
  struct Case {
    const char* name;
    short h, v;
    LM_vectori2 end; // from the preview's middle, which is 140 pixels from its left and top
  };
  const Case cases[] = {{"left and above", -50, -50, {-139, -139}},
                        {"right and below", 630, 395, {138, 138}},
                        {"right only", 630, 170, {138, 10}}};
  for (const Case& drag : cases) {
    LM_light_UI& light = test.UseLight(LM_LIGHT_DIRECTIONAL);
    ToolboxScript script;
    script.Press(200, 160).MoveTo(drag.h, drag.v).Release(drag.h, drag.v);
    WithMouseDown(script, [&] { light.DragGrabHandle(test.dialog, test.globals, 2); });
    EXPECT_EQ(light.handle1, drag.end) << drag.name;
  }
}

TEST_F(LightDrag, ModifierKeysActAtOnceAndTheirStateAtTheReleaseCounts) {
  struct Case {
    const char* name;
    short key;
    LM_vectori2 held; // with the key down
  };
  const Case cases[] = {{"Shift keeps the direction", kShiftKeyCode, {60, 0}},
                        {"Command keeps the length", kCommandKeyCode, {0, 40}},
                        {"Option does nothing", kOptionKeyCode, {0, 60}}};
  for (const Case& drag : cases) {
    LM_light_UI& light = test.UseLight(LM_LIGHT_DIRECTIONAL); // its handle is (40, 0)
    LM_vectori2 free{};
    LM_vectori2 held{};
    ToolboxScript script;
    script.Press(200, 160).MoveTo(160, 220).Wait(60).Call([&] { free = light.handle1; });
    script.KeyDown(drag.key).Wait(60).Call([&] { held = light.handle1; }).KeyUp(drag.key);
    script.Wait(60).KeyDown(drag.key).Release(160, 220).KeyUp(drag.key);
    WithMouseDown(script, [&] { light.DragGrabHandle(test.dialog, test.globals, 2); });
    EXPECT_EQ(free, (LM_vectori2{0, 60})) << drag.name;
    EXPECT_EQ(held, drag.held) << drag.name << ", with a still mouse";
    EXPECT_EQ(light.handle1, drag.held) << drag.name << ", at the release";
  }
}

TEST_F(LightDrag, AStillMouseChangesTheShapeOnceOnly) {
  LM_light_UI& light = test.UseLight(LM_LIGHT_SPOT);
  Pixels first, later;
  ToolboxScript script;
  script.Press(200, 160).MoveTo(193, 171);
  Look(script, first);
  script.Wait(150);
  Look(script, later);
  script.Release(193, 171);
  WithMouseDown(script, [&] { light.DragGrabHandle(test.dialog, test.globals, 4); });
  EXPECT_EQ(first, later);
  EXPECT_EQ(light.handle1, (LM_vectori2{33, 11}));
}

TEST_F(LightDrag, ALightDroppedOnTheTrashIsDeleted) {
  test.globals->CreateNewLight(100, 100);
  LM_light_UI& light = test.UseLight(LM_LIGHT_OMNI);
  const LM_vectori2 other = test.globals->lights[1].center;
  LM_SetControlValue(test.dialog, LM_INTENSITY_ITEM, 3);
  LM_DrawTrash(test.dialog, LM_TRASH_ITEM);
  const Pixels before = test.Picture();
  const Pixels trash = PixelsOf(test.Box(LM_TRASH_ITEM));
  Pixels over, preview;
  ToolboxScript script;
  script.Press(160, 160).MoveTo(150, 200).MoveTo(Trash().h, Trash().v);
  Look(script, over, LM_TRASH_ITEM);
  Look(script, preview);
  script.Release(Trash().h, Trash().v);
  const Pixels previewBefore = PixelsOf(test.Box(LM_WORK_AREA_ITEM));
  WithMouseDown(script, [&] { light.MoveUI(test.dialog, test.globals); });
  EXPECT_NE(over, trash) << "the trash is not highlighted";
  EXPECT_EQ(preview, previewBefore) << "the figure stays while the light is over the trash";
  EXPECT_EQ(PixelsOf(test.Box(LM_TRASH_ITEM)), trash);
  EXPECT_EQ(PixelsOf(test.Box(LM_WORK_AREA_ITEM)), previewBefore);
  EXPECT_EQ(test.globals->numLights, 1);
  EXPECT_EQ(test.globals->curLight, 0);
  EXPECT_EQ(test.globals->lights[0].center, other);
  EXPECT_EQ(LM_ControlValue(test.dialog, LM_INTENSITY_ITEM), 193) << "of the light that is left";
  EXPECT_TRUE(alerts.empty());
}

TEST_F(LightDrag, TheLastLightIsNotDeletedAndStaysWhereItWas) {
  LM_light_UI& light = test.UseLight(LM_LIGHT_SPOT);
  LM_DrawTrash(test.dialog, LM_TRASH_ITEM);
  const Pixels before = test.Picture();
  ToolboxScript script;
  script.Press(160, 160).MoveTo(150, 200).Wait(60).MoveTo(Trash().h, Trash().v);
  script.Release(Trash().h, Trash().v);
  WithMouseDown(script, [&] { light.MoveUI(test.dialog, test.globals); });
  EXPECT_EQ(alerts, (std::vector<int16_t>{16002}));
  EXPECT_EQ(test.globals->numLights, 1);
  EXPECT_EQ(light.center, (LM_vectori2{-10, 40}));
  EXPECT_EQ(test.Picture(), before);
}

TEST_F(LightDrag, AVisitToTheTrashIsForgotten) {
  test.globals->CreateNewLight(100, 100);
  LM_light_UI& light = test.UseLight(LM_LIGHT_SPOT);
  LM_DrawTrash(test.dialog, LM_TRASH_ITEM);
  const Pixels before = test.Picture();
  Pixels back;
  ToolboxScript script;
  script.Press(160, 160).MoveTo(Trash().h, Trash().v).Wait(60).MoveTo(200, 395);
  Look(script, back, LM_TRASH_ITEM);
  script.MoveTo(Trash().h, Trash().v).Wait(60).MoveTo(170, 180).Release(170, 180);
  const Pixels trash = PixelsOf(test.Box(LM_TRASH_ITEM));
  WithMouseDown(script, [&] { light.MoveUI(test.dialog, test.globals); });
  EXPECT_EQ(back, trash) << "the trash stays highlighted";
  EXPECT_EQ(test.Picture(), before);
  EXPECT_EQ(test.globals->numLights, 2);
  EXPECT_EQ(light.center, (LM_vectori2{10, 20}));
}

TEST_F(LightDrag, PortAndClipAreAsBefore) {
  const Rect bounds = {0, 0, 50, 50};
  GrafPtr other = NewOffscreenPort(bounds);
  RgnHandle before = NewRgn();
  RgnHandle after = NewRgn();
  GetClip(before);
  for (bool reshape : {false, true}) {
    LM_light_UI& light = test.UseLight(LM_LIGHT_SPOT);
    SetPort(other);
    ToolboxScript script;
    script.Press(160, 160).Release(170, 170);
    WithMouseDown(script, [&] {
      if (reshape)
        light.DragGrabHandle(test.dialog, test.globals, 4);
      else
        light.MoveUI(test.dialog, test.globals);
    });
    GrafPtr current = nullptr;
    GetPort(&current);
    EXPECT_EQ(current, other) << reshape;
    SetPort(test.dialog);
    GetClip(after);
    EXPECT_TRUE(HaveSameSquares(before, after)) << reshape;
  }
  DisposeRgn(before);
  DisposeRgn(after);
  DisposePort(other);
}

// A dialog without preview or trash ends a drag; it does not move anything to nowhere.
TEST_F(LightDrag, WithoutItsItemsNothingMoves) {
  const Rect nowhere = {0, 0, 0, 0};
  LM_ItemSetBox(test.dialog, LM_WORK_AREA_ITEM, nowhere);
  LM_ItemSetBox(test.dialog, LM_TRASH_ITEM, nowhere);
  LM_light_UI& light = test.UseLight(LM_LIGHT_SPOT, 5, 6);
  ToolboxScript script;
  script.Press(160, 160).MoveTo(0, 0).Wait(60).Release(0, 0);
  WithMouseDown(script, [&] {
    light.DragGrabHandle(test.dialog, test.globals, 4);
    light.MoveUI(test.dialog, test.globals);
  });
  EXPECT_EQ(light.center, (LM_vectori2{5, 6}));
  EXPECT_EQ(light.handle1, (LM_vectori2{40, 0}));
  EXPECT_EQ(test.globals->numLights, 1);
}

} // namespace
