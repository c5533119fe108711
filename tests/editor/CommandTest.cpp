// The canvas shows what Save writes, and that is what the copied command writes in a terminal.
#include "EditorRun.h"

#include "image_file.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>

namespace {

// The colours of a file, in 8 bits.
QImage ColoursOf(const QString& path) {
  const limn::Photograph read = editor::OpenImageFile(path).photograph;
  return QImage(read.pixels.data(), read.width, read.height, read.width * 3, QImage::Format_RGB888)
      .convertToFormat(QImage::Format_RGB32);
}

// All that it has of each pixel. Beside that, a saved file has its recipe.
std::vector<uint8_t> SamplesOf(const QString& path) {
  const limn::Photograph read = editor::OpenImageFile(path).photograph;
  return read.deep.empty() ? read.pixels : read.deep;
}

} // namespace

TEST_F(EditorRun, CanvasSaveAndCommandGiveTheSame) {
  const QString shell = QString("limn() { '%1' \"$@\"; }; ").arg(LIMN);
  const auto slope = [](int x, int y) { return (x * x + 3 * y * y) % 251; };
  const QString heights = makePlane("heights.png", slope);
  const QRect part(3, 2, 80, 50);
  // Larger than the planes that heights are made ready on.
  limn::Photograph large = editor::OpenImageFile(makePicture("small.png")).photograph;
  limn::PlanesOf(large).resize(42).write_to_file(pathTo("large.jpg").toLocal8Bit().constData());
  LM_height_source prepared, file;
  prepared.kind = LM_height_kind::Auto;
  file.kind = LM_height_kind::File;
  file.file = heights.toStdString();
  file.invert = true;
  const struct {
    const char *name, *output, *style;
    editor::Selection selection;
    VipsBandFormat depth = VIPS_FORMAT_UCHAR;
    LM_height_source relief = {};
  } cases[] = {
      {"it's a picture.png", "it's a picture-lit.png", "Campfire", {}},
      {"area.jpg", "area-lit.jpg", "Campfire", {QRect(20, 10, 60, 30), {}}},
      {"mask.tif", "mask-lit.tif", "Evening Lamp", {part, plane(slope)}},
      {"prepared.png", "prepared-lit.png", "Carved in Stone", {}, VIPS_FORMAT_UCHAR, prepared},
      {"large.jpg", "large-lit.jpg", "Carved in Stone", {}, VIPS_FORMAT_UCHAR, prepared},
      {"file.png", "file-lit.png", "Carved in Stone", {part, {}}, VIPS_FORMAT_UCHAR, file},
      {"deep.png", "deep-lit.png", "Evening Lamp", {part, plane(slope)}, VIPS_FORMAT_USHORT},
      {"float.tif", "float-lit.tif", "Campfire", {}, VIPS_FORMAT_FLOAT}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const bool isLarge = c.name == std::string("large.jpg");
    open(isLarge ? pathTo(c.name) : makePicture(c.name, 3, c.depth));
    EXPECT_FALSE(action("Copy Command")->isEnabled()) << "nothing has been done";
    ASSERT_TRUE(isLarge || window->loadChannel(heights));
    window->document().select(c.selection);
    ASSERT_TRUE(window->applyStyle(QString(c.style)));
    editor::Recipe recipe = window->document().recipe();
    recipe.relief = c.relief;
    window->document().keep(recipe, "Relief");
    ASSERT_TRUE(window->copyCommand(pathTo("the mask.png")));
    const QString command = QGuiApplication::clipboard()->text();
    EXPECT_EQ(command.contains("the mask"), !c.selection.mask.isNull());
    EXPECT_EQ(QProcess::execute("sh", {"-c", shell + command}), 0) << command.toStdString();
    const QString saved = pathTo("saved-" + QString(c.output));
    ASSERT_TRUE(window->saveTo(saved));
    EXPECT_EQ(SamplesOf(pathTo(c.output)), SamplesOf(saved));
    if (c.selection.mask.isNull() && !c.selection.area.isEmpty() && c.relief.file.empty()) {
      EXPECT_EQ(QProcess::execute(LIMN, {"verify", "--channel", heights, pathTo(c.name), saved}),
                0);
    }
    if (!saved.endsWith("jpg")) {
      window->canvas().setZoom(1.0);
      EXPECT_EQ(shown(), ColoursOf(saved));
      EXPECT_NE(shown(), window->canvas().frame().plain);
    }
    window->document().noteSaved(saved); // so that nobody is asked about it
  }
  // A terminal would take the first character for Ctrl-C, and the rest for a command.
  open(makePicture("\x03 touch gone\n.png"));
  ASSERT_TRUE(window->applyStyle("Campfire"));
  answerNext(QMessageBox::Ok);
  EXPECT_FALSE(window->copyCommand(""));
  EXPECT_EQ(questions, 1);
  window->document().noteSaved({});
}
