// How the dialog's own items are drawn.
#include "LightDialog.h"

#include "LM_item_drawing.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

// Pictures are scaled smoothly: neighbours may shine through a little at a fractional ratio.
constexpr int SMOOTHING = 32;

// The largest of the components' differences.
int Difference(uint32_t a, uint32_t b) {
  int largest = 0;
  for (int shift : {0, 8, 16}) {
    const int from = static_cast<int>((a >> shift) & 255);
    largest = std::max(largest, std::abs(from - static_cast<int>((b >> shift) & 255)));
  }
  return largest;
}

class Item : public testing::Test {
protected:
  void Clear() { EraseRect(&test.dialog->portRect); }
  bool IsInk(int h, int v) const { return PixelAt(h, v) != ground; }
  // The darkest blue of what is drawn in an item.
  uint32_t Darkest(int16_t item) const {
    uint32_t least = 255;
    for (uint32_t pixel : PixelsOf(test.Box(item)))
      least = std::min(least, pixel & 255);
    return least;
  }
  LightDialog test;
  uint32_t ground = PixelAt(635, 395);
};

TEST_F(Item, GroupBoxesLeaveAGapForWhatSitsOnThem) {
  Str255 title = {5, 'L', 'i', 'g', 'h', 't'};
  short titleWidth = 0;
  {
    const LM_small_text_scope text(bold);
    titleWidth = StringWidth(title);
  }
  struct Case {
    int16_t group;
    int start, end; // of the gap
  };
  const Case cases[] = {{LM_LIGHT_GROUP_ITEM, 350, 424},
                        {LM_PROPERTIES_GROUP_ITEM, 500, 508 + titleWidth},
                        {LM_BUMP_GROUP_ITEM, 350, 424},
                        {LM_STYLE_GROUP_ITEM, 500, 574}};
  for (const Case& group : cases) {
    Clear();
    LM_DrawGroupBox(test.dialog, group.group);
    const Rect box = test.Box(group.group);
    for (int h = box.left; h < box.right; ++h) {
      const bool inGap = h > group.start && h < group.end;
      ASSERT_EQ(IsInk(h, box.top), !inGap) << "group " << group.group << " at " << h;
      ASSERT_TRUE(IsInk(h, box.bottom - 1)) << "group " << group.group << " at " << h;
      ASSERT_FALSE(IsInk(h, box.bottom)) << "group " << group.group;
    }
    for (int v = box.top; v < box.bottom; ++v)
      ASSERT_TRUE(IsInk(box.left, v) && IsInk(box.right - 1, v)) << "group " << group.group;
    ASSERT_FALSE(IsInk(box.right, box.top + 5)) << "group " << group.group;
  }
}

TEST_F(Item, ColourBoxesShowTheColourAndGreyTheirFrameWhenDisabled) {
  test.globals->ambientColor = {{0xFFFF, 0, 0x8000}};
  test.globals->lights[0].color = {{0, 0x4000, 0xFFFF}};
  LM_DrawAmbientColorBox(test.dialog, LM_AMBIENT_COLOR_ITEM);
  LM_DrawLightColorBox(test.dialog, LM_LIGHT_COLOR_ITEM);
  const Point ambient = test.Middle(LM_AMBIENT_COLOR_ITEM);
  const Point light = test.Middle(LM_LIGHT_COLOR_ITEM);
  EXPECT_EQ(PixelAt(ambient.h, ambient.v), RGB(255, 0, 128));
  EXPECT_EQ(PixelAt(light.h, light.v), RGB(0, 64, 255));
  const Rect box = test.Box(LM_LIGHT_COLOR_ITEM);
  const uint32_t enabled = PixelAt(box.left, box.top);
  EXPECT_EQ(PixelAt(box.right - 1, box.bottom - 1), enabled);
  LM_DisableItem(test.dialog, LM_LIGHT_COLOR_ITEM);
  LM_DrawLightColorBox(test.dialog, LM_LIGHT_COLOR_ITEM);
  EXPECT_NE(PixelAt(box.left, box.top), enabled);
  EXPECT_NEAR(PixelAt(box.left, box.top) & 255, 0x7F, 12);
  EXPECT_EQ(PixelAt(light.h, light.v), RGB(0, 64, 255));
  EXPECT_EQ(test.dialog->rgbFgColor.red, 0);
}

TEST_F(Item, SmallButtonsHaveAFrameAndALabelAndAreGreyWhenDisabled) {
  LM_DrawSmallButton(test.dialog, LM_SAVE_STYLE_ITEM);
  LM_DrawSmallButton(test.dialog, LM_DELETE_STYLE_ITEM);
  const Rect box = test.Box(LM_SAVE_STYLE_ITEM);
  for (int ring = 0; ring < 3; ++ring)
    EXPECT_LT(PixelAt(box.left + ring, box.top + ring) & 255, 40U) << "ring " << ring;
  EXPECT_EQ(PixelAt(box.left + 3, box.top + 3), ground);
  const auto inside = [&](int16_t item) {
    Rect rect = test.Box(item);
    InsetRect(&rect, 3, 3);
    return PixelsOf(rect);
  };
  EXPECT_NE(inside(LM_SAVE_STYLE_ITEM), inside(LM_DELETE_STYLE_ITEM)) << "the labels differ";
  const Pixels plain = inside(LM_SAVE_STYLE_ITEM);
  LM_DrawPressedSmallButton(test.dialog, LM_SAVE_STYLE_ITEM);
  for (size_t i = 0; i < plain.size(); ++i)
    ASSERT_EQ(inside(LM_SAVE_STYLE_ITEM)[i], plain[i] ^ 0xFFFFFF);
  LM_DrawSmallButton(test.dialog, LM_SAVE_STYLE_ITEM);
  EXPECT_EQ(inside(LM_SAVE_STYLE_ITEM), plain);
  LM_DisableItem(test.dialog, LM_SAVE_STYLE_ITEM);
  LM_DrawSmallButton(test.dialog, LM_SAVE_STYLE_ITEM);
  EXPECT_NEAR(Darkest(LM_SAVE_STYLE_ITEM), 0x80, 20);
  EXPECT_LT(Darkest(LM_DELETE_STYLE_ITEM), 40U);
}

TEST_F(Item, TheDefaultButtonHasARingAroundIt) {
  Clear();
  LM_DrawOKOutline(test.dialog, LM_OK_OUTLINE_ITEM);
  const Rect box = test.Box(LM_OK_ITEM);
  const int middle = (box.left + box.right) / 2;
  for (int ring = 1; ring <= 6; ++ring) {
    const bool ink = ring >= 2 && ring <= 4;
    EXPECT_EQ(IsInk(middle, box.top - ring), ink) << ring;
    EXPECT_EQ(IsInk(box.right - 1 + ring, (box.top + box.bottom) / 2), ink) << ring;
  }
  EXPECT_FALSE(IsInk(box.left - 4, box.top - 4)) << "the corner is round";
}

TEST_F(Item, TheWorkAreaShowsTheFrameMapWithTheLightsInsideItsBorder) {
  const Rect box = test.Box(LM_WORK_AREA_ITEM);
  test.globals->lights[0].on = 1;
  test.UseLight(LM_LIGHT_OMNI, -140, 0); // on the border, and half outside
  test.globals->lights[0].color = {{0xFFFF, 0, 0}};
  test.globals->lights[0].type = 9;
  Clear();
  LM_DrawWorkArea(test.dialog, LM_WORK_AREA_ITEM);
  const Pixels bare = test.Picture();
  const int sample = 200 * 840 + 9 * 3; // of the frame map
  EXPECT_LE(Difference(PixelAt(box.left + 9, box.top + 200),
                       RGB(100, (sample + 1) * 7 % 101, (sample + 2) * 7 % 101)),
            SMOOTHING);
  test.globals->lights[0].type = LM_LIGHT_OMNI;
  LM_DrawWorkArea(test.dialog, LM_WORK_AREA_ITEM);
  const Pixels lit = test.Picture();
  EXPECT_NE(lit, bare);
  for (int v = 0; v < 400; ++v) {
    for (int h = 0; h <= box.left; ++h)
      ASSERT_EQ(lit[static_cast<size_t>(v) * 640 + h], bare[static_cast<size_t>(v) * 640 + h])
          << "drawn on the border at " << h << "," << v;
  }
}

// Brightening outlines must not be drawn a second time beside the part that is refreshed.
TEST_F(Item, RefreshingAPartOfTheWorkAreaLooksLikeTheWhole) {
  LM_UserItemSetDrawProc(test.dialog, LM_WORK_AREA_ITEM, LM_DrawWorkArea);
  test.UseLight(LM_LIGHT_SPOT);
  DrawDialog(test.dialog);
  const Pixels whole = test.Picture();
  RgnHandle part = NewRgn();
  const Rect rect = {150, 140, 190, 170};
  RectRgn(part, &rect);
  UpdateDialog(test.dialog, part);
  DisposeRgn(part);
  const Pixels refreshed = test.Picture();
  for (size_t i = 0; i < whole.size(); ++i)
    ASSERT_LE(Difference(refreshed[i], whole[i]), SMOOTHING) << i % 640 << "," << i / 640;
}

TEST_F(Item, DrawingStaysInItsDialogWhateverPortIsCurrent) {
  typedef void (*Procedure)(DialogPtr, int16_t);
  const std::pair<int16_t, Procedure> procedures[] = {
      {LM_WORK_AREA_ITEM, LM_DrawWorkArea},
      {LM_AMBIENT_COLOR_ITEM, LM_DrawAmbientColorBox},
      {LM_LIGHT_WELL_ITEM, LM_DrawLightWell},
      {LM_TRASH_ITEM, LM_DrawTrash},
      {LM_TRASH_ITEM, LM_DrawInverseTrash},
      {LM_OK_OUTLINE_ITEM, LM_DrawOKOutline},
      {LM_DELETE_STYLE_ITEM, LM_DrawSmallButton},
      {LM_PROPERTIES_TITLE_ITEM, LM_DrawPropertiesTitle},
      {LM_STYLE_GROUP_ITEM, LM_DrawGroupBox}};
  const Rect bounds = {0, 0, 400, 640};
  GrafPtr other = NewOffscreenPort(bounds);
  SetPort(other);
  const Pixels untouched = PixelsOf(bounds);
  for (const auto& [item, procedure] : procedures) {
    SetPort(test.dialog);
    Clear();
    const Pixels blank = test.Picture();
    PenSize(2, 5);
    SetPort(other);
    procedure(test.dialog, item);
    EXPECT_EQ(PixelsOf(bounds), untouched) << "item " << item;
    GrafPtr current = nullptr;
    GetPort(&current);
    EXPECT_EQ(current, other) << "item " << item;
    SetPort(test.dialog);
    EXPECT_NE(test.Picture(), blank) << "item " << item;
    EXPECT_EQ(test.dialog->pen.pnSize.v, 5) << "item " << item;
    EXPECT_TRUE(test.dialog->txFont == 0 && test.dialog->txSize == 0 && test.dialog->txFace == 0)
        << "item " << item;
  }
  DisposePort(other);
}

} // namespace
