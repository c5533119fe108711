#include "Events.h"

#include "Input.h"
#include "PortState.h"

#include <QElapsedTimer>
#include <chrono>
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

// The input for a call in a loop of the caller's own, which must not starve the windows, nor run
// events at every step. Null without a desktop.
Input* PumpNowAndThen() {
  static QElapsedTimer last;
  Input* input = Input::Get();
  if (input != nullptr && input->PendingRelease() == nullptr &&
      (!last.isValid() || last.elapsed() >= 5)) {
    last.start();
    input->Pump(0);
  }
  return input;
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
  if (const Input* input = PumpNowAndThen())
    *mouse = ToLocal(*CurrentPort(), input->Mouse());
}

void GetKeys(KeyMap keys) {
  std::memset(keys, 0, sizeof(KeyMap));
  if (const Input* input = PumpNowAndThen())
    std::memcpy(keys, input->Keys().data(), sizeof(KeyMap));
}

void TB_PostDrag(GrafPort* window, Point from, Point to) {
  Input* input = Input::Get();
  if (WindowStateOf(window) != nullptr && input != nullptr)
    input->PostDrag(window, ToScreen(*window, from), ToScreen(*window, to));
}

uint32_t TickCount() {
  using Ticks = std::chrono::duration<int64_t, std::ratio<1, 60>>;
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<uint32_t>(std::chrono::duration_cast<Ticks>(now).count());
}
