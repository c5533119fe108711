#include "Events.h"

#include "Input.h"
#include "PortState.h"

#include <QElapsedTimer>
#include <cstring>

namespace {

// How long a still mouse is waited for before the caller's loop may look around: long enough that a
// held button costs next to nothing, short enough to notice what sends no event.
constexpr int STILL_WAIT = 50;

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

} // namespace

Boolean StillDown() {
  Input* input = Input::Get();
  if (input == nullptr || input->PendingRelease() != nullptr || !input->ButtonDown())
    return 0;
  PumpForPolling(*input);
  return input->PendingRelease() == nullptr && input->ButtonDown() ? 1 : 0;
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

void TB_PostDrag(GrafPort* window, Point from, Point to) {
  Input* input = Input::Get();
  if (WindowStateOf(window) != nullptr && input != nullptr)
    input->PostDrag(window, ToScreen(*window, from), ToScreen(*window, to));
}

uint32_t TickCount() {
  constexpr int TICKS_PER_SECOND = 60;
  static const QElapsedTimer start = [] {
    QElapsedTimer timer;
    timer.start();
    return timer;
  }();
  return static_cast<uint32_t>(start.elapsed() * TICKS_PER_SECOND / 1000);
}
