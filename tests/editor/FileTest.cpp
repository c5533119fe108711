// Opening, saving, and what happens to changes that were not saved.
#include "EditorRun.h"

#include <QApplication>
#include <QDir>
#include <QDropEvent>
#include <QMimeData>
#include <QTextDocument>

TEST_F(EditorRun, FilesThatLoseSomethingAreNotReplacedUnasked) {
  EXPECT_TRUE(editor::OpenImageFile(makePicture("plain.png")).mayBeReplaced);
  EXPECT_TRUE(editor::OpenImageFile(makePicture("alpha.png", 4)).mayBeReplaced);
  const QString deep = makeFile("deep.ppm", "P6 1 1 65535\n\1\2\3\4\5\6");
  EXPECT_TRUE(editor::OpenImageFile(deep).mayBeReplaced);
  const QString deeper = makePicture("deeper.tif", 3, VIPS_FORMAT_UINT);
  EXPECT_FALSE(editor::OpenImageFile(deeper).mayBeReplaced);
}

TEST_F(EditorRun, WhatCannotBeOpenedOrSavedLeavesTheImage) {
  const QString picture = makePicture("picture.png");
  open(picture);
  const std::vector<uint8_t> before = pixels();
  makeFile("broken.png", contentOf(picture).left(200));
  for (const QString& path : {pathTo("missing.png"), pathTo("broken.png"), pathTo("")}) {
    SCOPED_TRACE(path.toStdString());
    answerNext(QMessageBox::Ok);
    EXPECT_FALSE(window->open(path));
    answerNext(QMessageBox::Ok);
    EXPECT_FALSE(window->loadChannel(path));
  }
  for (const QString& path : {picture + "/folder.png", pathTo("name.txt"), pathTo("name")}) {
    SCOPED_TRACE(path.toStdString());
    answerNext(QMessageBox::Ok);
    EXPECT_FALSE(window->saveTo(path));
  }
  EXPECT_EQ(questions, 9);
  EXPECT_EQ(pixels(), before);
  EXPECT_EQ(window->document().path(), picture);
  EXPECT_FALSE(editor::RecentFiles::files().contains(pathTo("broken.png")));
  EXPECT_EQ(editor::RecentFiles::files().first(), picture);
  ASSERT_TRUE(window->saveTo(pathTo("copy.webp")));
  EXPECT_EQ(window->document().path(), pathTo("copy.webp"));
}

TEST_F(EditorRun, ChangesAreNotLostWithoutAQuestion) {
  const QString picture = makePicture("picture.png");
  const QString other = makePicture("other.png");
  open(picture);
  const QByteArray original = contentOf(picture);
  window->document().select({QRect(0, 0, 10, 10), {}});
  EXPECT_TRUE(window->close()) << "a selection is no change of the image";
  EXPECT_EQ(questions, 0);
  window->show();

  ASSERT_TRUE(lightWithDialog());
  EXPECT_TRUE(window->isWindowModified());
  answerNext(QMessageBox::Cancel);
  EXPECT_FALSE(window->close());
  answerNext(QMessageBox::Cancel);
  EXPECT_FALSE(window->open(other));
  EXPECT_EQ(window->document().path(), picture);
  EXPECT_EQ(contentOf(picture), original);
  answerNext(QMessageBox::Save);
  EXPECT_TRUE(window->open(other));
  EXPECT_NE(contentOf(picture), original);
  EXPECT_EQ(window->document().path(), other);
  EXPECT_EQ(questions, 3);

  ASSERT_TRUE(window->applyStyle("Campfire"));
  const QByteArray untouched = contentOf(other);
  answerNext(QMessageBox::Discard);
  EXPECT_TRUE(window->close());
  EXPECT_EQ(contentOf(other), untouched);
  EXPECT_EQ(questions, 4);
}

TEST_F(EditorRun, APictureCanBeDropped) {
  const QString picture = makePicture("picture.png");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(picture)});
  QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window.get(), &enter);
  ASSERT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window.get(), &drop);
  QCoreApplication::processEvents();
  EXPECT_EQ(window->document().path(), picture);
}

TEST_F(EditorRun, RecentFilesAreFewAndWithoutRepetition) {
  for (int round = 0; round < 2; ++round)
    for (int i = 0; i < editor::RecentFiles::MOST + 2; ++i)
      open(makePicture(QString("%1.png").arg(i)));
  QStringList expected;
  for (int i = editor::RecentFiles::MOST + 1; i >= 2; --i)
    expected << pathTo(QString("%1.png").arg(i));
  EXPECT_EQ(editor::RecentFiles::files(), expected);
}

TEST_F(EditorRun, ChannelsMustFitTheImage) {
  open(makePicture("<img src=x>.png"));
  const QByteArray heights = "P5 90 60 255\n" + QByteArray(WIDTH * HEIGHT, 'a');
  ASSERT_TRUE(window->loadChannel(makeFile("<img src=y>.pgm", heights)));
  EXPECT_EQ(window->document().channelNames(),
            QStringList({"Red", "Green", "Blue", "<img src=y>"}));
  EXPECT_FALSE(window->document().isModified());
  // A tool tip that is a page reads the files that it names.
  for (const QAction* listed : window->findChildren<QAction*>())
    EXPECT_FALSE(Qt::mightBeRichText(listed->toolTip()) && listed->toolTip().contains("<img"))
        << listed->toolTip().toStdString();

  makeFile("small.pgm", "P5 1 1 255\na");
  answerNext(QMessageBox::Ok);
  EXPECT_FALSE(window->loadChannel(pathTo("small.pgm")));
  EXPECT_EQ(questions, 1);
  EXPECT_EQ(window->document().channelNames().size(), 4);
}
