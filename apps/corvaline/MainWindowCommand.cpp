// The last run of the filter as a command for the terminal.
#include "MainWindow.h"

#include "apply_command.h"

#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSaveFile>
#include <QStatusBar>

namespace editor {
namespace {

constexpr int NOTICE_MILLISECONDS = 8000;

// Where the command writes: beside the image, never over it, and as the editor would.
std::string OutputFor(const QFileInfo& image, VipsBandFormat depth) {
  const QString path = image.absolutePath() + "/" + image.completeBaseName() + "-lit." +
                       OutputSuffix(image.filePath(), depth);
  return Encoded(path) + SaveOptions(path);
}

// What is at `path` stays until the new file is complete.
bool SaveMask(const QImage& mask, const QString& path) {
  QSaveFile file(path);
  return file.open(QIODevice::WriteOnly) && mask.save(&file, "PNG") && file.commit();
}

std::string AreaWords(const QRect& area) {
  return std::to_string(area.x()) + "," + std::to_string(area.y()) + "," +
         std::to_string(area.width()) + "," + std::to_string(area.height());
}

} // namespace

MainWindow::CommandFacts MainWindow::_commandFacts() const {
  return {_document.image().path,
          _document.filterArea(),
          _document.filterArea() == _document.bounds(),
          _document.selection().mask,
          _document.channelFiles(),
          _document.isModified(),
          _document.image().photograph.depth};
}

bool MainWindow::copyCommand(const QString& maskPath) {
  if (!_lastRun)
    return false;
  const CommandFacts& run = *_lastRun;
  const QString title = tr("The command could not be copied.");
  const auto style = limn::StyleOfBlock(_filter.parameters(), run.area.width(), run.area.height());
  if (!style) {
    _complain(title, tr("No style lights the image exactly like this."));
    return false;
  }
  if (!run.mask.isNull() && !SaveMask(run.mask, maskPath)) {
    _complain(title, tr("The mask could not be saved."));
    return false;
  }
  const QFileInfo image(run.path);
  const std::string command = limn::CommandLine(
      {*style, Encoded(image.absoluteFilePath()), OutputFor(image, run.depth),
       run.isWhole ? "" : AreaWords(run.area), run.mask.isNull() ? "" : Encoded(maskPath),
       run.channels, 0, false, run.depth != VIPS_FORMAT_UCHAR});
  if (limn::HasControls(command)) {
    _complain(title, tr("A file's name has characters that a terminal takes for keys."));
    return false;
  }
  QGuiApplication::clipboard()->setText(QFile::decodeName(command.c_str()));
  statusBar()->showMessage(
      run.wasModified
          ? tr("Copied the command of the last step; the image was no longer that of its file")
          : tr("Copied the command"),
      NOTICE_MILLISECONDS);
  return true;
}

void MainWindow::chooseAndCopyCommand() {
  QString maskPath;
  if (_lastRun && !_lastRun->mask.isNull()) {
    const QFileInfo image(_lastRun->path);
    maskPath = QFileDialog::getSaveFileName(
        this, tr("Save the mask as"),
        image.absolutePath() + "/" + image.completeBaseName() + "-mask.png", "PNG (*.png)");
    if (maskPath.isEmpty())
      return;
  }
  copyCommand(maskPath);
}

} // namespace editor
