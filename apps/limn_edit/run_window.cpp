#include "run_window.h"

#include <QApplication>

namespace limn {
namespace {

constexpr int STEPS = 1000;
// In milliseconds: a shorter run is not worth a window; how often events are run.
constexpr int PATIENCE = 300;
constexpr int PERIOD = 30;

} // namespace

void RunWindow::_Open() {
  _window = std::make_unique<QProgressDialog>(_task, _cancel, 0, STEPS);
  _window->setWindowTitle(QStringLiteral("Limn"));
  _window->setMinimumDuration(0);
  _window->setMinimumWidth(360);
  _window->setAutoReset(false);
  _window->setAutoClose(false);
  // Escape only hides a window that is not active yet.
  QObject::connect(_window.get(), &QDialog::rejected, _window.get(), &QProgressDialog::cancel);
  _window->show();
}

void RunWindow::Show(double share) {
  if (!_hasDialogShown)
    return;
  if (!_sinceStart.isValid()) {
    _sinceStart.start();
    _sinceEvents.start();
  }
  if (_window == nullptr && _sinceStart.elapsed() > PATIENCE)
    _Open();
  if (_window == nullptr || _sinceEvents.elapsed() < PERIOD)
    return;
  if (!_window->wasCanceled())
    _window->setValue(static_cast<int>(share * STEPS));
  QApplication::processEvents();
  _sinceEvents.restart();
}

void RunWindow::ShowWriting(const QString& task) {
  if (_window == nullptr)
    return;
  _window->setCancelButton(nullptr);
  _window->setLabelText(task);
  _window->setValue(STEPS);
  QApplication::processEvents();
}

} // namespace limn
