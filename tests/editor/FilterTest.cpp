// Plug-ins in the editor: the dialog of the real one, repetition, and how a run is cut short.
#include "EditorRun.h"

#include "image_file.h"

#include <QAccessible>
#include <QApplication>
#include <QDeadlineTimer>
#include <QProgressDialog>
#include <QStatusBar>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <algorithm>

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

// They are in no parameters that the dialog gives.
TEST_F(EditorRun, LightsThatAreOffStayThroughTheDialog) {
  open(makePicture("picture.png"));
  ASSERT_TRUE(window->applyStyle(
      R"({"lights": [{"on": false}, {"center": [-20, 3]}, {"on": false, "type": "omni"}]})"));
  int ticks = 0;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    QAccessibleInterface* items =
        dialog != nullptr ? QAccessible::queryAccessibleInterface(dialog) : nullptr;
    for (int i = 0; items != nullptr && i < items->childCount(); ++i)
      if (items->child(i)->text(QAccessible::Name) == "Gloss")
        items->child(i)->valueInterface()->setCurrentValue(40);
    if (items != nullptr && ++ticks > 5)
      QTest::keyClick(dialog, Qt::Key_Return);
  });
  poll.start(50);
  ASSERT_TRUE(window->runFilter(CVDialog::Yes));
  const LM_style* style = window->document().lights();
  ASSERT_NE(style, nullptr);
  EXPECT_EQ(style->gloss, 179);
  ASSERT_EQ(style->lightsRead, 3);
  EXPECT_EQ(style->lights[0].on, 0);
  EXPECT_EQ(style->lights[1].on, 1);
  EXPECT_EQ(style->lights[2].type, LM_STYLE_OMNI);
  window->document().noteSaved({});
}

TEST_F(EditorRun, TheDialogLightsTheOriginalAndRepeatTheBakedPicture) {
  open(makePicture("picture.png"));
  EXPECT_FALSE(action("Repeat")->isEnabled());
  const std::vector<uint8_t> before = pixels();
  ASSERT_TRUE(lightWithDialog());
  const std::vector<uint8_t> first = lit();
  ASSERT_NE(first, before);
  EXPECT_EQ(pixels(), before) << "light changes no pixels";
  EXPECT_EQ(action("Undo")->text().remove('&'), "Undo Lighting");

  for (const char* name : {"Campfire", "Stage Spotlight", "Evening Lamp"}) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(window->applyStyle(name));
    const std::vector<uint8_t> styled = lit();
    ASSERT_TRUE(lightWithDialog());
    EXPECT_EQ(lit(), styled) << "OK without a change";
    EXPECT_TRUE(action("Undo")->text().contains(name)) << "and without a step";
    action("Undo")->trigger();
    EXPECT_EQ(lit(), first);
  }
  action("Undo")->trigger();
  EXPECT_EQ(lit(), before);
  ASSERT_TRUE(action("Repeat")->isEnabled());
  EXPECT_EQ(action("Repeat")->shortcut(), QKeySequence("Ctrl+F"));
  ASSERT_TRUE(window->applyStyle("Campfire"));
  const std::vector<uint8_t> campfire = lit();
  action("Repeat")->trigger();
  EXPECT_EQ(pixels(), campfire) << "the first light is baked";
  EXPECT_NE(lit(), campfire);
  EXPECT_TRUE(window->statusBar()->currentMessage().contains("pixels"));
  action("Undo")->trigger();
  EXPECT_EQ(lit(), campfire) << "in one step";
  action("Bake")->trigger();
  EXPECT_EQ(pixels(), campfire);
  EXPECT_EQ(lit(), campfire);

  answerNext(QMessageBox::Ok);
  EXPECT_FALSE(window->applyStyle("no such style"));
  EXPECT_EQ(questions, 1);
}

TEST_F(EditorRun, APictureKeepsItsDepth) {
  const struct {
    VipsBandFormat depth;
    QString name, told;
  } cases[] = {{VIPS_FORMAT_USHORT, "deep.png", " channels, 16 bits a channel"},
               {VIPS_FORMAT_FLOAT, "deep.tif", " channels, float"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name.toStdString());
    open(makePicture(c.name, 3, c.depth));
    EXPECT_TRUE(std::ranges::any_of(window->statusBar()->findChildren<QLabel*>(),
                                    [&](auto* label) { return label->text().endsWith(c.told); }));
    ASSERT_TRUE(lightWithDialog());
    const std::vector<uint8_t> deep = lit();
    action("Bake")->trigger();
    EXPECT_EQ(window->document().photograph().deep, deep);
    const auto planes = limn::InBytes(window->document().litPlanes());
    EXPECT_EQ(limn::DecodedPixels(planes), pixels());
    ASSERT_TRUE(window->saveTo(pathTo(c.name)));
    ASSERT_TRUE(window->saveTo(pathTo("shallow.jpg")));
    EXPECT_TRUE(window->statusBar()->currentMessage().contains("become 8"));
    open(pathTo(c.name));
    EXPECT_EQ(lit(), deep);
    EXPECT_TRUE(window->document().mayBeReplaced());
  }
  const std::vector<uint8_t> before = lit();
  auto other = std::make_unique<editor::MainWindow>(CVPlugin(SlowFilter, "slow"));
  window.swap(other);
  window->show();
  open(pathTo("deep.tif"));
  answerNext(QMessageBox::Ok);
  EXPECT_FALSE(window->runFilter(CVDialog::No));
  EXPECT_EQ(questions, 1) << "a filter of 8 bits is refused";
  EXPECT_EQ(lit(), before);
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
