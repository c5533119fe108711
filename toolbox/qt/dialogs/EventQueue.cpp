#include "EventQueue.h"

#include "DialogWindow.h"

#include <QDeadlineTimer>

namespace {

// A closed window sends no event; the loop that runs it is to look.
bool FrontIsClosed() {
  const DialogWindow* front = DialogWindow::Of(FrontWindow());
  return front != nullptr && front->closeRequested();
}

} // namespace

QueuedEvent NextEvent(int milliseconds) {
  QueuedEvent event = {{nullEvent, 0, TickCount(), Point{0, 0}, 0}, nullptr, QPointF(), {}};
  Input* input = Input::Get();
  if (input == nullptr)
    return event;
  const QDeadlineTimer deadline(milliseconds);
  for (bool last = false;; last = deadline.hasExpired()) {
    if (const auto queued = input->TakeEvent())
      return *queued;
    if (WindowPtr updated = WindowToUpdate()) {
      event.record.what = updateEvt;
      event.window = updated;
      return event;
    }
    if (last || FrontIsClosed())
      return event;
    input->Pump(static_cast<int>(deadline.remainingTime()));
  }
}
