#include "run_window.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>

namespace limn {
namespace {

constexpr int STEPS = 1000;
// In milliseconds: a shorter run is not worth a window; how often events are run.
constexpr int PATIENCE = 300;
constexpr int PERIOD = 30;

} // namespace

void RunWindow::_Open() {
  _window = std::make_unique<QProgressDialog>(QString(), _cancel, 0, STEPS);
  // A file's name with a tag in it is no page, which would read the files that it names.
  auto* label = new QLabel;
  label->setTextFormat(Qt::PlainText);
  label->setAlignment(Qt::AlignCenter);
  _window->setLabel(label);
  _window->setLabelText(_task);
  _window->setWindowTitle(QStringLiteral("Limn"));
  _window->setMinimumDuration(0);
  _window->setMinimumWidth(360);
  _window->setAutoReset(false);
  _window->setAutoClose(false);
  // Escape only hides a window that is not active yet.
  QObject::connect(_window.get(), &QDialog::rejected, _window.get(), &QProgressDialog::cancel);
  // A Return pressed twice over OK lights the picture and stops nothing.
  for (auto* button : _window->findChildren<QPushButton*>())
    button->setAutoDefault(false);
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
