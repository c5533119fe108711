// How the image is lit, as a command for the terminal.
#include "MainWindow.h"

#include "apply_command.h"

#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStatusBar>

namespace editor {
namespace {

// Where the command writes: beside the image, never over it, and as the editor would.
std::string OutputFor(const QFileInfo& image, VipsBandFormat depth) {
  const QString path = image.absolutePath() + "/" + image.completeBaseName() + "-lit." +
                       OutputSuffix(image.filePath(), depth);
  return Encoded(path) + SaveOptions(path);
}

std::string AreaWords(const QRect& area) {
  return std::to_string(area.x()) + "," + std::to_string(area.y()) + "," +
         std::to_string(area.width()) + "," + std::to_string(area.height());
}

} // namespace

bool MainWindow::copyCommand(const QString& maskPath) {
  const Recipe& recipe = _document.recipe();
  if (!recipe.isLit())
    return false;
  const QString title = tr("The command could not be copied.");
  if (!recipe.lights) {
    _complain(title, tr("No style lights the image exactly like this."));
    return false;
  }
  const Selection& selection = _document.selection();
  if (!selection.mask.isNull() && !SaveMask(selection.mask, maskPath)) {
    _complain(title, tr("The mask could not be saved."));
    return false;
  }
  const QFileInfo image(_document.originalPath());
  limn::ApplyCommand command{};
  command.style = *recipe.lights;
  command.relief = recipe.relief;
  command.image = Encoded(image.absoluteFilePath());
  command.output = OutputFor(image, _document.photograph().depth);
  command.area = selection.area.isEmpty() ? "" : AreaWords(selection.area);
  command.mask = selection.mask.isNull() ? "" : Encoded(maskPath);
  for (const limn::GreyImage& channel : _document.original().channels)
    command.channels.push_back(channel.file);
  const std::string line = limn::CommandLine(command);
  if (limn::HasControls(line)) {
    _complain(title, tr("A file's name has characters that a terminal takes for keys."));
    return false;
  }
  QGuiApplication::clipboard()->setText(QFile::decodeName(line.c_str()));
  statusBar()->showMessage(_document.hasOriginalFile()
                               ? tr("Copied the command")
                               : tr("Copied the command; the file no longer has what is lit here"),
                           NOTICE_MILLISECONDS);
  return true;
}

void MainWindow::chooseAndCopyCommand() {
  QString maskPath;
  if (!_document.selection().mask.isNull()) {
    const QFileInfo image(_document.originalPath());
    maskPath = QFileDialog::getSaveFileName(
        this, tr("Save the mask as"),
        image.absolutePath() + "/" + image.completeBaseName() + "-mask.png", "PNG (*.png)");
    if (maskPath.isEmpty())
      return;
  }
  copyCommand(maskPath);
}

} // namespace editor
