// The real plug-in in the editor: its dialog, its repetition, and how a run is cut short.
#include "EditorRun.h"

#include "lighting.h"
#include "style_source.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QProgressDialog>
#include <QTest>
#include <QThread>
#include <QTimer>

namespace {

bool isSeen = false; // the progress of the run

// A filter that inverts row after row, and half way waits until its progress is seen.
int SlowFilter(int selector, void* data, intptr_t*, int16_t* result) {
  *result = CV_RESULT_OK;
  auto* record = static_cast<FilterRecord*>(data);
  CVRect& row = record->outTileRect;
  const CVRect area = record->filterArea;
  if (selector == LM_SEL_START) {
    row = {area.top, area.left, static_cast<int16_t>(area.top + 1), area.right};
  } else if (selector == LM_SEL_CONTINUE) {
    const QDeadlineTimer longest(20000);
    while (!isSeen && row.top == area.bottom / 2 && !longest.hasExpired()) {
      record->testCancel(); // in which the host lets its events run
      QThread::msleep(5);
    }
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
    isSeen = progress > 0;
    if (isSeen && !mayFinish)
      QTest::keyClick(shown, Qt::Key_Escape);
  });
  poll.start(20);
  EXPECT_FALSE(window->runFilter(CVDialog::No));
  EXPECT_GT(progress, 0);
  EXPECT_LT(progress, 1000);
  EXPECT_EQ(pixels(), before);
  EXPECT_FALSE(window->document().canUndo());

  mayFinish = true;
  isSeen = false;
  progress = 0;
  EXPECT_TRUE(window->runFilter(CVDialog::No));
  EXPECT_GT(progress, 0);
  EXPECT_NE(pixels(), before);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}
