#include "MainWindow.h"

#include "EditorTexts.h"
#include "HelpWindow.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QStatusBar>

namespace editor {
namespace {

// Shows the original while it is held down.
constexpr Qt::Key ORIGINAL_KEY = Qt::Key_O;

bool IsPlain(const QKeyEvent& event) {
  return event.key() == ORIGINAL_KEY && event.modifiers() == Qt::NoModifier;
}

} // namespace

MainWindow::MainWindow(CVPlugin plugin)
    : _filter(std::move(plugin)), _canvas(new Canvas(_document, this)) {
  setAcceptDrops(true);
  _canvas->setAccessibleName(tr("Picture"));
  setCentralWidget(_canvas);
  _makeFileMenu();
  _makeEditMenu();
  _makeViewMenu();
  _makeLightMenu();
  _makeFilterMenu();
  _makeHelpMenu();
  _makeToolBar();
  for (QLabel* fact : {_lightFact, _imageFacts, _zoomFact})
    statusBar()->addPermanentWidget(fact);
  _useIcons();
  connect(&_document, &EditorDocument::stateChanged, this, &MainWindow::_showState);
  connect(&_document, &EditorDocument::stateChanged, this, [this] { _recovery.keep(_document); });
  connect(_canvas, &Canvas::zoomChanged, this, &MainWindow::_showZoom);
  connect(_canvas, &Canvas::waiting, this, [this](bool isWaiting) {
    _lightFact->setText(isWaiting ? tr("Lighting …") : QString());
  });
  connect(_canvas, &Canvas::failed, this, [this](const QString& problem) {
    statusBar()->showMessage(tr("The image could not be lit.") + " " + TranslatedProblem(problem));
  });
  _showState();
  resize(1180, 800);
  _canvas->setFocus();
}

// What works on the document in threads of its own goes first.
MainWindow::~MainWindow() {
  delete _styles;
  delete _canvas;
}

void MainWindow::_showState() {
  const bool hasImage = !_document.isEmpty();
  const QString name = QFileInfo(_document.path()).fileName();
  setWindowTitle(hasImage ? name + "[*] – Corvaline" : QString("Corvaline"));
  setWindowModified(_document.isModified());
  for (QAction* action : std::as_const(_imageActions))
    action->setEnabled(hasImage);
  for (QAction* action : std::as_const(_lightActions))
    action->setEnabled(_document.recipe().isLit());
  _lightPanel->widget()->setEnabled(hasImage);
  _undo->setEnabled(_document.canUndo());
  const auto withStep = [](const QString& text, QString step) {
    return text.arg(step.replace('&', "&&")).trimmed();
  };
  _undo->setText(withStep(tr("&Undo %1"), _document.undoName()));
  _redo->setEnabled(_document.canRedo());
  _redo->setText(withStep(tr("&Redo %1"), _document.redoName()));
  _lighting->setEnabled(hasImage && _filter.isLoaded());
  _repeat->setEnabled(hasImage && _filter.canRepeat(_document));
  const QStringList channels = _document.channelNames();
  QString facts;
  if (hasImage)
    facts = tr("%1 × %2 pixels, %3 channels")
                .arg(_document.size().width())
                .arg(_document.size().height())
                .arg(channels.size());
  if (_document.isDeep())
    facts += ", " + (_document.photograph().depth == VIPS_FORMAT_USHORT ? tr("16 bits a channel")
                                                                        : tr("float"));
  _imageFacts->setText(facts);
  _imageFacts->setToolTip(channels.join("\n"));
  _showZoom();
}

void MainWindow::_showZoom() {
  _zoomFact->setText(_document.isEmpty()
                         ? QString()
                         : tr("%1 %").arg(locale().toString(_canvas->zoom() * 100, 'g', 3)));
}

void MainWindow::showHelp() {
  auto* pages = findChild<HelpWindow*>();
  if (pages == nullptr)
    pages = new HelpWindow(this);
  pages->show();
  pages->raise();
  pages->activateWindow();
}

QMessageBox::StandardButton MainWindow::_ask(QMessageBox::Icon icon, const QString& text,
                                             const QString& more,
                                             QMessageBox::StandardButtons buttons,
                                             QMessageBox::StandardButton usual) {
  QMessageBox box(icon, "Corvaline", text, buttons, this);
  box.setTextFormat(Qt::PlainText);
  box.setInformativeText(more);
  box.setDefaultButton(usual);
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

void MainWindow::_complain(const QString& what, const QString& why) {
  _ask(QMessageBox::Warning, what, why, QMessageBox::Ok, QMessageBox::Ok);
}

bool MainWindow::_mayLose() {
  _lights->flush();
  if (!_document.isModified())
    return true;
  const auto answer =
      _ask(QMessageBox::Question,
           tr("Save the changes to “%1”?").arg(QFileInfo(_document.path()).fileName()),
           tr("Without saving they are lost."),
           QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
  return answer == QMessageBox::Save ? save() : answer == QMessageBox::Discard;
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(!_filter.isRunning() && _mayLose());
  if (event->isAccepted())
    _recovery.forget();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  const QList<QUrl> urls = event->mimeData()->urls();
  if (!urls.isEmpty() && urls.first().isLocalFile())
    event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString path = event->mimeData()->urls().value(0).toLocalFile();
  event->acceptProposedAction();
  // The program that the picture comes from must not wait for our questions.
  QMetaObject::invokeMethod(
      this, [this, path] { open(path); }, Qt::QueuedConnection);
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
  if (IsPlain(*event) && !_document.isEmpty())
    _original->setChecked(true);
  else
    QMainWindow::keyPressEvent(event);
}

void MainWindow::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() != ORIGINAL_KEY)
    QMainWindow::keyReleaseEvent(event);
  else if (!event->isAutoRepeat())
    _original->setChecked(false);
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && _original != nullptr)
    _useIcons();
  // The key may be let go where it is not seen.
  if (event->type() == QEvent::ActivationChange && _original != nullptr && !isActiveWindow())
    _original->setChecked(false);
}

} // namespace editor
