// The slider: its geometry, its definition procedure, and drags of its indicator.
#include "LightDialog.h"

#include "Events.h"
#include "LM_mac_slider_handler.h"
#include "MacStrings.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

// Item 13: in (330, 140) to (531, 170), its title 60 wide, so the bar runs from 394 to 526 at 156.
class Slider : public testing::Test {
protected:
  ControlHandle Control(int16_t item = LM_GLOSS_ITEM) { return LM_ItemControl(test.dialog, item); }
  LM_slider_type_0& Of(int16_t item = LM_GLOSS_ITEM) { return *LM_SliderOf(Control(item)); }
  int32_t Send(short message, intptr_t param) { return SC_main(0, Control(), message, param); }
  static intptr_t Packed(int h, int v) { return (v << 16) | (h & 0xFFFF); }
  // Presses at the first point, and releases at the second.
  void Drag(int16_t item, ToolboxScript& script, Point start) {
    WithMouseDown(script, [&] { TrackControl(Control(item), start, nullptr); });
  }
  LightDialog test;
};

TEST_F(Slider, TakesItsLabelsAndTitleWidthFromItsReference) {
  EXPECT_EQ(Of().titleWidth, 60);
  EXPECT_EQ(TB_StdString(Of().leftLabel), "Low");
  EXPECT_EQ(TB_StdString(Of().rightLabel), "Full");
  EXPECT_FALSE(Of().percent);
  EXPECT_TRUE(Of(LM_BUMP_AMPLITUDE_ITEM).percent) << "list 134 counts in percent";
}

TEST_F(Slider, HasItsBarWhereTheRectangleAndTitleSay) {
  EXPECT_EQ(Of().BarMinX(), 394);
  EXPECT_EQ(Of().BarMaxX(), 526);
  EXPECT_EQ(Of().BarY(), 156);
  EXPECT_EQ(Of().IndicatorY(), 157);
  (**Control()).contrlRect = {-10, -400, -5, -300}; // sums of -15 and -634 are cut towards zero
  EXPECT_EQ(Of().BarY(), -6);
  EXPECT_EQ(Of().BarMinX(), -336);
}

TEST_F(Slider, PlacesTheIndicatorAndShowsTheNumberByTheValue) {
  struct Case {
    short minimum, maximum, value;
    short h; // from the left end of a bar of 132
    int32_t centred, percent;
  };
  const Case cases[] = {
      {0, 254, 0, 0, -100, 0},   {0, 254, 127, 66, 0, 50},   {0, 254, 254, 132, 100, 100},
      {0, 255, 128, 66, 0, 50},  {0, 255, 100, 51, -22, 39}, {0, 256, 255, 131, 99, 99},
      {50, 100, 75, 66, 50, 75}, {7, 7, 7, 0, 100, 100},     {0, 0, 0, 0, 0, 0},
      {0, -1, 32767, 0, 0, 0},
  };
  for (const Case& shown : cases) {
    ControlRecord& record = **Control();
    record.contrlMin = shown.minimum;
    record.contrlMax = shown.maximum;
    record.contrlValue = shown.value;
    if (shown.maximum >= shown.minimum) {
      EXPECT_EQ(Of().IndicatorX(), 394 + shown.h) << shown.value << " of " << shown.maximum;
      Of().percent = 0;
      EXPECT_EQ(Of().ShownValue(), shown.centred) << shown.value << " of " << shown.maximum;
      Of().percent = 1;
      EXPECT_EQ(Of().ShownValue(), shown.percent) << shown.value << " of " << shown.maximum;
    }
    Send(drawCntl, 0);
  }
}

TEST_F(Slider, IsHitAlongTheWholeBar) {
  struct Case {
    int h, v;
    int part;
  };
  const Case cases[] = {{390, 157, 130}, {389, 157, 0}, {530, 157, 130}, {531, 157, 0},
                        {450, 155, 130}, {450, 154, 0}, {450, 163, 130}, {450, 164, 0}};
  for (const Case& hit : cases)
    EXPECT_EQ(Send(testCntl, Packed(hit.h, hit.v)), hit.part) << hit.h << "," << hit.v;
  EXPECT_EQ(Send(testCntl, Packed(-3, -3)), 0);
}

TEST_F(Slider, AnswersItsOwnWayWhichRegionIsAskedFor) {
  RgnHandle region = NewRgn();
  const auto param = reinterpret_cast<intptr_t>(region);
  const auto isWhole = [&] { // at the origin, not at the control
    const Rect& box = (**region).rgnBBox;
    return box.top == 0 && box.left == 0 && box.bottom == 30 && box.right == 201;
  };
  const auto isIndicator = [&] {
    const Rect& box = (**region).rgnBBox;
    return box.left >= 460 - 6 && box.right <= 460 + 6 && box.top >= 157 && box.bottom <= 163 &&
           box.left < box.right;
  };
  const Pixels before = test.Picture();
  EXPECT_EQ(Send(calcCRgns, param), 0);
  EXPECT_TRUE(isIndicator());
  EXPECT_EQ(Send(calcCRgns, param | kCalcRegionHighBit), 0);
  EXPECT_TRUE(isWhole());
  Send(calcThumbRgn, param);
  EXPECT_TRUE(isIndicator());
  Send(calcCntlRgn, param);
  EXPECT_TRUE(isWhole());
  EXPECT_EQ(test.Picture(), before) << "asking for a region drew something";
  DisposeRgn(region);
}

TEST_F(Slider, MovesByItsOwnFormula) {
  struct Case {
    short minimum, maximum, value, offset, end;
  };
  // fraction = (x - left end) * 65536 / 132; value = minimum + ((fraction * maximum - minimum) >>
  // 16)
  const Case cases[] = {
      {0, 254, 127, 0, 127}, {0, 254, 127, 1, 128}, {0, 254, 127, -66, 0}, {0, 254, 127, 66, 254},
      {0, 255, 0, 33, 63},   {10, 20, 10, 66, 19},  {0, 254, 0, -4, -8},   {7, 7, 7, 10, 7},
  };
  for (const Case& move : cases) {
    ControlRecord& record = **Control();
    record.contrlMin = move.minimum;
    record.contrlMax = move.maximum;
    record.contrlValue = move.value;
    EXPECT_EQ(Send(posCntl, Packed(move.offset, 99)), 0);
    EXPECT_EQ(record.contrlValue, move.end) << move.value << " moved by " << move.offset;
  }
}

TEST_F(Slider, ADragFollowsTheMouseSidewaysAndStopsAtTheEnds) {
  struct Case {
    const char* name;
    Point press, release;
    short value;
  };
  const Case cases[] = {
      {"press at the middle", {157, 460}, {157, 460}, 127},
      {"press 4 left of the bar", {157, 390}, {157, 390}, 0},
      {"press 4 right of the bar", {157, 530}, {157, 530}, 254},
      {"drag beyond the left end", {157, 460}, {157, 0}, 0},
      {"drag beyond the right end", {157, 460}, {300, 639}, 254},
      {"drag straight down", {157, 460}, {390, 460}, 127},
      {"drag to a quarter", {157, 500}, {10, 427}, 63},
  };
  for (const Case& drag : cases) {
    SetControlValue(Control(), 127);
    ToolboxScript script;
    script.Drag(drag.press.h, drag.press.v, drag.release.h, drag.release.v);
    Drag(LM_GLOSS_ITEM, script, drag.press);
    EXPECT_EQ(GetControlValue(Control()), drag.value) << drag.name;
  }
}

TEST_F(Slider, ADragDrawsWhatAFreshDrawingShows) {
  Pixels still, later;
  const auto look = [&](Pixels& into) {
    return [this, &into] {
      const LM_port_scope port(test.dialog);
      into = test.Picture();
    };
  };
  ToolboxScript script;
  script.Press(460, 157).MoveTo(400, 157).MoveTo(520, 157).MoveTo(443, 159).Wait(60);
  script.Call(look(still)).MoveTo(443, 300).Wait(150).Call(look(later)).Release(443, 301);
  Drag(LM_GLOSS_ITEM, script, {157, 460});
  EXPECT_EQ(still, later) << "a vertical move drew something";
  const Pixels dragged = test.Picture();
  EXPECT_EQ(dragged, later);
  Draw1Control(Control());
  EXPECT_EQ(test.Picture(), dragged) << "the indicator left traces";
}

TEST_F(Slider, WithoutABarOrARangeNothingMoves) {
  // Item 14's bar has no length; with a wider title it would end before it begins.
  EXPECT_EQ(Of(LM_MATERIAL_ITEM).BarMinX(), Of(LM_MATERIAL_ITEM).BarMaxX());
  const int16_t widths[] = {60, 90};
  for (int16_t width : widths) {
    Of(LM_MATERIAL_ITEM).titleWidth = width;
    ToolboxScript script;
    script.Drag(394, 198, 300, 198);
    WithMouseDown(script, [&] { LM_DragIndicator(&Of(LM_MATERIAL_ITEM)); });
    const short value = GetControlValue(Control(LM_MATERIAL_ITEM));
    EXPECT_TRUE(value >= 0 && value <= 254) << "title " << width;
  }
  ToolboxScript script;
  script.Drag(450, 237, 520, 237);
  Drag(LM_EXPOSURE_ITEM, script, {237, 450});
  EXPECT_EQ(GetControlValue(Control(LM_EXPOSURE_ITEM)), 0);
}

TEST_F(Slider, IsGreyWhileInactiveAndInvisibleWhileHidden) {
  const auto darkest = [&] {
    uint32_t least = 255;
    for (uint32_t pixel : PixelsOf((**Control()).contrlRect))
      least = std::min(least, pixel & 255);
    return least;
  };
  EXPECT_LT(darkest(), 40U);
  HiliteControl(Control(), 255);
  EXPECT_GT(darkest(), 90U) << "the bar or the number is not grey";
  EXPECT_LT(darkest(), 160U) << "nothing is drawn";
  EXPECT_EQ(test.dialog->rgbFgColor.red, 0);
  (**Control()).contrlVis = 0;
  const Pixels hidden = test.Picture();
  Send(drawCntl, 0);
  Send(drawCntl, inThumb);
  EXPECT_EQ(test.Picture(), hidden);
}

TEST_F(Slider, ASliderThatCouldNotBeMadeDoesNothing) {
  LM_DispControl(&Of());
  EXPECT_EQ(GetControlReference(Control()), 0);
  for (short message = 0; message <= 12; ++message) {
    if (message != initCntl) {
      EXPECT_EQ(Send(message, Packed(450, 157)), 0) << message;
    }
  }
}

} // namespace
