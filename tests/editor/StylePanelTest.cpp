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
  // The canvas shows what a panel's picture shows.
  bool isOnCanvas(const QImage& picture) {
    return shown() == picture.convertToFormat(QImage::Format_RGB32);
  }
  void hover(int row) {
    editor::StyleList& list = window->styles().list();
    list.scrollToItem(list.item(row));
    const QPoint place = list.visualItemRect(list.item(row)).center();
    QMouseEvent event(QEvent::MouseMove, place, list.viewport()->mapToGlobal(place), Qt::NoButton,
                      Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(list.viewport(), &event);
  }
};

} // namespace

// The picture is smaller than the panel's, so that both have the same pixels.
TEST_F(StylePanelRun, AStyleIsSeenBeforeItIsChosen) {
  open(makePicture("picture.png"));
  const QImage before = shown();
  showPanel();
  ASSERT_TRUE(awaitPictures());
  editor::StyleList& list = window->styles().list();
  EXPECT_GE(list.count(), 24);
  EXPECT_TRUE(list.hasFocus());
  const int campfire = RowOf(*window, "Campfire");
  const int letterpress = RowOf(*window, "Letterpress");
  hover(campfire);
  EXPECT_TRUE(isOnCanvas(Shown(*window, campfire)));
  hover(letterpress);
  EXPECT_TRUE(isOnCanvas(Shown(*window, letterpress)));
  QEvent leave(QEvent::Leave);
  QCoreApplication::sendEvent(list.viewport(), &leave);
  EXPECT_EQ(shown(), before);
  EXPECT_FALSE(window->document().canUndo());

  QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                    list.visualItemRect(list.item(letterpress)).center());
  QCoreApplication::sendEvent(list.viewport(), &leave);
  EXPECT_TRUE(isOnCanvas(Shown(*window, letterpress)));
  EXPECT_TRUE(window->styles().isUpToDate()) << "the pictures are of the original";
  list.setCurrentRow(campfire);
  QTest::keyClick(&list, Qt::Key_Return);
  EXPECT_TRUE(isOnCanvas(Shown(*window, campfire))) << "in the place of the one before";
  action("Undo")->trigger();
  EXPECT_TRUE(isOnCanvas(Shown(*window, letterpress)));
  action("Undo")->trigger();
  EXPECT_EQ(shown(), before);
  EXPECT_FALSE(window->document().canUndo()) << "more than one step";
  QTest::keyClick(&list, Qt::Key_M);
  EXPECT_EQ(window->canvas().tool(), editor::Tool::Rectangle) << "letters are the window's";
  window->styles().search().setText("camp");
  EXPECT_FALSE(list.isRowHidden(campfire));
  EXPECT_TRUE(list.isRowHidden(letterpress));
}

TEST_F(StylePanelRun, PicturesAreOfThePresentOriginal) {
  open(makePicture("flat.png"));
  QTest::qWait(300);
  EXPECT_EQ(window->styles().list().count(), 0) << "made for nobody to see";
  showPanel();
  editor::EditorDocument& document = window->document();
  const QRect bounds = document.bounds();
  const struct {
    const char *name, *style;
    std::function<void()> change;
  } cases[] = {{"mask", "Campfire",
                [&] {
                  document.select({bounds, plane([](int x, int) { return x < 3 ? 0 : x * 2; })});
                }},
               {"channel", "Evening Lamp", // its relief is in the fourth one
                [&] {
                  document.select({});
                  ASSERT_TRUE(window->loadChannel(makePlane(
                      "heights.png", [](int x, int y) { return (x * x + 3 * y * y) % 251; })));
                }},
               {"source", "Carved in Stone",
                [&] {
                  editor::Recipe recipe = document.recipe();
                  recipe.relief.kind = LM_height_kind::Auto;
                  document.keep(recipe, "Source");
                }},
               {"pixels", "Campfire", [&] { EXPECT_TRUE(window->bake()); }}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    // Each change comes while the pictures of the one before are made.
    ASSERT_TRUE(QTest::qWaitFor([this] { return window->styles().list().count() > 0; }, 20000));
    c.change();
    EXPECT_FALSE(window->styles().isUpToDate());
    ASSERT_TRUE(awaitPictures());
    const int row = RowOf(*window, c.style);
    window->styles().list().setCurrentRow(row);
    QTest::keyClick(&window->styles().list(), Qt::Key_Enter);
    EXPECT_TRUE(isOnCanvas(Shown(*window, row)));
  }
  window->document().select({QRect(10, 10, 40, 40), {}});
  QTest::qWait(130);
  window.reset(); // in the middle of the next pictures
}
