// The real plug-in in the editor: its dialog, its repetition, and how a run is cut short.
#include "EditorRun.h"

#include "lighting.h"
#include "style_source.h"

#include <QApplication>
#include <QProgressDialog>
#include <QTest>
#include <QThread>
#include <QTimer>

namespace {

// A filter that inverts row after row and takes longer than anyone likes to wait.
int SlowFilter(int selector, void* data, intptr_t*, int16_t* result) {
  constexpr unsigned long ROW_MILLISECONDS = 25;
  *result = CV_RESULT_OK;
  auto* record = static_cast<FilterRecord*>(data);
  CVRect& row = record->outTileRect;
  const CVRect area = record->filterArea;
  if (selector == LM_SEL_START) {
    row = {area.top, area.left, static_cast<int16_t>(area.top + 1), area.right};
  } else if (selector == LM_SEL_CONTINUE) {
    QThread::msleep(ROW_MILLISECONDS);
    for (int i = 0; i < (area.right - area.left) * 3; ++i)
      record->outPixels[i] = static_cast<uint8_t>(~record->outPixels[i]);
    ++row.top;
    ++row.bottom;
    if (row.top == area.bottom)
      row = {0, 0, 0, 0};
  }
  return 0;
}

} // namespace

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

TEST_F(EditorRun, AStyleDoesWhatTheCommandDoes) {
  open(makePicture("picture.png"));
  const std::vector<uint8_t> before = pixels();
  CVPlugin plugin;
  ASSERT_TRUE(editor::LoadFilter(plugin).ok());
  limn::Photograph lit = editor::OpenImageFile(pathTo("picture.png")).photograph;
  limn::Surroundings surroundings;
  limn::LightPhotograph(plugin, limn::FindStyle("Campfire").style, surroundings, lit, "", {});

  ASSERT_TRUE(window->applyStyle("Campfire"));
  EXPECT_EQ(pixels(), lit.pixels);
  action("Undo")->trigger();
  EXPECT_EQ(pixels(), before);
  action("Repeat")->trigger();
  EXPECT_EQ(pixels(), lit.pixels);

  answerNext(QMessageBox::Ok);
  EXPECT_FALSE(window->applyStyle("no such style"));
  EXPECT_EQ(questions, 1);
  EXPECT_EQ(pixels(), lit.pixels);
}

TEST_F(EditorRun, TheFilterKeepsToAreaAndMask) {
  open(makePicture("picture.png"));
  const std::vector<uint8_t> before = pixels();
  ASSERT_TRUE(lightWithDialog());
  action("Undo")->trigger();
  const QRect area(20, 10, 60, 30);
  window->document().select({area, plane([](int x, int) { return x < WIDTH / 2 ? 255 : 0; })});
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

TEST_F(EditorRun, ALongRunShowsItsProgressAndCanBeCancelled) {
  window = std::make_unique<editor::MainWindow>(CVPlugin(SlowFilter, "slow"));
  window->show();
  open(makePicture("picture.png"));
  const std::vector<uint8_t> before = pixels();
  int progress = 0;
  bool mayFinish = false;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    auto* shown = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
    if (shown == nullptr)
      return;
    EXPECT_GE(shown->value(), progress);
    progress = shown->value();
    EXPECT_FALSE(window->close()) << "in the middle of a run";
    if (progress > 0 && !mayFinish)
      QTest::keyClick(shown, Qt::Key_Escape);
  });
  poll.start(20);
  EXPECT_FALSE(window->runFilter(CVDialog::No));
  EXPECT_GT(progress, 0);
  EXPECT_LT(progress, 1000);
  EXPECT_EQ(pixels(), before);
  EXPECT_FALSE(window->document().canUndo());

  mayFinish = true;
  progress = 0;
  EXPECT_TRUE(window->runFilter(CVDialog::No));
  EXPECT_GT(progress, 0);
  EXPECT_NE(pixels(), before);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}
