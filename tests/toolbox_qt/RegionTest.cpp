// Recording, and points in recorded regions against what the same figures draw.
#include "Figures.h"
#include "SampleDialog.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

struct RegionFigure {
  const char* name;
  std::function<void()> frame;
  std::function<void()> fill; // the squares that belong to the region
};

void FrameAll(const std::vector<Rect>& boxes) {
  for (const Rect& box : boxes)
    FrameRect(&box);
}

void Polygon(std::vector<Point> corners) {
  MoveTo(corners.back().h, corners.back().v);
  for (const Point& corner : corners)
    LineTo(corner.h, corner.v);
}

void PaintRows(const std::vector<std::pair<short, short>>& rows, short top) {
  for (const auto& [left, right] : rows) {
    On(PaintRect, Box(left, top, right, static_cast<short>(top + 1)));
    ++top;
  }
}

const Rect HANDLE = {5, 5, 10, 10};
const Rect OVAL = {4, 3, 11, 10};
const Rect ELLIPSE = {2, 1, 13, 19};

const RegionFigure REGION_FIGURES[] = {
    {"rectangle", [] { FrameRect(&HANDLE); }, [] { PaintRect(&HANDLE); }},
    {"oval", [] { FrameOval(&OVAL); }, [] { PaintOval(&OVAL); }},
    {"wide oval", [] { FrameOval(&ELLIPSE); }, [] { PaintOval(&ELLIPSE); }},
    {"polygon of a rectangle",
     [] {
       Polygon({{0, 0}, {0, 12}, {7, 12}, {7, 0}});
     },
     [] { On(PaintRect, Box(0, 0, 12, 7)); }},
    {"triangle",
     [] {
       Polygon({{2, 10}, {8, 16}, {8, 4}});
     },
     [] {
       PaintRows({{9, 10}, {8, 11}, {7, 12}, {6, 13}, {5, 14}, {4, 15}}, 2);
     }},
    {"a hole in a rectangle",
     [] {
       FrameAll({Box(1, 1, 15, 12), Box(4, 4, 9, 9)});
     },
     [] { On(PaintRect, Box(1, 1, 15, 12)), On(EraseRect, Box(4, 4, 9, 9)); }},
    {"nothing", [] {}, [] {}},
};

TEST(Region, RecordsWhatFramesSurround) {
  for (const RegionFigure& figure : REGION_FIGURES) {
    TestPort port(20, 14);
    const std::vector<std::string> blank = port.Rows();
    RgnHandle region = NewRgn();
    OpenRgn();
    figure.frame();
    const Rect all = {0, 0, 14, 20};
    EraseRect(&all);
    InvertRect(&all);
    CloseRgn(region);
    EXPECT_EQ(port.Rows(), blank) << figure.name << " drew while recording";

    PenNormal();
    figure.fill();
    const std::vector<std::string> filled = port.Rows();
    for (short v = -1; v < 15; ++v) {
      for (short h = -1; h < 21; ++h) {
        const bool inPort = v >= 0 && v < 14 && h >= 0 && h < 20;
        const bool expected =
            inPort && filled[static_cast<size_t>(v)][static_cast<size_t>(h)] == '#';
        EXPECT_EQ(PtInRgn(Point{v, h}, region) != 0, expected)
            << figure.name << " " << h << "," << v;
      }
    }
    DisposeRgn(region);
  }
}

} // namespace
