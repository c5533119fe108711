// What is to be seen of a run after the plug-in's dialog: its progress, and a way to stop it.
#pragma once

#include <QElapsedTimer>
#include <QProgressDialog>
#include <QString>
#include <memory>

namespace limn {

// Opens its window when the work takes longer than a moment.
class RunWindow {
public:
  // task: what is being done; cancel: what its button says.
  RunWindow(QString task, QString cancel) : _task(std::move(task)), _cancel(std::move(cancel)) {}

  // The plug-in's dialog is up: what follows its end is the run.
  void DialogShown() { _hasDialogShown = true; }
  // share: 0 … 1 of the area. Means nothing before the dialog has been shown.
  void Show(double share);
  // The picture is lit and is being written, which can no longer be stopped.
  void ShowWriting(const QString& task);
  // OK has been pressed.
  bool HasRunBegun() const { return _sinceStart.isValid(); }
  bool IsCancelled() const { return _window != nullptr && _window->wasCanceled(); }

private:
  void _Open();

  QString _task;
  QString _cancel;
  bool _hasDialogShown = false;
  std::unique_ptr<QProgressDialog> _window;
  QElapsedTimer _sinceStart;
  QElapsedTimer _sinceEvents;
};

} // namespace limn
