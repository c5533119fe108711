// The copied command does in a terminal what the editor has done.
#include "EditorRun.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>

TEST_F(EditorRun, ACopiedCommandWritesWhatTheEditorWrites) {
  const QString shell = QString("limn() { '%1' \"$@\"; }; ").arg(LIMN);
  const auto slope = [](int x, int) { return x * 255 / WIDTH; };
  const QString heights = makePlane("heights.png", slope);
  const struct {
    const char *name, *output;
    editor::Selection selection;
    VipsBandFormat depth = VIPS_FORMAT_UCHAR;
  } cases[] = {
      {"it's a picture.png", "it's a picture-lit.png", {}},
      {"area.jpg", "area-lit.jpg", {QRect(20, 10, 60, 30), {}}},
      {"mask.tif", "mask-lit.tif", {QRect(3, 2, 80, 50), plane(slope)}},
      {"deep.png", "deep-lit.png", {QRect(3, 2, 80, 50), plane(slope)}, VIPS_FORMAT_USHORT},
      {"float.tif", "float-lit.tif", {}, VIPS_FORMAT_FLOAT}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    open(makePicture(c.name, 3, c.depth));
    EXPECT_FALSE(action("Copy Command")->isEnabled()) << "nothing has been done";
    ASSERT_TRUE(window->loadChannel(heights));
    window->document().select(c.selection);
    ASSERT_TRUE(lightWithDialog());
    ASSERT_TRUE(window->saveTo(pathTo("saved-" + QString(c.output))));
    ASSERT_TRUE(window->copyCommand(pathTo("the mask.png")));
    const QString command = QGuiApplication::clipboard()->text();
    EXPECT_EQ(command.contains("the mask"), !c.selection.mask.isNull());
    EXPECT_EQ(command.contains("--depth"), c.depth == VIPS_FORMAT_UCHAR);
    EXPECT_EQ(QProcess::execute("sh", {"-c", shell + command}), 0) << command.toStdString();
    EXPECT_EQ(contentOf(pathTo(c.output)), contentOf(pathTo("saved-" + QString(c.output))));
    ASSERT_TRUE(window->applyStyle(QString("Forest Dapples")));
    ASSERT_TRUE(window->copyCommand(pathTo("the mask.png")));
    EXPECT_NE(QGuiApplication::clipboard()->text(), command);
    window->document().noteSaved({}); // so that nobody is asked about it
  }
  // A terminal would take the first character for Ctrl-C, and the rest for a command.
  open(makePicture("\x03 touch gone\n.png"));
  ASSERT_TRUE(lightWithDialog());
  answerNext(QMessageBox::Ok);
  EXPECT_FALSE(window->copyCommand(""));
  EXPECT_EQ(questions, 1);
  window->document().noteSaved({});
}
