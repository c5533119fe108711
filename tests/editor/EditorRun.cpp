#include "EditorRun.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QTest>
#include <QTimer>

EditorRun::EditorRun() {
  CVPlugin plugin;
  const CVResult loaded = editor::LoadFilter(plugin);
  EXPECT_TRUE(loaded.ok()) << loaded.message;
  window = std::make_unique<editor::MainWindow>(plugin);
  window->resize(500, 400);
  window->show();
}

QString EditorRun::makePicture(const QString& name, int planes, VipsBandFormat depth) const {
  std::vector<uint8_t> bytes;
  for (int y = 0; y < HEIGHT; ++y)
    for (int x = 0; x < WIDTH; ++x)
      for (int plane = 0; plane < planes; ++plane)
        bytes.push_back(plane == 3 ? 255 : static_cast<uint8_t>(60 + x + y / 2 + plane * 17));
  const auto tags = vips::VImage::option()
                        ->set("interpretation", VIPS_INTERPRETATION_sRGB)
                        ->set("xres", 11.811)
                        ->set("yres", 11.811);
  vips::VImage image = vips::VImage::new_from_memory(bytes.data(), bytes.size(), WIDTH, HEIGHT,
                                                     planes, VIPS_FORMAT_UCHAR)
                           .copy(tags);
  if (depth != VIPS_FORMAT_UCHAR)
    image = (image * (depth == VIPS_FORMAT_FLOAT ? 1.0 / 180 : 257.9))
                .cast(depth)
                .copy(vips::VImage::option()->set(
                    "interpretation", depth == VIPS_FORMAT_FLOAT ? VIPS_INTERPRETATION_scRGB
                                                                 : VIPS_INTERPRETATION_RGB16));
  image.set("exif-ifd0-Artist", "Ada (Ada, ASCII, 4 components, 4 bytes)");
  image.write_to_file(pathTo(name).toLocal8Bit().constData());
  return pathTo(name);
}

QImage EditorRun::plane(const std::function<int(int x, int y)>& value) {
  QImage image(WIDTH, HEIGHT, QImage::Format_Grayscale8);
  for (int y = 0; y < HEIGHT; ++y)
    for (int x = 0; x < WIDTH; ++x)
      image.scanLine(y)[x] = static_cast<uint8_t>(value(x, y));
  return image;
}

QString EditorRun::makePlane(const QString& name,
                             const std::function<int(int x, int y)>& value) const {
  EXPECT_TRUE(plane(value).save(pathTo(name)));
  return pathTo(name);
}

QString EditorRun::makeFile(const QString& name, const QByteArray& content) const {
  QFile file(pathTo(name));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(content);
  return pathTo(name);
}

QByteArray EditorRun::contentOf(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return file.readAll();
}

void EditorRun::open(const QString& path) {
  ASSERT_TRUE(window->open(path));
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
  ASSERT_FALSE(shown().isNull());
}

QImage EditorRun::shown() {
  const editor::Canvas& canvas = window->canvas();
  if (!QTest::qWaitFor([&] { return canvas.isUpToDate(); }, 20000))
    return {};
  EXPECT_EQ(canvas.frame().problem.toStdString(), "");
  return canvas.frame().lit;
}

// Acts on the modal window of that kind that opens next. owner: nothing happens any more without
// it.
template <class Window> static void WhenShown(QObject* owner, std::function<void(Window&)> act) {
  auto* poll = new QTimer(owner);
  QObject::connect(poll, &QTimer::timeout, poll, [poll, act] {
    if (auto* shown = qobject_cast<Window*>(QApplication::activeModalWidget())) {
      poll->stop();
      act(*shown);
      poll->deleteLater();
    }
  });
  poll->start(5);
}

bool EditorRun::lightWithDialog() {
  // A key that comes before the dialog listens is lost, so it is pressed again.
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [] {
    if (QWidget* dialog = QApplication::activeModalWidget())
      QTest::keyClick(dialog, Qt::Key_Return);
  });
  poll.start(50);
  return window->runFilter(CVDialog::Yes);
}

void EditorRun::answerNext(QMessageBox::StandardButton button) {
  WhenShown<QMessageBox>(window.get(), [this, button](QMessageBox& box) {
    ++questions;
    ASSERT_NE(box.button(button), nullptr);
    box.button(button)->click();
  });
}

QAction* EditorRun::action(const QString& text) const {
  for (QAction* found : window->findChildren<QAction*>())
    if (found->text().remove('&').section('\t', 0, 0) == text ||
        found->objectName() == text.toLower())
      return found;
  ADD_FAILURE() << "no entry " << text.toStdString();
  return nullptr;
}

QPoint EditorRun::at(int x, int y) const {
  return window->canvas().toViewport(QPointF(x + 0.5, y + 0.5)).toPoint();
}
