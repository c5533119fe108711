// Opening and saving from the window.
#include "MainWindow.h"

#include "EditorTexts.h"
#include "SavedLights.h"

#include "deep_lighting.h"
#include "failure.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QStatusBar>

namespace editor {
namespace {

[[noreturn]] void Fail(const QString& why) {
  throw limn::Failure(limn::ExitCode::Refused, why.toStdString());
}

// What became of the lights that the picture came with; empty when it had none.
QString LightsSentence(const OpenedImage& image) {
  if (!image.whyUnlit.isEmpty())
    return MainWindow::tr("Its lights could not be brought back: %1")
        .arg(TranslatedProblem(image.whyUnlit));
  if (!image.lights.recipe.isLit())
    return {};
  const QString name = QFileInfo(image.path).fileName();
  const QString original = QFileInfo(image.original).fileName();
  QString back = name == original
                     ? MainWindow::tr("The lights of %1 are back").arg(name)
                     : MainWindow::tr("The lights of %1 are back, over %2").arg(name, original);
  if (image.lights.missing.isEmpty())
    return back;
  return back + ", " + MainWindow::tr("without %1").arg(image.lights.missing.join(", "));
}

QString Joined(const std::vector<std::string>& notices) {
  QStringList list;
  for (const std::string& notice : notices)
    list << QString::fromStdString(notice);
  return list.join("; ");
}

} // namespace

bool MainWindow::_try(const QString& what, const std::function<void()>& work) {
  QString problem;
  QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  try {
    work();
  } catch (...) {
    // A library's own too: it must not end the program, and what was not saved.
    problem = TranslatedProblem(QString::fromStdString(limn::CaughtFailure().what()));
  }
  QGuiApplication::restoreOverrideCursor();
  if (!problem.isEmpty())
    _complain(what, problem);
  return problem.isEmpty();
}

QString MainWindow::_folder() const {
  if (!_document.isEmpty())
    return QFileInfo(_document.path()).absolutePath();
  const QStringList recent = RecentFiles::files();
  return recent.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
                          : QFileInfo(recent.first()).absolutePath();
}

bool MainWindow::open(const QString& path) {
  if (_filter.isRunning() || !_mayLose())
    return false;
  const bool isOpen = _try(tr("The image could not be opened."), [&] { _take(OpenPicture(path)); });
  if (isOpen)
    _recent->add(path);
  else
    _recent->remove(path);
  return isOpen;
}

void MainWindow::_take(OpenedImage image) {
  QStringList told;
  const QString notices = Joined(image.photograph.notices);
  if (!notices.isEmpty())
    told << QFileInfo(image.original).fileName() + ": " + notices;
  const QString lights = LightsSentence(image);
  if (!lights.isEmpty())
    told << lights;
  _document.setImage(std::move(image));
  if (!told.isEmpty())
    statusBar()->showMessage(told.join("; "), NOTICE_MILLISECONDS);
}

bool MainWindow::saveRecipe(const QString& path) {
  if (!_document.recipe().isLit())
    return false;
  _lights->flush();
  const QString maskPath = MaskPathOf(path);
  const QImage& mask = _document.selection().mask;
  const bool isSaved = _try(tr("The recipe could not be saved."), [&] {
    std::optional<limn::Recipe> recipe = _document.travellingRecipe();
    if (!recipe)
      Fail(tr("No style lights the image exactly like this."));
    if (!recipe->original)
      Fail(tr("No file has the image any more as it is lit here."));
    if (!mask.isNull()) {
      if (!SaveMask(mask, maskPath))
        Fail(tr("The mask could not be saved."));
      recipe->mask = limn::RecipeFileOf(Encoded(maskPath));
    }
    SaveText(limn::RecipeToJson(*recipe) + "\n", path);
  });
  if (!isSaved)
    return false;
  _document.noteKept();
  statusBar()->showMessage(tr("Saved %1").arg(QFileInfo(path).fileName()), NOTICE_MILLISECONDS);
  return true;
}

void MainWindow::offer(LostLights lost) {
  const QString name = QFileInfo(lost.picture).fileName();
  const auto answer =
      _ask(QMessageBox::Question, tr("Lights of “%1” were not saved. Restore them?").arg(name),
           tr("The program ended before they were. This is asked once."),
           QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
  if (answer != QMessageBox::Yes ||
      _try(tr("The lights could not be restored. They stay for the next time."),
           [&] { _take(lost.restored()); }))
    lost.folder->remove();
}

bool MainWindow::saveTo(const QString& path) {
  if (_document.isEmpty())
    return false;
  _lights->flush();
  QStringList notices;
  const bool isSaved = _try(tr("The image could not be saved."), [&] {
    if (!IsWritable(path))
      Fail(tr("%1: choose a name that ends in .jpg, .png, .tif or another known format").arg(path));
    // It is lit while it is written; how far that is, is told when it takes a while.
    const vips::VImage planes = _document.litPlanes();
    const limn::ProgressAsker asker(planes, _progress(tr("Saving, %1 %")));
    notices =
        SaveImageFile(_document.original().photograph, planes, _document.travellingRecipe(), path);
  });
  if (!isSaved)
    return false;
  _document.noteSaved(path);
  _recent->add(path);
  notices.prepend(tr("Saved %1").arg(QFileInfo(path).fileName()));
  statusBar()->showMessage(notices.join("; "), NOTICE_MILLISECONDS);
  return true;
}

bool MainWindow::loadChannel(const QString& path) {
  if (_document.isEmpty())
    return false;
  const bool isLoaded = _try(tr("The channel could not be loaded."), [&] {
    limn::GreyImage channel = OpenChannelFile(path);
    const QSize size(channel.width, channel.height);
    if (!_document.addChannel(std::move(channel)))
      Fail(tr("%1: is %2 × %3 pixels, and the image is %4 × %5")
               .arg(path, QString::number(size.width()), QString::number(size.height()),
                    QString::number(_document.size().width()),
                    QString::number(_document.size().height())));
  });
  if (isLoaded)
    statusBar()->showMessage(tr("Channel %1 is now “%2”")
                                 .arg(_document.channelNames().size())
                                 .arg(_document.channelNames().last()),
                             NOTICE_MILLISECONDS);
  return isLoaded;
}

static QString imageFilter() {
  return MainWindow::tr("Images") + " (" + ReadablePatterns() + ");;" +
         MainWindow::tr("All files") + " (*)";
}

void MainWindow::chooseAndOpen() {
  const QString path =
      QFileDialog::getOpenFileName(this, tr("Open an image"), _folder(), imageFilter());
  if (!path.isEmpty())
    open(path);
}

void MainWindow::chooseAndLoadChannel() {
  const QString path =
      QFileDialog::getOpenFileName(this, tr("Load a grey image"), _folder(), imageFilter());
  if (!path.isEmpty())
    loadChannel(path);
}

bool MainWindow::save() {
  if (!_document.isEmpty() && !_document.mayBeReplaced())
    return saveAs();
  return saveTo(_document.path());
}

void MainWindow::chooseAndSaveRecipe() {
  const QString path =
      QFileDialog::getSaveFileName(this, tr("Save the recipe as"), RecipePathOf(_document.path()),
                                   tr("Recipes") + " (*.limn.json)");
  if (!path.isEmpty())
    saveRecipe(path);
}

bool MainWindow::saveAs() {
  if (_document.isEmpty())
    return false;
  const QFileInfo old(_document.path());
  const QString suffix = OutputSuffix(old.filePath(), _document.photograph().depth);
  QFileDialog dialog(this, tr("Save the image as"), _folder(),
                     tr("Images") + " (" + WritablePatterns() + ")");
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(suffix);
  dialog.selectFile(old.completeBaseName() + "." + suffix);
  return dialog.exec() == QDialog::Accepted && saveTo(dialog.selectedFiles().value(0));
}

} // namespace editor
