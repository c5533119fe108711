// The panel of styles: what its pictures show, when they are made, and what choosing one does.
#include "EditorRun.h"

#include <QListWidget>
#include <QTest>

namespace {

// The picture of a row, as the panel shows it.
QImage Shown(editor::MainWindow& window, int row) {
  const QIcon icon = window.styles().list().item(row)->icon();
  return icon.isNull() ? QImage() : icon.pixmap(icon.availableSizes().first()).toImage();
}

bool ShowsDocument(editor::MainWindow& window, const QImage& picture) {
  return picture.convertToFormat(QImage::Format_RGB32) ==
         window.document().colours(window.document().bounds());
}

int RowOf(editor::MainWindow& window, const QString& name) {
  return window.styles().list().row(
      window.styles().list().findItems(name, Qt::MatchExactly).value(0));
}

class StylePanelRun : public EditorRun {
protected:
  void showPanel() { action("Styles")->trigger(); }
  bool awaitPictures() {
    return QTest::qWaitFor([this] { return window->styles().isUpToDate(); }, 20000);
  }
};

} // namespace

// The picture is smaller than the panel's, so that both have the same pixels.
TEST_F(StylePanelRun, AChosenStyleGivesWhatItsPictureShows) {
  open(makePicture("picture.png"));
  const std::vector<uint8_t> before = pixels();
  showPanel();
  ASSERT_TRUE(awaitPictures());
  editor::StyleList& list = window->styles().list();
  EXPECT_GE(list.count(), 24);
  EXPECT_TRUE(list.hasFocus());
  for (const char* name : {"Campfire", "Letterpress", "Dark Corners"}) {
    SCOPED_TRACE(name);
    const int row = RowOf(*window, name);
    ASSERT_GE(row, 0);
    const QImage shown = Shown(*window, row);
    list.setCurrentRow(row);
    if (row % 2 == 0)
      QTest::keyClick(&list, Qt::Key_Return);
    else
      QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                        list.visualItemRect(list.item(row)).center());
    EXPECT_NE(pixels(), before);
    EXPECT_TRUE(ShowsDocument(*window, shown));
    action("Undo")->trigger();
    EXPECT_EQ(pixels(), before);
    EXPECT_FALSE(window->document().canUndo()) << "more than one step";
    ASSERT_TRUE(awaitPictures());
    EXPECT_EQ(list.currentRow(), row);
  }
  // One tried after another replaces it.
  const QImage shown = Shown(*window, 3);
  for (const int row : {5, 4, 3}) {
    list.setCurrentRow(row);
    QTest::keyClick(&list, Qt::Key_Return);
    QTest::qWait(200);
    EXPECT_TRUE(window->styles().isUpToDate());
  }
  EXPECT_EQ(Shown(*window, 3), shown) << "still of the image without a style";
  EXPECT_TRUE(ShowsDocument(*window, shown));
  action("Undo")->trigger();
  EXPECT_EQ(pixels(), before);
  EXPECT_FALSE(window->document().canUndo());
  action("Redo")->trigger();
  window->document().select({QRect(1, 1, 50, 50), {}});
  list.setCurrentRow(5);
  QTest::keyClick(&list, Qt::Key_Return);
  action("Undo")->trigger();
  EXPECT_TRUE(ShowsDocument(*window, shown)) << "what is selected anew is lit anew";
  QTest::keyClick(&list, Qt::Key_M);
  EXPECT_EQ(window->canvas().tool(), editor::Tool::Rectangle) << "letters are the window's";
}

TEST_F(StylePanelRun, PicturesFollowAPaintedMask) {
  open(makePicture("picture.png"));
  const std::vector<uint8_t> before = pixels();
  const QRect bounds = window->document().bounds();
  QImage mask(bounds.size(), QImage::Format_Grayscale8);
  for (int y = 0; y < mask.height(); ++y)
    for (int x = 0; x < mask.width(); ++x)
      mask.scanLine(y)[x] = static_cast<uchar>(x < 3 ? 0 : x * 255 / mask.width());
  window->document().select({bounds, mask});
  showPanel();
  ASSERT_TRUE(awaitPictures());
  const int row = RowOf(*window, "Campfire");
  const QImage shown = Shown(*window, row);
  window->styles().list().setCurrentRow(row);
  QTest::keyClick(&window->styles().list(), Qt::Key_Return);
  EXPECT_NE(pixels(), before);
  EXPECT_TRUE(ShowsDocument(*window, shown));
}

TEST_F(StylePanelRun, PicturesAreOfThePresentImage) {
  const QString flat = makePicture("flat.png");
  open(flat);
  QTest::qWait(300);
  EXPECT_EQ(window->styles().list().count(), 0) << "made for nobody to see";
  showPanel();
  // Each change comes while the pictures of the one before are made.
  ASSERT_TRUE(QTest::qWaitFor([this] { return window->styles().list().count() > 0; }, 20000));
  window->document().select({QRect(10, 10, 40, 40), {}});
  QTest::qWait(130);
  window->document().select({});
  QTest::qWait(130);
  ASSERT_TRUE(window->loadChannel(
      makePlane("heights.png", [](int x, int y) { return (x * x + 3 * y * y) % 251; })));
  EXPECT_FALSE(window->styles().isUpToDate());
  ASSERT_TRUE(awaitPictures());
  const int row = RowOf(*window, "Evening Lamp"); // its relief is in the fourth channel
  const QImage shown = Shown(*window, row);
  window->styles().list().setCurrentRow(row);
  QTest::keyClick(&window->styles().list(), Qt::Key_Enter);
  EXPECT_TRUE(ShowsDocument(*window, shown));
  window.reset(); // in the middle of the next pictures
}
