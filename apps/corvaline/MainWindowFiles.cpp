// Opening and saving from the window.
#include "MainWindow.h"

#include "EditorTexts.h"
#include "SavedLights.h"

#include "atomic_file.h"
#include "failure.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>
#include <QStandardPaths>
#include <QStatusBar>

namespace editor {
namespace {

// Waits for something short with the pointer saying so.
class Busy {
public:
  Busy() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~Busy() { QGuiApplication::restoreOverrideCursor(); }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;
};

// The sentence of what `work` failed with; empty when it did not.
template <typename Work> QString Problem(Work work) {
  try {
    const Busy busy;
    work();
    return {};
  } catch (...) {
    // A library's own too: it must not end the program, and what was not saved.
    return TranslatedProblem(QString::fromStdString(limn::CaughtFailure().what()));
  }
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
  const QString problem = Problem([&] { _take(OpenPicture(path)); });
  if (!problem.isEmpty()) {
    _recent->remove(path);
    _complain(tr("The image could not be opened."), problem);
    return false;
  }
  _recent->add(path);
  return true;
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
  const QString problem = Problem([&] {
    std::optional<limn::Recipe> recipe = _document.travellingRecipe();
    if (!recipe)
      throw limn::Failure(limn::ExitCode::BadInput,
                          tr("No style lights the image exactly like this.").toStdString());
    if (!recipe->original)
      throw limn::Failure(limn::ExitCode::BadInput,
                          tr("No file has the image any more as it is lit here.").toStdString());
    if (!mask.isNull()) {
      if (!SaveMask(mask, maskPath))
        throw limn::Failure(limn::ExitCode::CannotWrite,
                            tr("The mask could not be saved.").toStdString());
      recipe->mask = limn::RecipeFileOf(Encoded(maskPath));
    }
    const std::string text = limn::RecipeToJson(*recipe) + "\n";
    limn::AtomicFile file(limn::ResolveTarget(Encoded(path)), limn::Existing::Replace);
    file.Write(text.data(), text.size());
    file.Commit();
  });
  if (!problem.isEmpty()) {
    _complain(tr("The recipe could not be saved."), problem);
    return false;
  }
  _document.noteKept();
  statusBar()->showMessage(tr("Saved %1").arg(QFileInfo(path).fileName()), NOTICE_MILLISECONDS);
  return true;
}

void MainWindow::offer(LostLights lost) {
  const QString name = QFileInfo(lost.picture).fileName();
  QMessageBox box(QMessageBox::Question, "Corvaline",
                  tr("Lights of “%1” were not saved. Restore them?").arg(name),
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(tr("The program ended before they were. This is asked once."));
  box.setDefaultButton(QMessageBox::Yes);
  if (box.exec() == QMessageBox::Yes) {
    const QString problem = Problem([&] { _take(lost.restored()); });
    if (!problem.isEmpty())
      return _complain(tr("The lights could not be restored. They stay for the next time."),
                       problem);
  }
  lost.folder->remove();
}

// Lights the original while it is written, and tells how far that is when it takes a while.
QStringList MainWindow::_write(const QString& path) {
  struct Teller {
    EditorDocument::GoOn tell;

    static void Tell(VipsImage*, VipsProgress* progress, Teller* teller) {
      teller->tell(progress->percent / 100.0);
    }
  };
  Teller teller{_progress(tr("Saving, %1 %"))};
  const vips::VImage planes = _document.litPlanes();
  vips_image_set_progress(planes.get_image(), TRUE);
  g_signal_connect(planes.get_image(), "eval", G_CALLBACK(Teller::Tell), &teller);
  return SaveImageFile(_document.original().photograph, planes, _document.travellingRecipe(), path);
}

bool MainWindow::saveTo(const QString& path) {
  if (_document.isEmpty())
    return false;
  _lights->flush();
  QStringList notices;
  const QString problem =
      IsWritable(path)
          ? Problem([&] { notices = _write(path); })
          : tr("%1: choose a name that ends in .jpg, .png, .tif or another known format").arg(path);
  if (!problem.isEmpty()) {
    _complain(tr("The image could not be saved."), problem);
    return false;
  }
  _document.noteSaved(path);
  _recent->add(path);
  notices.prepend(tr("Saved %1").arg(QFileInfo(path).fileName()));
  statusBar()->showMessage(notices.join("; "), NOTICE_MILLISECONDS);
  return true;
}

bool MainWindow::loadChannel(const QString& path) {
  if (_document.isEmpty())
    return false;
  QString problem = Problem([&] {
    limn::GreyImage channel = OpenChannelFile(path);
    const QSize size(channel.width, channel.height);
    if (!_document.addChannel(std::move(channel)))
      throw limn::Failure(limn::ExitCode::BadInput,
                          tr("%1: is %2 × %3 pixels, and the image is %4 × %5")
                              .arg(path, QString::number(size.width()),
                                   QString::number(size.height()),
                                   QString::number(_document.size().width()),
                                   QString::number(_document.size().height()))
                              .toStdString());
  });
  if (!problem.isEmpty())
    _complain(tr("The channel could not be loaded."), problem);
  else
    statusBar()->showMessage(tr("Channel %1 is now “%2”")
                                 .arg(_document.channelNames().size())
                                 .arg(_document.channelNames().last()),
                             NOTICE_MILLISECONDS);
  return problem.isEmpty();
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
