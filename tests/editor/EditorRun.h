// A window of the editor on a small picture, with a folder of its own.
#pragma once

#include "MainWindow.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QTemporaryDir>

#include <functional>
#include <gtest/gtest.h>

class EditorRun : public testing::Test {
protected:
  static constexpr int WIDTH = 90, HEIGHT = 60;

  EditorRun();

  QString pathTo(const QString& name) const { return _folder.filePath(name); }
  // Writes a picture of WIDTH × HEIGHT with an artist and a resolution. Deeper than 8 bits, it
  // holds what these do not, as floats beyond white too.
  QString makePicture(const QString& name, int planes = 3,
                      VipsBandFormat depth = VIPS_FORMAT_UCHAR) const;
  // Writes a grey picture of that size.
  QString makePlane(const QString& name, const std::function<int(int x, int y)>& value) const;
  static QImage plane(const std::function<int(int x, int y)>& value);
  QString makeFile(const QString& name, const QByteArray& content) const;
  static QByteArray contentOf(const QString& path);
  // Opens a window with the picture and waits until it is laid out.
  void open(const QString& path);
  // Runs the filter through its real dialog, which gets Return.
  bool lightWithDialog();

  // The button that the next question gets; it must be asked before the check ends.
  void answerNext(QMessageBox::StandardButton button);
  int questions = 0; // asked so far

  // Of the original.
  const std::vector<uint8_t>& pixels() { return window->document().photograph().pixels; }
  // What the canvas shows once it is up to date, lit.
  QImage shown();
  // What saving writes, in the picture's depth.
  std::vector<uint8_t> lit() { return limn::DecodedPixels(window->document().litPlanes()); }
  // By its text; "Undo" and "Redo" whatever they undo.
  QAction* action(const QString& text) const;
  QPoint at(int x, int y) const; // of the image, in the viewport

  std::unique_ptr<editor::MainWindow> window;

private:
  QTemporaryDir _folder;
};
