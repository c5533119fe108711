// Shows how far a filter's run is, and keeps the window alive meanwhile.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QProgressDialog>

#include <memory>

namespace editor {

// A run that is over soon shows nothing. While the filter's own dialog is up nothing is done here:
// it runs the desktop's events itself.
class FilterProgress {
public:
  // title: of the progress window. owner: blocked while that is shown.
  FilterProgress(QString title, QWidget* owner);

  // share: 0 to 1; 0 begins again.
  void show(double share);
  // Whether the user pressed Cancel. Lets the window repaint and answer.
  bool isCancelled();
  // The filter has drawn into a dialog of its own.
  void yieldToDialog();
  // There was such a dialog, and what is shown now is what follows it.
  bool hasDialogEnded() const { return _hasDialogEnded; }

private:
  void _runEvents();

  QString _title;
  QWidget* _owner;
  std::unique_ptr<QProgressDialog> _window; // null until it is worth showing
  int _steps = 0;
  bool _hasDialogShown = false, _hasDialogEnded = false;
  QElapsedTimer _sinceStart, _sinceEvents;
};

} // namespace editor
