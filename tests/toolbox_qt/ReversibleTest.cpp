// Exclusive-or figures drawn twice leave no changed pixel, whatever the ratio and the ground.
#include "Figures.h"
#include "SampleDialog.h"

#include <QImage>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace {

struct ReversibleFigure {
  const char* name;
  std::function<void()> draw;
};

void DrawEllipse(double axisH, double axisV, double tilt) {
  for (int k = 0; k <= 40; ++k) {
    const double angle = k * 3.14159265358979 / 20;
    const double along = axisH * std::cos(angle);
    const double across = axisV * std::sin(angle);
    const auto h = static_cast<short>(60 + along * std::cos(tilt) - across * std::sin(tilt));
    const auto v = static_cast<short>(50 + along * std::sin(tilt) + across * std::cos(tilt));
    if (k == 0)
      MoveTo(h, v);
    else
      LineTo(h, v);
  }
}

const ReversibleFigure REVERSIBLE_FIGURES[] = {
    {"flat line", [] { DrawLineFromTo(3, 40, 110, 61); }},
    {"steep line", [] { DrawLineFromTo(90, 3, 61, 97); }},
    {"horizontal line", [] { DrawLineFromTo(5, 33, 77, 33); }},
    {"oval", [] { On(FrameOval, Box(21, 13, 107, 88)); }},
    {"oval beyond the port", [] { On(FrameOval, Box(-30, -40, 207, 88)); }},
    {"small filled oval", [] { On(PaintOval, Box(41, 41, 48, 48)); }},
    {"handle", [] { On(PaintRect, Box(61, 41, 66, 46)); }},
    {"rounded rectangle", [] { PenSize(3, 3), On(FrameRoundRect, Box(15, 11, 90, 60), 16, 16); }},
    {"ellipse of forty sides", [] { DrawEllipse(45, 20, 0.4); }},
    {"flat ellipse", [] { DrawEllipse(50, 1, 1.1); }},
    {"inverted rectangle", [] { On(InvertRect, Box(15, 11, 90, 60)); }},
};

void PaintGround() {
  for (short v = 0; v < 100; v += 2) {
    for (short h = 0; h < 120; h += 3) {
      const Rect box = {v, h, static_cast<short>(v + 2), static_cast<short>(h + 3)};
      PixPatHandle pattern = NewPixPat();
      const RGBColor color = {static_cast<uint16_t>(h * 541), static_cast<uint16_t>(v * 655),
                              static_cast<uint16_t>((h * 7 + v * 13) * 97)};
      MakeRGBPat(pattern, &color);
      FillCRect(&box, pattern);
      DisposePixPat(pattern);
    }
  }
}

void SetClipped(bool clipped) {
  const Rect whole = {0, 0, 100, 120};
  const Rect inner = {9, 7, 77, 101};
  ClipRect(clipped ? &inner : &whole);
}

class Reversible : public testing::TestWithParam<double> {};

TEST_P(Reversible, AFigureDrawnTwiceChangesNothing) {
  TestPort port(120, 100, GetParam());
  PaintGround();
  const QImage before = TB_PortImage(port.port);
  for (const ReversibleFigure& figure : REVERSIBLE_FIGURES) {
    for (bool clipped : {false, true}) {
      SetClipped(clipped);
      PenNormal();
      PenMode(patXor);
      figure.draw();
      EXPECT_NE(TB_PortImage(port.port), before) << figure.name << " drew nothing";
      PenNormal();
      PenMode(patXor);
      figure.draw();
      EXPECT_EQ(TB_PortImage(port.port), before) << figure.name << (clipped ? ", clipped" : "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Ratios, Reversible, testing::Values(1.0, 1.25, 1.5, 1.75, 2.0, 3.0));

} // namespace
