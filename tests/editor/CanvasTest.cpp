// The view: zoom and pan, the rectangle, the brush, before and after; with a real mouse's events.
#include "EditorRun.h"

#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

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

TEST_F(EditorRun, TheImageAsOpenedShowsWhileItsKeyIsHeld) {
  open(makePicture("picture.png"));
  const auto view = [&] { return window->canvas().viewport()->grab().toImage(); };
  const QImage before = view();
  ASSERT_TRUE(lightWithDialog());
  const QImage after = view();
  ASSERT_NE(before, after);
  QTest::keyPress(window.get(), Qt::Key_O);
  EXPECT_EQ(view(), before);
  QTest::keyRelease(window.get(), Qt::Key_O);
  EXPECT_EQ(view(), after);
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
