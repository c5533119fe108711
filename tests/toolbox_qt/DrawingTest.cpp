// Which pixels figures cover at ratio 1, the modes' arithmetic, clipping and text.
#include "Figures.h"
#include "SampleDialog.h"

#include "MacStrings.h"

#include <QImage>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace {

typedef std::vector<std::string> Rows;

struct DrawingFigure {
  const char* name;
  std::function<void()> draw;
  Rows rows;
};

const Rect SEVEN = {1, 1, 8, 8};

const DrawingFigure DRAWING_FIGURES[] = {
    {"a line of one point is one square",
     [] { DrawLineFromTo(2, 1, 2, 1); },
     {"....", "..#.", "....", "...."}},
    {"both ends belong to a line", [] { DrawLineFromTo(0, 1, 3, 1); }, {"....", "####", "...."}},
    {"a diagonal", [] { DrawLineFromTo(0, 0, 3, 3); }, {"#...", ".#..", "..#.", "...#"}},
    {"a diagonal drawn backwards",
     [] { DrawLineFromTo(3, 0, 0, 3); },
     {"...#", "..#.", ".#..", "#..."}},
    {"a flat line has one square a column",
     [] { DrawLineFromTo(0, 0, 5, 2); },
     {"##....", "..##..", "....##"}},
    {"a steep line has one square a row",
     [] { DrawLineFromTo(0, 0, 2, 5); },
     {"#..", "#..", ".#.", ".#.", "..#", "..#"}},
    {"lines that go on from each other invert their joints once",
     [] { PenMode(patXor), MoveTo(0, 0), LineTo(2, 0), LineTo(2, 0), LineTo(2, 2); },
     {"###", "..#", "..#"}},
    {"lines that merely touch invert the point twice",
     [] { PenMode(patXor), DrawLineFromTo(0, 0, 2, 0), DrawLineFromTo(2, 0, 2, 2); },
     {"##.", "..#", "..#"}},
    {"a frame lies inside its rectangle",
     [] { On(FrameRect, Box(1, 1, 5, 4)); },
     {"......", ".####.", ".#..#.", ".####.", "......"}},
    {"a thick frame",
     [] { PenSize(2, 1), On(FrameRect, Box(0, 0, 6, 4)); },
     {"######", "##..##", "##..##", "######"}},
    {"a frame thicker than its rectangle fills it",
     [] { PenSize(3, 3), On(FrameRect, Box(1, 1, 5, 4)); },
     {"......", ".####.", ".####.", ".####.", "......"}},
    {"an oval frame of seven",
     [] { FrameOval(&SEVEN); },
     {".........", "...###...", "..#...#..", ".#.....#.", ".#.....#.", ".#.....#.", "..#...#..",
      "...###...", "........."}},
    {"a painted oval of seven",
     [] { PaintOval(&SEVEN); },
     {".........", "...###...", "..#####..", ".#######.", ".#######.", ".#######.", "..#####..",
      "...###...", "........."}},
    {"an empty or inverted rectangle draws nothing",
     [] {
       On(PaintRect, Box(2, 2, 2, 3));
       On(FrameOval, Box(3, 3, 1, 1));
       On(FrameRect, Box(3, 3, 1, 1));
     },
     {"....", "....", "....", "...."}},
    {"clipping keeps to the rectangle",
     [] { On(ClipRect, Box(1, 1, 3, 3)), DrawLineFromTo(0, 0, 3, 3); },
     {"....", ".#..", "..#.", "...."}},
    {"lines far outside cost nothing and leave their part",
     [] {
       DrawLineFromTo(-32768, -32768, 32767, 32767),
           On(FrameOval, Box(-32768, -32768, 32767, 32767));
     },
     {"#...", ".#..", "..#.", "...#"}},
    {"erasing takes the background colour",
     [] { On(PaintRect, Box(0, 0, 4, 3)), On(EraseRect, Box(1, 1, 3, 2)); },
     {"####", "#..#", "####"}},
};

TEST(Drawing, FiguresCoverTheirSquares) {
  for (const DrawingFigure& figure : DRAWING_FIGURES) {
    TestPort port(static_cast<short>(figure.rows[0].size()),
                  static_cast<short>(figure.rows.size()));
    figure.draw();
    EXPECT_EQ(port.Rows(), figure.rows) << figure.name;
  }
}

struct ModeCase {
  const char* name;
  short mode;
  uint16_t ink;
  int before, after; // 8-bit greys
};

constexpr ModeCase MODES[] = {
    {"copy", patCopy, 0x8000, 200, 128},
    {"copy, as 0", srcCopy, 0x8000, 200, 128},
    {"black inverts", patXor, 0, 200, 55},
    {"white changes nothing", patXor, 0xFFFF, 200, 200},
    {"grey brightens the dark", addOver, 0x8000, 40, 168},
    {"and wraps round on the bright", addOver, 0x8000, 200, 72},
};

RGBColor Grey(int level) {
  const auto component = static_cast<uint16_t>(level * 257);
  return {component, component, component};
}

TEST(Drawing, ModesCombineInkAndPicture) {
  for (const ModeCase& mode : MODES) {
    TestPort port(3, 3);
    const RGBColor before = Grey(mode.before);
    PixPatHandle pattern = NewPixPat();
    MakeRGBPat(pattern, &before);
    FillCRect(&port.port->portRect, pattern);
    DisposePixPat(pattern);
    const RGBColor ink = {mode.ink, mode.ink, mode.ink};
    RGBForeColor(&ink);
    PenMode(mode.mode);
    MoveTo(1, 1);
    LineTo(1, 1);
    RGBColor after;
    GetCPixel(1, 1, &after);
    EXPECT_EQ(after.red >> 8, mode.after) << mode.name;
    GetCPixel(0, 1, &after);
    EXPECT_EQ(after.green >> 8, mode.before) << mode.name;
  }
}

TEST(Drawing, FillingIgnoresThePenAndPenStateComesBack) {
  TestPort port(4, 4);
  PenState saved;
  GetPenState(&saved);
  PenMode(patXor);
  PenSize(3, 3);
  PixPatHandle pattern = NewPixPat();
  const RGBColor red = {65535, 0, 0};
  MakeRGBPat(pattern, &red);
  PenPixPat(pattern);
  FillCRect(&port.port->portRect, pattern);
  FillCRect(&port.port->portRect, pattern);
  DisposePixPat(pattern);
  RGBColor color;
  GetCPixel(2, 2, &color);
  EXPECT_EQ(color.red, 65535);
  EXPECT_EQ(color.green, 0);
  SetPenState(&saved);
  EXPECT_EQ(port.port->pen.pnMode, patCopy);
  EXPECT_EQ(port.port->pen.pnSize.h, 1);
  EXPECT_FALSE(port.port->pen.usesPixPat);
}

TEST(Drawing, UnitSquaresMeetWithoutGapAtEveryRatio) {
  for (double ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
    TestPort port(40, 10, ratio);
    const RGBColor grey = Grey(100);
    RGBForeColor(&grey);
    PenMode(addOver);
    for (short h = 0; h < 40; ++h) {
      const Rect column = Box(h, 0, static_cast<short>(h + 1), 10);
      PaintRect(&column);
    }
    for (short h = 0; h < 40; ++h) {
      RGBColor color;
      GetCPixel(h, 5, &color);
      ASSERT_EQ(color.red >> 8, (255 + 100) & 255) << "ratio " << ratio << " column " << h;
    }
  }
}

// What is drawn goes when its box is erased, whatever the ratio.
TEST(Drawing, FiguresStayInTheirSquares) {
  for (double ratio : {1.0, 1.25, 1.5, 1.75, 2.0}) {
    TestPort port(40, 40, ratio);
    const QImage blank = TB_PortImage(port.port);
    for (short shift = 0; shift < 4; ++shift) {
      const Rect box = Box(static_cast<short>(5 + shift), static_cast<short>(6 + shift),
                           static_cast<short>(16 + shift), static_cast<short>(12 + shift));
      MoveTo(static_cast<short>(10 + shift), static_cast<short>(6 + shift));
      DrawPISlider();
      DrawLineFromTo(box.left, box.top, static_cast<short>(box.right - 1),
                     static_cast<short>(box.bottom - 1));
      FrameOval(&box);
      FrameRoundRect(&box, 5, 5);
      EXPECT_NE(TB_PortImage(port.port), blank);
      EraseRect(&box);
      EXPECT_EQ(TB_PortImage(port.port), blank) << "ratio " << ratio << " shift " << shift;
    }
  }
}

TEST(Drawing, TextWidthsAreThoseDrawnAndDoNotDependOnTheRatio) {
  const TB_Str255 text = TB_PString("Größe 100 %");
  short plain = 0;
  for (double ratio : {1.0, 1.5, 2.0}) {
    TestPort port(200, 30, ratio);
    TextFont(1);
    TextSize(9);
    if (plain == 0)
      plain = StringWidth(text);
    EXPECT_EQ(StringWidth(text), plain);
    MoveTo(10, 20);
    DrawString(text);
    EXPECT_NEAR(port.port->pen.pnLoc.h, 10 + plain, 1);
    const std::vector<std::string> rows = port.Rows();
    int last = 0;
    for (const std::string& row : rows)
      last = std::max(last, static_cast<int>(row.find_last_not_of('.') + 1));
    EXPECT_NEAR(last, 10 + plain, 3) << "ratio " << ratio;
    TextFace(bold);
    EXPECT_GT(StringWidth(text), plain);
  }
}

TEST(Drawing, ADisposedPortIsNoLongerDrawnInto) {
  GrafPtr before;
  GetPort(&before);
  const Rect bounds = Box(0, 0, 5, 5);
  GrafPtr world = NewOffscreenPort(bounds);
  SetPort(world);
  DisposePort(world);
  PaintRect(&bounds);
  GrafPtr now;
  GetPort(&now);
  EXPECT_NE(now, world);
  EXPECT_NE(now, nullptr);
  SetPort(world);
  FrameOval(&bounds);
  SetPort(before);
}

} // namespace
