// The parameter dialog in use: what events, items and controls do to the settings.
#include "DialogRun.h"

#include "Events.h"
#include "FailingBlocks.h"
#include "LM_drawing_scopes.h"
#include "LM_style_fields.h"
#include "MacStrings.h"

namespace {

constexpr Point OUTSIDE = {420, 8};

TEST_F(DialogRun, OpensWithTheDefaultStyleItsControlsShowingIt) {
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      EXPECT_EQ(PopupText(LM_STYLE_ITEM), "Default");
      EXPECT_EQ(Globals()->StyleIndex(), 1);
      EXPECT_TRUE(LM_ItemIsDisabled(Dialog(), LM_DELETE_STYLE_ITEM));
      EXPECT_EQ(LM_ControlValue(Dialog(), LM_GLOSS_ITEM), Globals()->gloss);
      EXPECT_NE(Globals()->gloss, 128) << "the settings of the style, not the built-in ones";
      EXPECT_EQ(GetControlMaximum(LM_ItemControl(Dialog(), LM_BUMP_CHANNEL_ITEM)), 5);
      EXPECT_EQ(PopupText(LM_BUMP_CHANNEL_ITEM), "None");
    });
  });
  EXPECT_EQ(slot, 0) << "a cancelled first run keeps nothing";
}

struct Mapping {
  int16_t item;
  int16_t control; // value in the control
  std::function<int(const LM_globals&)> setting;
  int value; // and in the settings
};

const Mapping MAPPINGS[] = {
    {LM_GLOSS_ITEM, 3, [](const LM_globals& g) { return g.gloss; }, 3},
    {LM_MATERIAL_ITEM, 256, [](const LM_globals& g) { return g.material; }, 256},
    {LM_EXPOSURE_ITEM, 255, [](const LM_globals& g) { return g.exposure; }, 255},
    {LM_AMBIENCE_ITEM, 0, [](const LM_globals& g) { return g.ambientBrightness; }, -127},
    {LM_BUMP_AMPLITUDE_ITEM, 9, [](const LM_globals& g) { return g.BumpAmplitude(); }, 9},
    {LM_WHITE_IS_HIGH_ITEM, 0, [](const LM_globals& g) { return g.WhiteIsHigh(); }, 0},
    {LM_BUMP_CHANNEL_ITEM, 5, [](const LM_globals& g) { return g.BumpChannel(); }, 4},
    {LM_INTENSITY_ITEM, 254, [](const LM_globals& g) { return g.lights[0].intensity; }, 127},
    {LM_SPREAD_ITEM, 17, [](const LM_globals& g) { return g.lights[0].spread; }, 17},
    {LM_LIGHT_TYPE_ITEM, 1, [](const LM_globals& g) { return g.lights[0].type; }, 1},
    {LM_LIGHT_TYPE_ITEM, 2, [](const LM_globals& g) { return g.lights[0].type; }, 0},
    {LM_LIGHT_TYPE_ITEM, 3, [](const LM_globals& g) { return g.lights[0].type; }, 2},
};

TEST_F(DialogRun, ValuesGoBothWaysBetweenControlsAndSettings) {
  const auto fetchAll = [](DialogPtr dialog, LM_globals* g) {
    LM_GetGlobalsFromDialog(dialog, g);
    LM_FetchCurrentLightIntensity(dialog, g);
    LM_FetchCurrentLightSpread(dialog, g);
    LM_FetchLightType(dialog, g);
    EXPECT_EQ(LM_FetchBumpMap(dialog, g), 0);
  };
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      UseLights(1);
      for (const Mapping& mapping : MAPPINGS) {
        LM_SetControlValue(Dialog(), mapping.item, mapping.control);
        fetchAll(Dialog(), Globals());
        EXPECT_EQ(mapping.setting(*Globals()), mapping.value) << "item " << mapping.item;
        // And back, from a control that shows something else.
        LM_SetControlValue(Dialog(), mapping.item, mapping.control == 1 ? 3 : 1);
        LM_SetGlobalsToDialog(Dialog(), Globals());
        LM_SetCurLightToDialog(Dialog(), Globals());
        EXPECT_EQ(LM_ControlValue(Dialog(), mapping.item), mapping.control)
            << "item " << mapping.item;
      }
    });
  });
}

TEST_F(DialogRun, TabSelectsTheLightsInTheirOrderRoundTheEnds) {
  RunAndCancel([&](ToolboxScript& script) {
    const auto expect = [&](int light) {
      script.Call([this, light] {
        EXPECT_EQ(Globals()->curLight, light);
        EXPECT_EQ(LM_ControlValue(Dialog(), LM_INTENSITY_ITEM), light + 127);
      });
    };
    script.Call([&] { UseLights(5); });
    script.KeyPress(kTabKeyCode);
    expect(1);
    script.KeyDown(kShiftKeyCode).KeyPress(kTabKeyCode).KeyPress(kTabKeyCode);
    expect(4);
    script.KeyUp(kShiftKeyCode).KeyPress(kTabKeyCode);
    expect(0);
    script.Call([&] { UseLights(1); }).KeyPress(kTabKeyCode);
    expect(0);
  });
}

TEST_F(DialogRun, DeleteRemovesTheCurrentLightButNotTheLast) {
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] { UseLights(3); }).KeyPress(kTabKeyCode).KeyPress(kDeleteKeyCode);
    script.Call([&] {
      EXPECT_EQ(Globals()->numLights, 2);
      EXPECT_EQ(Globals()->lights[1].intensity, 2) << "the second of three is gone";
      EXPECT_EQ(Globals()->curLight, 0);
    });
    script.KeyPress(kForwardDeleteKeyCode);
    script.Call([&] { EXPECT_TRUE(answers.alerts.empty()); });
    script.KeyPress(kForwardDeleteKeyCode);
    script.Call([&] {
      EXPECT_EQ(Globals()->numLights, 1);
      EXPECT_EQ(answers.alerts, std::vector<int16_t>{16002});
    });
  });
}

uint32_t PixelOf(DialogPtr dialog, int h, int v) {
  const LM_port_scope port(dialog);
  RGBColor color;
  GetCPixel(static_cast<short>(h), static_cast<short>(v), &color);
  return static_cast<uint32_t>(color.red >> 8 << 16 | color.green >> 8 << 8 | color.blue >> 8);
}

std::vector<uint32_t> PixelsOf(DialogPtr dialog, const Rect& box) {
  std::vector<uint32_t> pixels;
  for (int v = box.top; v < box.bottom; ++v)
    for (int h = box.left; h < box.right; ++h)
      pixels.push_back(PixelOf(dialog, h, v));
  return pixels;
}

// The popup with its title stands in the gap, and nowhere else on the line.
TEST_F(DialogRun, GroupsLeaveAGapForTheirPopupAndNoMore) {
  const std::pair<int16_t, int16_t> groups[] = {{LM_LIGHT_GROUP_ITEM, LM_LIGHT_TYPE_ITEM},
                                                {LM_BUMP_GROUP_ITEM, LM_BUMP_CHANNEL_ITEM},
                                                {LM_STYLE_GROUP_ITEM, LM_STYLE_ITEM}};
  RunAndCancel([&](ToolboxScript& script) {
    script.Wait(60).Call([&] {
      for (const auto& [group, popup] : groups) {
        const Rect box = LM_ItemGetBox(Dialog(), group);
        const Rect gap = LM_ItemGetBox(Dialog(), popup);
        const uint32_t line = PixelOf(Dialog(), box.left, box.bottom - 1);
        for (int h = box.left; h < box.right; ++h) {
          if (h < gap.left || h >= gap.right + 4) {
            ASSERT_EQ(PixelOf(Dialog(), h, box.top), line) << group << " at " << h;
          }
        }
        EXPECT_NE(PixelOf(Dialog(), gap.right + 2, box.top), line) << group;
      }
    });
  });
}

TEST_F(DialogRun, TheWellGivesLightsUpToSixteen) {
  const Point well = MiddleOf(LM_LIGHT_WELL_ITEM);
  const Point target = {200, 100};
  std::vector<uint32_t> full;
  const auto wellPixels = [&] {
    return PixelsOf(Dialog(), LM_ItemGetBox(Dialog(), LM_LIGHT_WELL_ITEM));
  };
  RunAndCancel([&](ToolboxScript& script) {
    script.Wait(60).Call([&] {
      UseLights(2);
      full = wellPixels();
    });
    DragBetween(script, well, target);
    script.Call([&] {
      ASSERT_EQ(Globals()->numLights, 3);
      const LM_light_UI& light = Globals()->lights[2];
      EXPECT_EQ(light.center.h + light.anchor.h, target.h);
      EXPECT_EQ(light.center.v + light.anchor.v, target.v);
      EXPECT_EQ(Globals()->curLight, 2);
      EXPECT_EQ(light.type, LM_LIGHT_SPOT);
      EXPECT_EQ(LM_ControlValue(Dialog(), LM_INTENSITY_ITEM), 66 + 127);
    });
    DragBetween(script, well, OUTSIDE);
    script.Call([&] {
      EXPECT_EQ(Globals()->numLights, 3) << "dropped outside the work area";
      UseLights(16);
      LM_ItemForceDraw(Dialog(), LM_LIGHT_WELL_ITEM);
      EXPECT_NE(wellPixels(), full);
    });
    DragBetween(script, well, target);
    script.Call([&] {
      EXPECT_EQ(Globals()->numLights, 16);
      EXPECT_EQ(Globals()->curLight, 0);
    });
    DragBetween(script, BodyOf(0), MiddleOf(LM_TRASH_ITEM));
    script.Call([&] {
      EXPECT_EQ(Globals()->numLights, 15);
      EXPECT_EQ(wellPixels(), full);
    });
  });
}

TEST_F(DialogRun, PressingALightSelectsItAndDragsItOrACopy) {
  const Point target = {200, 100};
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] { UseLights(3); });
    script.Click(BodyOf(2).h, BodyOf(2).v);
    script.Call([&] {
      EXPECT_EQ(Globals()->curLight, 2);
      EXPECT_EQ(LM_ControlValue(Dialog(), LM_INTENSITY_ITEM), 129);
    });
    DragBetween(script, BodyOf(1), target);
    script.Call([&] {
      EXPECT_EQ(Globals()->curLight, 1);
      EXPECT_EQ(Globals()->lights[1].center.v, target.v - WORK_AREA_MIDDLE.v);
      EXPECT_EQ(Globals()->numLights, 3);
    });
    script.KeyDown(kOptionKeyCode);
    DragBetween(script, BodyOf(2), {250, 200});
    script.KeyUp(kOptionKeyCode);
    script.Call([&] {
      ASSERT_EQ(Globals()->numLights, 4);
      EXPECT_EQ(Globals()->lights[3].intensity, 2) << "a copy of the third";
      EXPECT_EQ(Globals()->lights[3].center.v, 250 - WORK_AREA_MIDDLE.v);
      EXPECT_EQ(Globals()->lights[2].center.v, BodyOf(2).v - WORK_AREA_MIDDLE.v)
          << "the dragged light stays";
    });
    // Its right grab handle, 60 to the right.
    DragBetween(script, {250, 260}, {250, 280});
    script.Call([&] { EXPECT_EQ(Globals()->lights[3].radius, 80); });
    // Nothing is there: left to the Dialog Manager, which knows nothing to do.
    script.Call([&] { answers.shown = 0; }).Click(30, 280);
    script.Call([&] { EXPECT_EQ(answers.shown, 0); });
  });
}

TEST_F(DialogRun, SlidersReportOnlyAChange) {
  const Rect box = BoxInResource(LM_PARAMETER_DIALOG, LM_GLOSS_ITEM);
  const int16_t barStart = static_cast<int16_t>(box.left + 64 + 4);
  const int16_t row = static_cast<int16_t>((box.top + box.bottom) / 2 + 4);
  RunAndCancel([&](ToolboxScript& script) {
    script.Click(barStart, row);
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 0);
      answers.shown = 0;
    });
    script.Click(barStart, row);
    script.Call([&] { EXPECT_EQ(answers.shown, 0) << "nothing changed, nothing is rendered"; });
    script.Drag(barStart, row, static_cast<int16_t>(box.right + 50), row);
    script.Call([&] {
      EXPECT_EQ(Globals()->gloss, 255);
      EXPECT_EQ(answers.shown, 1);
      Globals()->lights[0].on = 0;
      LM_SetCurLightToDialog(Dialog(), Globals());
      answers.shown = 0;
    });
    // A slider that is switched off.
    const Rect off = BoxInResource(LM_PARAMETER_DIALOG, LM_INTENSITY_ITEM);
    script.Click(barStart, static_cast<int16_t>((off.top + off.bottom) / 2 + 4));
    script.Call([&] { EXPECT_EQ(answers.shown, 0); });
  });
}

TEST_F(DialogRun, CheckBoxesToggleTheirSettingAndWhatDependsOnIt) {
  const auto inactive = [&](int16_t item) {
    return (*LM_ItemControl(Dialog(), item))->contrlHilite == 255;
  };
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] {
      UseLights(1);
      Globals()->lights[0].type = LM_LIGHT_SPOT;
      LM_SetCurLightToDialog(Dialog(), Globals());
      EXPECT_FALSE(inactive(LM_SPREAD_ITEM));
      EXPECT_TRUE(inactive(LM_WHITE_IS_HIGH_ITEM)) << "there is no relief";
    });
    ClickItem(script, LM_LIGHT_ON_ITEM);
    script.Call([&] {
      EXPECT_EQ(Globals()->lights[0].on, 0);
      EXPECT_EQ(LM_ControlValue(Dialog(), LM_LIGHT_ON_ITEM), 0);
      for (const int16_t item : {LM_INTENSITY_ITEM, LM_SPREAD_ITEM, LM_LIGHT_TYPE_ITEM})
        EXPECT_TRUE(inactive(item)) << item;
      EXPECT_TRUE(LM_ItemIsDisabled(Dialog(), LM_LIGHT_COLOR_ITEM));
      answers.prompt.clear();
    });
    ClickItem(script, LM_LIGHT_COLOR_ITEM);
    script.Call([&] { EXPECT_EQ(answers.prompt, "") << "a disabled colour box asks nothing"; });
    ClickItem(script, LM_LIGHT_ON_ITEM);
    ClickItem(script, LM_PREVIEW_ON_ITEM);
    script.Call([&] {
      EXPECT_EQ(Globals()->lights[0].on, 1);
      EXPECT_FALSE(inactive(LM_SPREAD_ITEM));
      EXPECT_EQ(Globals()->previewOn, 0);
    });
  });
}

TEST_F(DialogRun, PopupsChooseTheKindOfLightAndTheReliefChannel) {
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] { UseLights(1); });
    ClickItem(script, LM_LIGHT_TYPE_ITEM);
    script.Wait(60).ChooseFromMenu(1).Call([&] {
      EXPECT_EQ(Globals()->lights[0].type, LM_LIGHT_SPOT);
      EXPECT_EQ((*LM_ItemControl(Dialog(), LM_SPREAD_ITEM))->contrlHilite, 0);
    });
    ClickItem(script, LM_BUMP_CHANNEL_ITEM);
    script.Wait(60).ChooseFromMenu(4).Call([&] {
      EXPECT_EQ(Globals()->BumpChannel(), 4);
      EXPECT_EQ((*LM_ItemControl(Dialog(), LM_BUMP_AMPLITUDE_ITEM))->contrlHilite, 0);
    });
    ClickItem(script, LM_WHITE_IS_HIGH_ITEM);
    script.Call([&] { EXPECT_EQ(Globals()->WhiteIsHigh(), 0); });
  });
}

TEST_F(DialogRun, ColourBoxesAskTheHost) {
  RunAndCancel([&](ToolboxScript& script) {
    script.Call([&] { Globals()->ambientColor = {{0x12FF, 0x3400, 0xFFFF}}; });
    ClickItem(script, LM_AMBIENT_COLOR_ITEM);
    script.Call([&] {
      EXPECT_EQ(answers.prompt, "Colour of the ambient light");
      EXPECT_EQ(answers.asked.size, static_cast<int32_t>(sizeof(CVColorRequest)));
      EXPECT_EQ(answers.asked.requestCode, 0);
      EXPECT_EQ(answers.asked.components[0], 0x12);
      EXPECT_EQ(answers.asked.components[1], 0x34);
      EXPECT_EQ(answers.asked.components[2], 0xFF);
      const LM_color48& color = Globals()->ambientColor;
      EXPECT_EQ(color.component[0], 257);
      EXPECT_EQ(color.component[1], 200 * 257);
      EXPECT_EQ(color.component[2], 65535) << "beyond 255 is 255";
      answers.picker = -5;
    });
    ClickItem(script, LM_LIGHT_COLOR_ITEM);
    script.Call([&] {
      EXPECT_EQ(answers.prompt, "Colour of this light");
      EXPECT_NE(Globals()->lights[0].color.component[0], 257) << "not picked";
      answers.picker = CV_RESULT_NO_SERVICE;
    });
    // The host has no picker after all: the desktop's own is asked, and cancelled.
    ClickItem(script, LM_LIGHT_COLOR_ITEM);
    script.Wait(60).KeyPress(kEscapeKeyCode).Wait(60);
    script.Call([&] { EXPECT_NE(Globals()->lights[0].color.component[0], 257); });
  });
}

TEST_F(DialogRun, AHostThatDoesNotTellOfItsChannelsOffersNoRelief) {
  answers.trouble = [](HostService service) {
    return static_cast<int16_t>(service == HostService::QueryProperty ? CV_RESULT_NO_SERVICE : 0);
  };
  ToolboxScript accepting;
  accepting.Call(
      [&] { EXPECT_EQ(GetControlMaximum(LM_ItemControl(Dialog(), LM_BUMP_CHANNEL_ITEM)), 1); });
  accepting.KeyPress(kReturnKeyCode);
  EXPECT_EQ(Run(accepting), CV_RESULT_OK);
}

TEST_F(DialogRun, OKKeepsTheSettingsAndCancelBringsThemBackNextTime) {
  ToolboxScript first;
  first.Call([&] {
    LM_SetControlValue(Dialog(), LM_GLOSS_ITEM, 77);
    Globals()->material = 9999; // as a style may have it: the slider ends at 256
    LM_SetGlobalsToDialog(Dialog(), Globals());
    LM_SetControlValue(Dialog(), LM_GLOSS_ITEM, 77);
  });
  first.KeyPress(kReturnKeyCode);
  ASSERT_EQ(Run(first), 0);
  ASSERT_NE(slot, 0);
  EXPECT_EQ(Globals()->gloss, 77);
  EXPECT_EQ(Globals()->material, 256);
  EXPECT_EQ(Globals()->dialog, nullptr);
  EXPECT_FALSE(Globals()->UsePosCache()) << "the real run works without caches";

  ToolboxScript second;
  second.Call([&] {
    EXPECT_EQ(LM_ControlValue(Dialog(), LM_GLOSS_ITEM), 77) << "kept from the first run";
    EXPECT_EQ(PopupText(LM_STYLE_ITEM), "Default");
    Globals()->gloss = 3;
    UseLights(4);
  });
  ClickItem(second, LM_CANCEL_ITEM);
  ASSERT_EQ(Run(second), CV_RESULT_STOPPED);
  ASSERT_NE(slot, 0);
  EXPECT_EQ(Globals()->gloss, 77);
  EXPECT_EQ(Globals()->numLights, 1);
}

TEST_F(DialogRun, SmallButtonsCountOnlyWhenReleasedInside) {
  const Point save = MiddleOf(LM_SAVE_STYLE_ITEM);
  RunAndCancel([&](ToolboxScript& script) {
    const auto isMain = [&] { return FrontWindow() == Dialog(); };
    DragBetween(script, save, OUTSIDE);
    script.Wait(60).Call([=] { EXPECT_TRUE(isMain()); });
    script.Click(save.h, save.v).Wait(60).Call([=] { EXPECT_FALSE(isMain()); });
    script.KeyPress(kEscapeKeyCode).Wait(KEY_ANSWERED);
    // Out and in again.
    script.Press(save.h, save.v).MoveTo(OUTSIDE.h, OUTSIDE.v).Wait(20).Release(save.h, save.v);
    script.Wait(60).Call([=] { EXPECT_FALSE(isMain()); });
    script.KeyPress(kEscapeKeyCode).Wait(KEY_ANSWERED);
    ClickItem(script, LM_DELETE_STYLE_ITEM);
    script.Wait(60).Call([=] { EXPECT_TRUE(isMain()) << "the default style is not deleted"; });
  });
}

// Settings as no dialog makes them, but a style file may hold them.
TEST_F(DialogRun, WorksOnTheWildestStyle) {
  LM_style style = LM_NewStyle();
  style.bumpChannel = -3;
  style.gloss = style.exposure = style.ambientBrightness = INT16_MAX;
  style.material = style.bumpAmplitude = INT16_MIN;
  style.curLight = 65535;
  style.numLights = 40;
  style.lightsRead = LM_MAX_LIGHTS;
  style.worldUnit = 0;
  for (int i = 0; i < LM_MAX_LIGHTS; ++i) {
    LM_style_light& light = style.lights[i];
    light.type = static_cast<uint16_t>(i * 4099);
    light.intensity = light.spread = i % 2 == 0 ? INT16_MIN : INT16_MAX;
    light.center = light.handle1 = {INT16_MIN, INT16_MAX};
    light.handle2 = {INT16_MAX, INT16_MAX};
    light.radius = INT16_MIN;
    light.on = static_cast<uint16_t>(i % 3);
  }
  for (const int16_t unit : {0, 140, 1}) {
    style.worldUnit = unit;
    WriteStyle("Default", style);
    RunAndCancel([&](ToolboxScript& script) {
      script.Call([&] {
        EXPECT_EQ(Globals()->numLights, LM_MAX_LIGHTS);
        EXPECT_EQ(Globals()->BumpChannel(), 0) << "a negative channel is none";
      });
      for (int i = 0; i < LM_MAX_LIGHTS; ++i)
        script.KeyPress(kTabKeyCode);
      ClickItem(script, LM_LIGHT_ON_ITEM);
      ClickItem(script, LM_LIGHT_ON_ITEM);
      script.Click(WORK_AREA_MIDDLE.h, WORK_AREA_MIDDLE.v).KeyPress(kDeleteKeyCode);
    });
  }
}

// Memory that runs out at one place or another ends in a result, and leaves nothing open.
TEST_F(DialogRun, SurvivesWantOfMemory) {
  for (uint64_t n = 1; n < 200; n += n < 30 ? 1 : 11) {
    ToolboxScript script;
    script.KeyPress(kTabKeyCode);
    ClickItem(script, LM_LIGHT_ON_ITEM);
    script.KeyPress(kEscapeKeyCode);
    FailAllocationAfter(n);
    const int16_t result = Run(script, Script::MayBeCut);
    FailAllocationAfter(0);
    EXPECT_TRUE(result == 0 || result == CV_RESULT_STOPPED || result == CV_RESULT_NO_MEMORY)
        << result << " at allocation " << n;
    ASSERT_EQ(FrontWindow(), nullptr) << n;
  }
}

} // namespace
