#include "Events.h"

#include "DialogWindow.h"
#include "EventQueue.h"
#include "Input.h"
#include "MacWindows.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <cstring>

namespace {

// How long a still mouse is waited for before the caller's loop may look around: long enough that a
// held button costs next to nothing, short enough to notice what sends no event.
constexpr int STILL_WAIT = 50;
constexpr int TICKS_PER_SECOND = 60;

int Milliseconds(uint32_t ticks) {
  constexpr uint64_t LONGEST = 60000;
  return static_cast<int>(std::min<uint64_t>(uint64_t{ticks} * 1000 / TICKS_PER_SECOND, LONGEST));
}

// Waits only when nothing has happened since the last call, so no movement is answered late.
void PumpForPolling(Input& input) {
  static uint64_t seen = 0;
  input.Pump(input.Changes() == seen ? STILL_WAIT : 0);
  seen = input.Changes();
}

// A call in a loop of its own must not starve the windows, nor run events at every step of one.
void PumpNowAndThen(Input& input) {
  static QElapsedTimer last;
  if (last.isValid() && last.elapsed() < 5)
    return;
  last.start();
  input.Pump(0);
}

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

Boolean StillDown() {
  Input* input = Input::Get();
  if (input == nullptr || input->PendingRelease() != nullptr || !input->ButtonDown())
    return 0;
  PumpForPolling(*input);
  return input->PendingRelease() == nullptr && input->ButtonDown() ? 1 : 0;
}

Boolean WaitMouseUp() {
  if (StillDown())
    return 1;
  if (Input* input = Input::Get(); input != nullptr && input->PendingRelease() != nullptr)
    input->TakeEvent(1 << mouseUp);
  return 0;
}

Boolean Button() {
  Input* input = Input::Get();
  if (input == nullptr)
    return 0;
  PumpForPolling(*input);
  return input->ButtonDown() ? 1 : 0;
}

void GetMouse(Point* mouse) {
  *mouse = Point{0, 0};
  Input* input = Input::Get();
  if (input == nullptr)
    return;
  if (input->PendingRelease() == nullptr)
    PumpNowAndThen(*input);
  *mouse = ToLocal(*CurrentPort(), input->Mouse());
}

void GetKeys(KeyMap keys) {
  std::memset(keys, 0, sizeof(KeyMap));
  Input* input = Input::Get();
  if (input == nullptr)
    return;
  if (input->PendingRelease() == nullptr)
    PumpNowAndThen(*input);
  std::memcpy(keys, input->Keys().data(), sizeof(KeyMap));
}

Boolean WaitNextEvent(short eventMask, EventRecord* event, uint32_t sleepTicks, void*) {
  WindowPtr window = nullptr;
  return FetchEvent(eventMask, event, &window, Milliseconds(sleepTicks)) ? 1 : 0;
}

void TB_PostDrag(GrafPort* window, Point from, Point to) {
  const DialogWindow* owner = DialogWindow::Of(window);
  Input* input = Input::Get();
  if (owner == nullptr || input == nullptr)
    return;
  const auto global = [&](Point point) {
    const QPointF middle(point.h + 0.5, point.v + 0.5);
    return owner->mapToGlobal(middle * owner->scale());
  };
  input->PostDrag(window, global(from), global(to));
}

void FlushEvents(short whichMask, short) {
  if (Input* input = Input::Get())
    input->FlushQueue(whichMask);
}

uint32_t TickCount() {
  static const QElapsedTimer start = [] {
    QElapsedTimer timer;
    timer.start();
    return timer;
  }();
  return static_cast<uint32_t>(start.elapsed() * TICKS_PER_SECOND / 1000);
}

void Delay(uint32_t ticks, uint32_t* finalTicks) {
  QElapsedTimer timer;
  timer.start();
  Input* input = Input::Get();
  for (int left = Milliseconds(ticks); input != nullptr && left > 0;
       left = Milliseconds(ticks) - static_cast<int>(timer.elapsed()))
    input->Pump(left);
  if (finalTicks != nullptr)
    *finalTicks = TickCount();
}

void SysBeep(short) {
  if (Input::Get() != nullptr)
    QApplication::beep();
}
