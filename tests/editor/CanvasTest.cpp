// The view: zoom and pan, the rectangle, the brush, before and after; with a real mouse's events.
#include "EditorRun.h"

#include "thumbnail.h"

#include <QColorSpace>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <algorithm>
#include <tuple>

namespace {

using editor::Canvas;
using editor::Tool;

void Drag(QWidget* viewport, QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton,
          Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
  const auto send = [&](QEvent::Type type, QPoint place, Qt::MouseButtons buttons) {
    QMouseEvent event(type, place, viewport->mapToGlobal(place), button, buttons, modifiers);
    QCoreApplication::sendEvent(viewport, &event);
  };
  send(QEvent::MouseButtonPress, from, button);
  send(QEvent::MouseMove, (from + to) / 2, button);
  send(QEvent::MouseMove, to, button);
  send(QEvent::MouseButtonRelease, to, Qt::NoButton);
}

int MaskAt(const QImage& mask, int x, int y) {
  return mask.constScanLine(y)[x];
}

} // namespace

TEST_F(EditorRun, ADraggedRectangleIsTheFilterArea) {
  open(makePicture("picture.png"));
  Canvas& canvas = window->canvas();
  canvas.setTool(Tool::Rectangle);
  canvas.setZoom(4.0);
  const auto corner = [&](int x, int y) { return canvas.toViewport(QPointF(x, y)).toPoint(); };
  struct Case {
    const char* name;
    QPoint from, to;
    QRect area;
  };
  const QRect whole(0, 0, WIDTH, HEIGHT);
  for (const Case& c : {Case{"down", {10, 20}, {30, 50}, {10, 20, 20, 30}},
                        Case{"up", {30, 50}, {10, 20}, {10, 20, 20, 30}},
                        Case{"over the edge", {70, 40}, {99, 99}, {70, 40, 20, 20}},
                        Case{"click", {5, 5}, {5, 5}, whole}}) {
    SCOPED_TRACE(c.name);
    Drag(canvas.viewport(), corner(c.from.x(), c.from.y()), corner(c.to.x(), c.to.y()));
    EXPECT_EQ(window->document().filterArea(), c.area);
  }
  action("Select All")->trigger();
  EXPECT_EQ(window->document().selection().area, whole);
  action("Deselect")->trigger();
  EXPECT_TRUE(window->document().selection().area.isEmpty());
}

TEST_F(EditorRun, TheBrushPaintsASoftMask) {
  open(makePicture("picture.png"));
  Canvas& canvas = window->canvas();
  canvas.setTool(Tool::Brush);
  canvas.setZoom(4.0);
  canvas.setBrushDiameter(20);
  Drag(canvas.viewport(), at(30, 30), at(50, 30));
  const QImage mask = window->document().selection().mask;
  ASSERT_EQ(mask.size(), QSize(WIDTH, HEIGHT));
  EXPECT_EQ(MaskAt(mask, 40, 30), 255);
  EXPECT_EQ(MaskAt(mask, 40, 10), 0);
  EXPECT_EQ(MaskAt(mask, 10, 30), 0);
  for (int y = 31; y < 42; ++y)
    EXPECT_LE(MaskAt(mask, 40, y), MaskAt(mask, 40, y - 1)) << "at row " << y;
  EXPECT_GT(MaskAt(mask, 40, 37), 0);
  EXPECT_LT(MaskAt(mask, 40, 37), 255);

  Drag(canvas.viewport(), at(40, 30), at(40, 30), Qt::LeftButton, Qt::AltModifier);
  const QImage less = window->document().selection().mask;
  EXPECT_EQ(MaskAt(less, 40, 30), 0);
  EXPECT_EQ(MaskAt(less, 51, 30), MaskAt(mask, 51, 30));
  action("Undo")->trigger();
  EXPECT_EQ(window->document().selection().mask, mask);
  action("Undo")->trigger();
  EXPECT_TRUE(window->document().selection().mask.isNull());
}

TEST_F(EditorRun, AStrokeThatTakesAwayBeginsWithEverything) {
  open(makePicture("picture.png"));
  window->canvas().setTool(Tool::Brush);
  window->canvas().setZoom(8.0);
  window->canvas().setBrushDiameter(1);
  Drag(window->canvas().viewport(), at(40, 30), at(40, 30), Qt::LeftButton, Qt::AltModifier);
  const QImage mask = window->document().selection().mask;
  EXPECT_EQ(MaskAt(mask, 40, 30), 0) << "the smallest brush still covers its pixel";
  EXPECT_EQ(MaskAt(mask, 0, 0), 255);
}

TEST_F(EditorRun, ZoomingKeepsThePointBelowThePointer) {
  open(makePicture("picture.png"));
  Canvas& canvas = window->canvas();
  EXPECT_DOUBLE_EQ(canvas.zoom(), 1.0) << "a small picture is not blown up";
  canvas.setZoom(8.0);
  const QPointF pointer(120, 90);
  const QPointF below = canvas.toImage(pointer);
  for (const double zoom : {16.0, 8.0, 32.0, 1000.0}) {
    canvas.setZoom(zoom, pointer);
    const QPointF off = (canvas.toImage(pointer) - below) * canvas.zoom();
    EXPECT_LE(off.manhattanLength(), 2.0) << "at zoom " << zoom;
  }
  EXPECT_DOUBLE_EQ(canvas.zoom(), Canvas::MAX_ZOOM);
  for (int i = 0; i < 40; ++i)
    canvas.zoomOut();
  EXPECT_DOUBLE_EQ(canvas.zoom(), Canvas::MIN_ZOOM);
  canvas.zoomToFit();
  canvas.zoomIn();
  EXPECT_DOUBLE_EQ(canvas.zoom(), 2.0);
}

TEST_F(EditorRun, TheHandAndTheMiddleButtonPan) {
  open(makePicture("picture.png"));
  Canvas& canvas = window->canvas();
  canvas.setZoom(32.0);
  for (const auto& [tool, button] :
       {std::pair{Tool::Hand, Qt::LeftButton}, std::pair{Tool::Brush, Qt::MiddleButton}}) {
    canvas.setTool(tool);
    const QPointF seen = canvas.toImage({200, 150});
    Drag(canvas.viewport(), {200, 150}, {230, 110}, button);
    EXPECT_LE((canvas.toImage({230, 110}) - seen).manhattanLength(), 0.1);
    EXPECT_TRUE(window->document().selection().mask.isNull());
  }
}

TEST_F(EditorRun, TheImageWithoutLightShowsWhileItsKeyIsHeldAndBesideTheLine) {
  open(makePicture("picture.png"));
  Canvas& canvas = window->canvas();
  const auto view = [&] { return canvas.viewport()->grab().toImage(); };
  const auto withoutLamp = [&] {
    QTest::keyPress(window.get(), Qt::Key_O);
    const QImage image = view();
    QTest::keyRelease(window.get(), Qt::Key_O);
    return image;
  };
  const QImage before = withoutLamp();
  ASSERT_TRUE(window->applyStyle("Campfire"));
  shown();
  const QImage after = view();
  ASSERT_NE(before, after);
  EXPECT_EQ(withoutLamp(), before);
  EXPECT_EQ(view(), after);

  action("Before and After")->trigger();
  Drag(canvas.viewport(), at(WIDTH / 2, 10), at(20, 40));
  const QImage split = view();
  const auto isSame = [&](const QImage& other, int x) {
    return split.pixel(at(x, 5)) == other.pixel(at(x, 5));
  };
  EXPECT_TRUE(isSame(before, 10));
  EXPECT_FALSE(isSame(after, 10));
  EXPECT_TRUE(isSame(after, 50)) << "the line was dragged to the left";
  EXPECT_TRUE(window->document().selection().area.isEmpty());
}

TEST_F(EditorRun, ThePictureIsDrawnAsItIs) {
  open(makePicture("picture.png", 4));
  const QImage view = window->canvas().viewport()->grab().toImage();
  for (const QPoint pixel : {QPoint(0, 0), QPoint(40, 31), QPoint(WIDTH - 1, HEIGHT - 1)}) {
    const size_t first = (static_cast<size_t>(pixel.y()) * WIDTH + pixel.x()) * 4;
    const QColor expected(pixels()[first], pixels()[first + 1], pixels()[first + 2]);
    const QPoint place = window->canvas().toViewport(QPointF(pixel)).toPoint();
    EXPECT_EQ(view.pixelColor(place).name().toStdString(), expected.name().toStdString());
  }
}

TEST(ImageLevels, AHalfHasTheMeansOfFour) {
  for (const auto& [width, height, bands] : {std::tuple{65, 65, 3}, std::tuple{66, 1, 4},
                                             std::tuple{1, 131, 5}, std::tuple{70, 67, 1}}) {
    limn::Photograph photograph;
    photograph.width = width;
    photograph.height = height;
    photograph.numPlanes = bands;
    std::vector<uint8_t>& pixels = photograph.pixels;
    editor::ImageHalves halves;
    // By and by, and the last rows when the levels are made.
    for (int i = 0; i < width * height * bands; ++i) {
      if (i % (5 * width * bands) == 0 || i % (7 * width * bands) == 0)
        halves.grow(photograph);
      pixels.push_back(static_cast<uint8_t>(i * i / 7));
    }
    const editor::ImageLevels levels(photograph, halves);
    const QSize half((width + 1) / 2, (height + 1) / 2);
    const auto at = [&](int i, int x, int y) {
      const int row = std::min(y, height - 1);
      return pixels[static_cast<size_t>((row * width + std::min(x, width - 1)) * bands + i)];
    };
    std::vector<uint8_t> means;
    for (int y = 0; y < height; y += 2)
      for (int x = 0; x < width; x += 2)
        for (int i = 0; i < bands; ++i)
          means.push_back(static_cast<uint8_t>(
              (at(i, x, y) + at(i, x + 1, y) + at(i, x, y + 1) + at(i, x + 1, y + 1) + 2) / 4));
    EXPECT_EQ(limn::DecodedPixels(levels.at(half)), means)
        << width << " x " << height << " of " << bands << " bands";
  }
}

// Zoomed in, a frame has some of the pixels; zoomed out, those of a thumbnail of that size.
TEST_F(EditorRun, EveryZoomShowsTheSameLight) {
  open(makePicture("picture.png", 4));
  window->document().select({QRect(20, 10, 50, 40), plane([](int x, int y) { return x + y; })});
  ASSERT_TRUE(window->applyStyle("Carved in Stone"));
  editor::Recipe recipe = window->document().recipe();
  recipe.relief.kind = LM_height_kind::Auto;
  window->document().keep(recipe, "Relief");
  Canvas& canvas = window->canvas();
  const QImage whole = shown();
  ASSERT_EQ(whole.size(), QSize(WIDTH, HEIGHT));
  for (const int gloss : {10, 90}) {
    recipe.lights->gloss = static_cast<int16_t>(gloss);
    window->document().keep(recipe, "Gloss");
    const std::vector<uint8_t> bytes = lit();
    EXPECT_EQ(shown(), QImage(bytes.data(), WIDTH, HEIGHT, WIDTH * 4, QImage::Format_RGBX8888)
                           .convertToFormat(QImage::Format_RGB32));
  }
  const QImage surface = shown();
  canvas.setZoom(16.0, {300, 200});
  const QImage part = shown();
  EXPECT_LT(part.width(), WIDTH);
  EXPECT_EQ(part, surface.copy(canvas.frame().view.part));
  canvas.setZoom(0.5);
  const QImage half = shown();
  ASSERT_EQ(half.size(), QSize(WIDTH / 2, HEIGHT / 2));
  limn::ReducedPhotograph small = window->document().original().reduced(
      window->document().bounds(), window->document().selection().mask, recipe.relief, WIDTH / 2);
  window->document().select({{}, window->document().selection().mask});
  const std::vector<uint8_t> lit = limn::LitThumbnail(small, *recipe.lights);
  EXPECT_EQ(shown(), editor::ThumbnailImage(small, lit).convertToFormat(QImage::Format_RGB32));
}

// What is tried out is lit by sums that are kept, and what is kept by all lights anew.
TEST_F(EditorRun, TriedLightsLookAsTheyDoWhenTheyAreKept) {
  open(makePicture("picture.png", 4));
  editor::EditorDocument& document = window->document();
  document.select({QRect(20, 10, 50, 40), plane([](int x, int y) { return x + y; })});
  for (const int channel : {0, 1, 4}) {
    for (const double zoom : {1.0, 16.0}) {
      window->canvas().setZoom(zoom, {400, 300});
      ASSERT_TRUE(window->applyStyle("Festival Lights"));
      LM_style style = *document.lights();
      style.bumpChannel = static_cast<int16_t>(channel);
      style.lights[2].type = LM_STYLE_OMNI;
      document.keepLights(style, "Relief");
      std::vector<LM_style> styles;
      std::vector<QImage> tried;
      for (int step = 0; step < 8; ++step) {
        LM_style_light& light = style.lights[step < 4 ? 2 : 3]; // the hand goes on to another
        light.center.x += 9;
        light.intensity = static_cast<int16_t>(light.intensity - 1);
        if (step % 2 == 1)
          style.gloss = static_cast<int16_t>(20 * step);
        document.tryLights(style);
        styles.push_back(style);
        tried.push_back(shown());
      }
      for (size_t i = 0; i < styles.size(); ++i) {
        document.keepLights(styles[i], "Lights");
        EXPECT_EQ(shown(), tried[i]) << channel << " at " << zoom << ", step " << i;
      }
      EXPECT_NE(tried[1], tried[2]);
    }
  }
}

TEST_F(EditorRun, ColoursAreShownAsTheProfileMeansThem) {
  vips::VImage image = vips::VImage::new_from_file(makePicture("plain.png").toLocal8Bit());
  const QByteArray profile = QColorSpace(QColorSpace::ProPhotoRgb).iccProfile();
  vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, profile.constData(),
                           static_cast<size_t>(profile.size()));
  image.write_to_file(pathTo("wide.png").toLocal8Bit().constData());
  open(pathTo("wide.png"));
  const editor::Frame& frame = window->canvas().frame();
  const QImage plain = frame.plain;
  EXPECT_EQ(plain.pixel(0, 0), qRgb(60, 77, 94)) << "the bytes are the file's";
  const auto toScreen =
      QColorSpace(QColorSpace::ProPhotoRgb).transformationToColorSpace(QColorSpace::SRgb);
  EXPECT_EQ(frame.shownPlain.pixelColor(40, 31).rgb(), toScreen.map(plain.pixel(40, 31)));
  EXPECT_NE(frame.shownPlain, plain);
  ASSERT_TRUE(window->applyStyle(
      R"({"lights":[{"intensity":127,"color":[40000,20000,60000]}],"exposure":255})"));
  const QImage lit = shown();
  EXPECT_EQ(window->lights().shownColor(0).rgb(),
            toScreen.map(QColor::fromRgba64(40000, 20000, 60000)).rgb());
  action("Clipped Pixels")->trigger();
  EXPECT_EQ(shown(), lit);
  int burnt = 0;
  for (int y = 0; y < HEIGHT; ++y)
    for (int x = 0; x < WIDTH; ++x) {
      const QColor colour = lit.pixelColor(x, y);
      const bool isBurnt = std::max({colour.red(), colour.green(), colour.blue()}) == 255;
      burnt += isBurnt ? 1 : 0;
      EXPECT_EQ(frame.shownLit.pixel(x, y) == qRgb(255, 0, 60), isBurnt);
    }
  EXPECT_GT(burnt, 0);
  EXPECT_LT(burnt, WIDTH * HEIGHT);
}
