// Dark themes and forced ratios: what dialogs draw stays legible and in place.
#include "PortState.h"
#include "SampleDialog.h"
#include "ToolboxDesktop.h"

#include <QApplication>
#include <QPalette>
#include <QWidget>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

// A dark palette while it lives.
class DarkTheme {
public:
  DarkTheme() : _saved(QApplication::palette()) {
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(45, 45, 48));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    QApplication::setPalette(dark);
  }
  ~DarkTheme() { QApplication::setPalette(_saved); }
  DarkTheme(const DarkTheme&) = delete;
  DarkTheme& operator=(const DarkTheme&) = delete;

private:
  QPalette _saved;
};

int LevelAt(short h, short v) {
  RGBColor color;
  GetCPixel(h, v, &color);
  return color.green >> 8;
}

void PaintAt(short h, short v) {
  const Rect box = {v, h, static_cast<short>(v + 2), static_cast<short>(h + 2)};
  PaintRect(&box);
}

TEST(Theme, NeutralInksFollowThePaletteAwayFromPictures) {
  DarkTheme dark;
  SampleDialog sample;
  const RGBColor grey = {0x7FFF, 0x7FFF, 0x7FFF};
  const RGBColor black = {0, 0, 0};
  EXPECT_EQ(LevelAt(5, 5), 45);
  PaintAt(5, 5);
  EXPECT_EQ(LevelAt(5, 5), 230) << "black is the text's colour";
  RGBForeColor(&grey);
  PaintAt(8, 5);
  EXPECT_NEAR(LevelAt(8, 5), 137, 3);
  RGBForeColor(&black);
  PenPat(&qd.white);
  PaintAt(5, 5);
  EXPECT_EQ(LevelAt(5, 5), 45) << "the white pattern is the background";
  PenNormal();

  // Patterns are exact everywhere, all inks are on a picture.
  PixPatHandle pattern = NewPixPat();
  MakeRGBPat(pattern, &black);
  const Rect box = {5, 5, 7, 7};
  FillCRect(&box, pattern);
  DisposePixPat(pattern);
  EXPECT_EQ(LevelAt(5, 5), 0);
  uint8_t white[40 * 40];
  std::fill(std::begin(white), std::end(white), uint8_t{255});
  CVPixelMap map = {};
  map.bounds = {0, 0, 40, 40};
  map.imageMode = CV_MODE_GRAY;
  map.rowBytes = 40;
  map.columnBytes = 1;
  map.baseAddress = white;
  ASSERT_EQ(ShowPixelMap(&map, &map.bounds, 20, 20), 0);
  PaintAt(30, 30);
  EXPECT_EQ(LevelAt(30, 30), 0) << "black on a picture is black";
  const Rect erased = {20, 20, 60, 60};
  EraseRect(&erased);
  PaintAt(30, 30);
  EXPECT_EQ(LevelAt(30, 30), 230) << "until the picture is erased";
}

TEST(Theme, AChangeOfThemeIsDrawnAtTheNextEvent) {
  SampleDialog sample;
  DarkTheme dark;
  const Point okay = sample.Middle(OK_ITEM);
  ToolboxScript script;
  script.Wait(50).Click(okay.h, okay.v).Start();
  HitItem();
  EXPECT_EQ(LevelAt(2, 2), 45);
}

TEST(Theme, AForcedRatioScalesTheWindowAndKeepsCoordinates) {
  for (const char* scale : {"2", "1.5", "1", "nonsense"}) {
    qputenv("LIMN_SCALE", scale);
    SampleDialog sample;
    qunsetenv("LIMN_SCALE");
    const double expected = QByteArray(scale).toDouble() > 1 ? QByteArray(scale).toDouble() : 1;
    EXPECT_EQ(TB_PortWindow(sample.dialog)->width(), 440 * expected) << scale;
    EXPECT_EQ(TB_PortImage(sample.dialog).width(), 440 * expected) << scale;
    const Rect box = sample.Box(CANCEL_ITEM);
    ToolboxScript script;
    script.Click(box.left, box.top)
        .Click(static_cast<short>(box.right - 1), static_cast<short>(box.bottom - 1))
        .Start();
    for (int click = 0; click < 2; ++click) {
      EXPECT_EQ(HitItem(), CANCEL_ITEM) << scale << " click " << click;
    }
    for (Point point : {Point{0, 0}, Point{17, 231}, Point{319, 439}}) {
      Point there = point;
      AddPt(GlobalOrigin(*sample.dialog), &there);
      GlobalToLocal(&there);
      EXPECT_TRUE(EqualPt(there, point)) << scale;
    }
  }
}

} // namespace
