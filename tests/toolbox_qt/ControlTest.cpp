// Controls: what definitions are asked, wrapping them, tracking and values.
#include "SampleDialog.h"

#include "MacMemory.h"
#include "MacStrings.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

typedef std::vector<std::string> Log;

TEST(Control, ADefinitionIsAskedInOrder) {
  SliderLog().clear();
  {
    SampleDialog sample(SAMPLE_DIALOG, false);
    EXPECT_EQ(SliderLog(), Log({"init 134 60"}));
    DrawDialog(sample.dialog);
    EXPECT_EQ(SliderLog().back(), "draw 0");
    ControlHandle slider = sample.Control(SLIDER_ITEM);
    SliderLog().clear();
    SetControlValue(slider, 70);
    SetControlValue(slider, 70);
    SetControlValue(slider, 500);
    EXPECT_EQ(GetControlValue(slider), 100);
    SetControlValue(slider, -5);
    EXPECT_EQ(GetControlValue(slider), 0);
    EXPECT_EQ(SliderLog(), Log({"draw 129", "draw 129", "draw 129"}));

    SliderLog().clear();
    HiliteControl(slider, 255);
    EXPECT_EQ(SliderLog(), Log({"draw 0"}));
    ControlHandle found = slider;
    EXPECT_EQ(FindControl(sample.Middle(SLIDER_ITEM), sample.dialog, &found), 0);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(SliderLog().size(), 1u) << "an inactive control was tested";
    HiliteControl(slider, 0);
    SliderLog().clear();
    EXPECT_EQ(FindControl(Point{-3, 7}, sample.dialog, &found), 0);
    EXPECT_EQ(SliderLog(), Log({"test 7,-3"}));
    (**slider).contrlVis = 0;
    SliderLog().clear();
    SetControlValue(slider, 33);
    EXPECT_TRUE(SliderLog().empty()) << "a hidden control was drawn";
  }
  EXPECT_EQ(SliderLog().back(), "dispose");
}

Handle savedDefinition = nullptr;
int wrappedDraws = 0;

int32_t SmallFontDefinition(short varCode, ControlHandle control, short message, intptr_t param) {
  wrappedDraws += message == drawCntl ? 1 : 0;
  TextFont(1);
  TextSize(9);
  LoadResource(savedDefinition);
  EXPECT_EQ(ResError(), noErr);
  HLock(savedDefinition);
  const int32_t result = CallControlDefinition(savedDefinition, varCode, control, message, param);
  HUnlock(savedDefinition);
  TextSize(0);
  TextFont(0);
  return result;
}

TEST(Control, AWrappedDefinitionIsCalledInItsPlace) {
  for (int16_t item : {CHECK_ITEM, POPUP_ITEM}) {
    SampleDialog sample;
    ControlHandle control = sample.Control(item);
    const QImage plain = TB_PortImage(sample.dialog);
    savedDefinition = (**control).contrlDefProc;
    Handle wrapper = NewControlDefinition(SmallFontDefinition);
    (**control).contrlDefProc = wrapper;
    wrappedDraws = 0;
    Draw1Control(control);
    EXPECT_EQ(wrappedDraws, 1);
    EXPECT_NE(TB_PortImage(sample.dialog), plain) << "the text is no smaller";
    EXPECT_NE(FindControl(sample.Middle(item), sample.dialog, &control), 0);
    (**control).contrlDefProc = savedDefinition;
    DisposeHandle(wrapper);
    Draw1Control(control);
    EXPECT_EQ(TB_PortImage(sample.dialog), plain) << "the wrapper left something behind";
  }
}

struct ButtonCase {
  const char* name;
  short releaseH, releaseV; // relative to the middle
  short part;
};

TEST(Control, AButtonIsHitWhenReleasedInside) {
  constexpr ButtonCase CASES[] = {
      {"inside", 3, 2, inButton}, {"outside", 0, 60, 0}, {"far outside", 500, -600, 0}};
  SampleDialog sample;
  const Point middle = sample.Middle(CANCEL_ITEM);
  const QImage plain = TB_PortImage(sample.dialog);
  for (const ButtonCase& button : CASES) {
    ToolboxScript script;
    QImage pressed;
    script.Press(middle.h, middle.v).MoveTo(static_cast<short>(middle.h + 1), middle.v);
    script.Wait(30).Call([&] { pressed = TB_PortImage(sample.dialog); });
    script.Release(static_cast<short>(middle.h + button.releaseH),
                   static_cast<short>(middle.v + button.releaseV));
    script.Start();
    EventRecord event;
    ASSERT_TRUE(TakeEvent(1 << mouseDown, &event, 10000));
    EXPECT_EQ(TrackControl(sample.Control(CANCEL_ITEM), middle, nullptr), button.part)
        << button.name;
    EXPECT_NE(pressed, plain) << button.name << ": not drawn pressed";
    EXPECT_EQ(TB_PortImage(sample.dialog), plain) << button.name << ": left pressed";
  }
}

TEST(Control, APopupOpensItsMenuAndTakesTheChoice) {
  SampleDialog sample;
  ControlHandle popup = sample.Control(POPUP_ITEM);
  EXPECT_EQ(GetControlValue(popup), 2);
  EXPECT_EQ(GetControlMaximum(popup), 3);
  const Point middle = sample.Middle(POPUP_ITEM);
  ToolboxScript script;
  script.Click(middle.h, middle.v).Wait(50).ChooseFromMenu(1).Start();
  EXPECT_EQ(HitItem(), POPUP_ITEM);
  EXPECT_EQ(GetControlValue(popup), 3);
  // Escape in the menu chooses nothing, and is not the dialog's.
  const Point okay = sample.Middle(OK_ITEM);
  ToolboxScript escape;
  escape.Click(middle.h, middle.v).Wait(50).KeyPress(kEscapeKeyCode).Click(okay.h, okay.v).Start();
  EXPECT_EQ(HitItem(), OK_ITEM);
  EXPECT_EQ(GetControlValue(popup), 3);
}

TEST(Control, HomeAndEndChooseAPopupsFirstAndLastItem) {
  SampleDialog sample;
  ControlHandle popup = sample.Control(POPUP_ITEM);
  const Point middle = sample.Middle(POPUP_ITEM);
  for (const auto& [key, value] : {std::pair(Qt::Key_End, 3), std::pair(Qt::Key_Home, 1)}) {
    ToolboxScript script;
    const auto press = [pressed = key] {
      for (const int code : {static_cast<int>(pressed), static_cast<int>(Qt::Key_Return)}) {
        QKeyEvent event(QEvent::KeyPress, code, Qt::NoModifier);
        if (QWidget* menu = QApplication::activePopupWidget())
          QCoreApplication::sendEvent(menu, &event);
      }
    };
    script.Click(middle.h, middle.v).Wait(50).Call(press).Start();
    HitItem();
    EXPECT_EQ(GetControlValue(popup), value);
  }
}

TEST(Control, APopupLivesOnWithoutItsMenu) {
  SampleDialog sample;
  ControlHandle popup = sample.Control(POPUP_ITEM);
  MenuHandle menu = (**reinterpret_cast<PopupPrivateDataHandle>((**popup).contrlData)).mHandle;
  Str255 text;
  GetMenuItemText(menu, 3, text);
  EXPECT_EQ(TB_StdString(text), "Spot & more");
  for (short item = CountMenuItems(menu); item > 0; --item)
    DeleteMenuItem(menu, item);
  AppendMenu(menu, TB_PString("-;(one/1"));
  EXPECT_EQ(CountMenuItems(menu), 1);
  GetMenuItemText(menu, 1, text);
  EXPECT_EQ(TB_StdString(text), "-;(one/1");
  SetControlMaximum(popup, 1);
  EXPECT_EQ(GetControlValue(popup), 1);
  DisposeMenu(menu);
  Draw1Control(popup);
  EXPECT_EQ(CountMenuItems(menu), 0);
  EXPECT_EQ(TrackControl(popup, sample.Middle(POPUP_ITEM), nullptr), 0);
}

// Tests that draw through a clip region leave the rest to the next update.
TEST(Control, WhatAClipHidesIsDrawnLater) {
  SampleDialog sample;
  DrawDialog(sample.dialog);
  SetControlValue(sample.Control(CHECK_ITEM), 0);
  const QImage expected = TB_PortImage(sample.dialog);
  SetControlValue(sample.Control(CHECK_ITEM), 1);
  const Rect corner = {0, 0, 5, 5};
  RgnHandle saved = NewRgn();
  GetClip(saved);
  ClipRect(&corner);
  SetControlValue(sample.Control(CHECK_ITEM), 0);
  SetClip(saved);
  DisposeRgn(saved);
  EXPECT_NE(TB_PortImage(sample.dialog), expected);
  const Point okay = sample.Middle(OK_ITEM);
  ToolboxScript script;
  script.Wait(30).Click(okay.h, okay.v);
  script.Start();
  HitItem();
  EXPECT_EQ(TB_PortImage(sample.dialog), expected);
}

} // namespace
