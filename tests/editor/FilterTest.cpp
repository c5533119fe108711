// The real plug-in in the editor: its dialog, its repetition, and how a run is cut short.
#include "EditorRun.h"

#include "deep_photograph.h"
#include "lighting.h"
#include "style_source.h"

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
    editor::EditorDocument& document = window->document();
    const auto formIsTrue = [&] {
      const auto planes = limn::InBytes(limn::PlanesOf(document.photograph()));
      return limn::DecodedPixels(planes) == pixels();
    };
    std::vector<std::vector<uint8_t>> states = {deep()};
    const std::function<void()> changes[] = {
        [&] { EXPECT_TRUE(lightWithDialog()); }, [&] { action("Repeat")->trigger(); },
        [&] { EXPECT_TRUE(window->applyStyle("Campfire")); },
        [&] {
          document.select({QRect(20, 10, 31, 22), plane([](int x, int y) { return 2 * x + y; })});
          action("Repeat")->trigger();
        }};
    for (const auto& change : changes) {
      change();
      states.push_back(deep());
      EXPECT_NE(states.back(), states[states.size() - 2]);
      EXPECT_TRUE(formIsTrue());
    }
    for (size_t i = states.size() - 1; i-- > 0;) {
      action("Undo")->trigger();
      if (i == 3) // the selection is a step of its own
        action("Undo")->trigger();
      EXPECT_EQ(deep(), states[i]) << "back to " << i;
      EXPECT_TRUE(formIsTrue());
    }
    EXPECT_FALSE(document.canUndo());
    while (document.canRedo())
      document.redo();
    EXPECT_EQ(deep(), states.back());
    ASSERT_TRUE(window->saveTo(pathTo(c.name)));
    ASSERT_TRUE(window->saveTo(pathTo("shallow.jpg")));
    EXPECT_TRUE(window->statusBar()->currentMessage().contains("become 8"));
    open(pathTo(c.name));
    EXPECT_EQ(deep(), states.back());
    EXPECT_TRUE(formIsTrue());
    EXPECT_TRUE(document.image().mayBeReplaced);
  }
  const auto before = deep();
  const auto form = pixels();
  auto other = std::make_unique<editor::MainWindow>(CVPlugin(SlowFilter, "slow"));
  window.swap(other);
  window->show();
  open(pathTo("deep.tif"));
  answerNext(QMessageBox::Ok);
  EXPECT_FALSE(window->runFilter(CVDialog::No));
  EXPECT_EQ(questions, 1) << "a filter of 8 bits is refused";
  EXPECT_EQ(deep(), before);
  EXPECT_EQ(pixels(), form);
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
