// Pixel maps, icons, copying and cursors.
#include "SampleDialog.h"

#include "ColorPicker.h"
#include "Cursors.h"
#include "MacStrings.h"
#include "ToolboxDesktop.h"

#include <QApplication>
#include <QColorDialog>
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

namespace {

constexpr int WIDTH = 9;
constexpr int HEIGHT = 5;
constexpr int ROW_BYTES = 28;

// A map with a picture of its own.
struct SampleMap {
  uint8_t pixels[ROW_BYTES * HEIGHT];
  uint8_t maskBytes[12 * HEIGHT];
  CVPixelMask mask;
  CVPixelMap map;

  SampleMap() : pixels(), maskBytes(), mask(), map() {
    for (int i = 0; i < ROW_BYTES * HEIGHT; ++i)
      pixels[i] = static_cast<uint8_t>(i * 37);
    mask = {nullptr, maskBytes, 12, 1, 0};
    map.bounds = {0, 0, HEIGHT, WIDTH};
    map.imageMode = CV_MODE_RGB;
    map.rowBytes = ROW_BYTES;
    map.columnBytes = 3;
    map.planeBytes = 1;
    map.baseAddress = pixels;
    map.mask = &mask;
  }
  const uint8_t* At(int row, int column) const { return pixels + row * ROW_BYTES + column * 3; }
};

TEST(Picture, AMapIsShownPixelForPixel) {
  TestPort port(20, 12);
  const SampleMap sample;
  const CVRect32 part = {1, 2, 4, 8};
  ASSERT_EQ(ShowPixelMap(&sample.map, &part, 3, 5), 0);
  for (short row = 0; row < 12; ++row) {
    for (short column = 0; column < 20; ++column) {
      RGBColor color;
      GetCPixel(column, row, &color);
      const bool inside = row >= 3 && row < 6 && column >= 5 && column < 11;
      const uint8_t white[] = {255, 255, 255};
      const uint8_t* expected = inside ? sample.At(row - 3 + 1, column - 5 + 2) : white;
      ASSERT_EQ(color.red, expected[0] * 257) << row << "," << column;
      ASSERT_EQ(color.green, expected[1] * 257);
      ASSERT_EQ(color.blue, expected[2] * 257);
    }
  }
}

TEST(Picture, AMaskBlendsAndTheSourceIsCutToTheMap) {
  SampleMap sample;
  std::fill(std::begin(sample.maskBytes), std::end(sample.maskBytes), uint8_t{255});
  sample.maskBytes[1] = 0;
  const CVRect32 beyond = {-2, -3, 50, 60};
  for (int32_t version : {0, 1}) {
    TestPort port(20, 12);
    sample.map.version = version;
    ASSERT_EQ(ShowPixelMap(&sample.map, &beyond, 0, 0), 0);
    RGBColor color;
    GetCPixel(3, 2, &color);
    EXPECT_EQ(color.red, sample.At(0, 0)[0] * 257);
    GetCPixel(4, 2, &color);
    EXPECT_EQ(color.red, version == 1 ? 65535 : sample.At(0, 1)[0] * 257);
  }
}

struct BadMap {
  const char* name;
  std::function<void(CVPixelMap&)> spoil;
};

const BadMap BAD_MAPS[] = {
    {"no pixels", [](CVPixelMap& map) { map.baseAddress = nullptr; }},
    {"rows that overlap", [](CVPixelMap& map) { map.rowBytes = 26; }},
    {"rows that run backwards", [](CVPixelMap& map) { map.rowBytes = -28; }},
    {"columns that overlap", [](CVPixelMap& map) { map.columnBytes = 2; }},
    {"planes apart", [](CVPixelMap& map) { map.planeBytes = 1000000; }},
    {"no planes", [](CVPixelMap& map) { map.planeBytes = 0; }},
    {"a mode of its own", [](CVPixelMap& map) { map.imageMode = 4; }},
    {"inside out", [](CVPixelMap& map) { map.bounds.right = -5; }},
    {"vast", [](CVPixelMap& map) { map.bounds.bottom = 2000000000; }},
    {"wrapping round",
     [](CVPixelMap& map) {
       map.bounds = {INT32_MIN, 0, INT32_MAX, 9};
     }},
};

TEST(Picture, AMapThatMakesNoSenseIsRefused) {
  TestPort port(20, 12);
  for (const BadMap& bad : BAD_MAPS) {
    SampleMap sample;
    bad.spoil(sample.map);
    const CVRect32 all = {0, 0, HEIGHT, WIDTH};
    EXPECT_EQ(ShowPixelMap(&sample.map, &all, 0, 0), paramErr) << bad.name;
  }
  EXPECT_EQ(ShowPixelMap(nullptr, nullptr, 0, 0), paramErr);
}

TEST(Picture, IconsAreDrawnOverOrInsteadOfWhatIsThere) {
  UseSampleResources();
  const Rect box = {2, 2, 34, 34};
  for (short icon : {128, 129}) {
    TestPort port(36, 36);
    PaintRect(&box);
    CIconHandle handle = GetCIcon(icon);
    ASSERT_NE(handle, nullptr);
    PlotCIcon(&box, handle);
    DisposeCIcon(handle);
    RGBColor middle;
    GetCPixel(18, 8, &middle);
    EXPECT_EQ(middle.red, 65535);
    EXPECT_EQ(middle.blue, 0);
    RGBColor corner;
    GetCPixel(2, 2, &corner);
    EXPECT_EQ(corner.red, icon == 129 ? 0 : 65535) << icon;
  }
  for (short icon : {130, 131}) {
    TestPort port(36, 36);
    CIconHandle handle = GetCIcon(icon);
    PlotCIcon(&box, handle);
    EXPECT_EQ(port.Rows()[10], std::string(36, '.'));
    DisposeCIcon(handle);
  }
  EXPECT_EQ(GetCIcon(99), nullptr);
  PlotCIcon(&box, nullptr);
}

TEST(Picture, HighlightingExchangesTheBackgroundAndComesBack) {
  TestPort port(6, 3);
  MoveTo(1, 1);
  LineTo(3, 1);
  const Rect box = {0, 0, 3, 5};
  const BitMap* bits = GetPortBitMapForCopyBits(port.port);
  CopyBits(bits, bits, &box, &box, hilite, nullptr);
  EXPECT_EQ(port.Rows(), std::vector<std::string>({"?????.", "?###?.", "?????."}));
  CopyBits(bits, bits, &box, &box, hilite, nullptr);
  EXPECT_EQ(port.Rows(), std::vector<std::string>({"......", ".###..", "......"}));
}

TEST(Picture, CursorsAreSetAndTakenBack) {
  UseSampleResources();
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  for (short number : {4, 128}) {
    CursHandle cursor = GetCursor(number);
    ASSERT_NE(cursor, nullptr);
    SetCursor(*cursor);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(),
              number == 4 ? Qt::WaitCursor : Qt::BitmapCursor);
  }
  InitCursor();
  InitCursor();
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(GetCursor(77), nullptr);
}

struct PickCase {
  const char* name;
  short key;
  Boolean picked;
};

TEST(Picture, TheColourPickerAnswersWhatWasPicked) {
  constexpr PickCase CASES[] = {{"chosen", kReturnKeyCode, 1}, {"left alone", kEscapeKeyCode, 0}};
  for (const PickCase& pick : CASES) {
    SampleDialog sample;
    ToolboxScript script;
    QString title;
    script.Wait(80).Call([&] {
      auto* chooser = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
      ASSERT_NE(chooser, nullptr);
      title = chooser->windowTitle();
      EXPECT_EQ(chooser->currentColor(), QColor(255, 128, 0));
      chooser->setCurrentColor(QColor(10, 20, 30));
    });
    script.KeyPress(pick.key).Start();
    const RGBColor from = {65535, 0x8080, 0};
    RGBColor to = {1, 2, 3};
    EXPECT_EQ(GetColor(Point{0, 0}, TB_PString("Light colour"), &from, &to), pick.picked)
        << pick.name;
    EXPECT_EQ(title, "Light colour");
    EXPECT_EQ(to.red, pick.picked ? 2570 : 1) << pick.name;
    EXPECT_EQ(to.blue, pick.picked ? 7710 : 3) << pick.name;
  }
}

} // namespace
