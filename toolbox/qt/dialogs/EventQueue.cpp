#include "EventQueue.h"

#include "DialogWindow.h"
#include "Input.h"

#include <QDeadlineTimer>

namespace {

// A closed window sends no event; the loop that runs it is to look.
bool FrontIsClosed() {
  const DialogWindow* front = DialogWindow::Of(FrontWindow());
  return front != nullptr && front->closeRequested();
}

} // namespace

bool FetchEvent(short mask, EventRecord* event, WindowPtr* window, int milliseconds) {
  *event = {nullEvent, 0, TickCount(), Point{0, 0}, 0};
  *window = nullptr;
  Input* input = Input::Get();
  if (input == nullptr)
    return false;
  const QDeadlineTimer deadline(milliseconds);
  for (bool last = false;; last = deadline.hasExpired()) {
    if (const auto queued = input->TakeEvent(mask)) {
      *event = queued->record;
      *window = queued->window;
      return true;
    }
    if (WindowPtr updated = WindowToUpdate(); updated != nullptr && (mask & (1 << updateEvt))) {
      event->what = updateEvt;
      *window = updated;
      return true;
    }
    if (last || FrontIsClosed())
      return false;
    input->Pump(static_cast<int>(deadline.remainingTime()));
  }
}
