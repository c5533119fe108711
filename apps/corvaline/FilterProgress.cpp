#include "FilterProgress.h"

#include <QApplication>
#include <QPushButton>

namespace editor {
namespace {

constexpr int STEPS = 1000;
// A shorter run is not worth a window; events are run this often, in milliseconds.
constexpr int PATIENCE = 400;
constexpr int PERIOD = 30;

} // namespace

FilterProgress::FilterProgress(QString title, QWidget* owner)
    : _title(std::move(title)), _owner(owner) {
  _sinceStart.start();
  _sinceEvents.start();
}

void FilterProgress::show(double share) {
  _hasDialogEnded = _hasDialogShown;
  if (share <= 0.0)
    _sinceStart.restart();
  _steps = static_cast<int>(share * STEPS);
  if (_window != nullptr)
    _window->setValue(_steps);
  _runEvents();
}

bool FilterProgress::isCancelled() {
  _runEvents();
  return _window != nullptr && _window->wasCanceled();
}

void FilterProgress::yieldToDialog() {
  _hasDialogShown = true;
  _window.reset();
  _sinceStart.restart();
}

void FilterProgress::_runEvents() {
  if (_sinceEvents.elapsed() < PERIOD)
    return;
  const QWidget* modal = QApplication::activeModalWidget();
  if (modal != nullptr && modal != _window.get())
    return;
  if (_window == nullptr && _sinceStart.elapsed() > PATIENCE) {
    _window =
        std::make_unique<QProgressDialog>(_title, QProgressDialog::tr("Cancel"), 0, STEPS, _owner);
    _window->setWindowTitle(_title);
    _window->setWindowModality(Qt::ApplicationModal);
    _window->setMinimumDuration(0);
    _window->setAutoReset(false);
    // Escape only hides a window that is not active yet.
    QObject::connect(_window.get(), &QDialog::rejected, _window.get(), &QProgressDialog::cancel);
    // A Return pressed twice over OK lights the picture and stops nothing.
    for (auto* button : _window->findChildren<QPushButton*>())
      button->setAutoDefault(false);
    _window->show();
    _window->setValue(_steps);
  }
  // Until there is a window that blocks them, keys and clicks wait.
  QApplication::processEvents(_window != nullptr ? QEventLoop::AllEvents
                                                 : QEventLoop::ExcludeUserInputEvents);
  _sinceEvents.restart();
}

} // namespace editor
