// The real plug-in in the editor: its dialog, its repetition, and how a run is cut short.
#include "EditorRun.h"

#include "FilterProgress.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

TEST_F(EditorRun, RepeatDoesWhatTheDialogDid) {
  const QString picture = makePicture("picture.png");
  open(picture);
  EXPECT_FALSE(action("Repeat")->isEnabled());
  const std::vector<uint8_t> before = pixels();
  ASSERT_TRUE(lightWithDialog());
  const std::vector<uint8_t> first = pixels();
  ASSERT_NE(first, before);
  action("Undo")->trigger();
  EXPECT_EQ(pixels(), before);
  ASSERT_TRUE(action("Repeat")->isEnabled());
  EXPECT_EQ(action("Repeat")->shortcut(), QKeySequence("Ctrl+F"));
  action("Repeat")->trigger();
  EXPECT_EQ(pixels(), first);
}

TEST_F(EditorRun, TheFilterKeepsToAreaAndMask) {
  open(makePicture("picture.png"));
  const std::vector<uint8_t> before = pixels();
  ASSERT_TRUE(lightWithDialog());
  action("Undo")->trigger();
  QImage mask(WIDTH, HEIGHT, QImage::Format_Grayscale8);
  mask.fill(0);
  for (int y = 0; y < HEIGHT; ++y)
    std::fill_n(mask.scanLine(y), WIDTH / 2, 255);
  const QRect area(20, 10, 60, 30);
  window->document().select({area, mask});
  ASSERT_TRUE(window->runFilter(CVDialog::No));
  int changed = 0, outside = 0;
  for (int y = 0; y < HEIGHT; ++y)
    for (int x = 0; x < WIDTH; ++x)
      for (size_t plane = 0; plane < 3; ++plane) {
        const size_t at = (static_cast<size_t>(y) * WIDTH + x) * 3 + plane;
        const bool differs = pixels()[at] != before[at];
        changed += differs ? 1 : 0;
        outside += differs && !(area.contains(x, y) && x < WIDTH / 2) ? 1 : 0;
      }
  EXPECT_GT(changed, 0);
  EXPECT_EQ(outside, 0);
}

TEST_F(EditorRun, CancellingTheDialogLeavesEverything) {
  open(makePicture("picture.png"));
  const std::vector<uint8_t> before = pixels();
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [] {
    if (QWidget* dialog = QApplication::activeModalWidget())
      QTest::keyClick(dialog, Qt::Key_Escape);
  });
  poll.start(50);
  EXPECT_FALSE(window->runFilter(CVDialog::Yes));
  EXPECT_EQ(pixels(), before);
  EXPECT_FALSE(window->document().canUndo());
  EXPECT_FALSE(window->document().isModified());
}

TEST_F(EditorRun, ALongRunShowsItsProgressAndCanBeCancelled) {
  editor::FilterProgress progress("Lighting", window.get());
  progress.show(0.0);
  EXPECT_FALSE(progress.isCancelled());
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << "a short run shows nothing";
  QElapsedTimer time;
  time.start();
  QProgressDialog* shown = nullptr;
  bool cancelled = false;
  while (time.elapsed() < 5000 && !cancelled) {
    QTest::qSleep(20);
    progress.show(0.5);
    cancelled = progress.isCancelled();
    if (shown == nullptr &&
        (shown = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget())) != nullptr) {
      EXPECT_FALSE(cancelled);
      QTimer::singleShot(0, shown, [shown] { QTest::keyClick(shown, Qt::Key_Escape); });
    }
  }
  ASSERT_NE(shown, nullptr);
  EXPECT_TRUE(cancelled);
}
