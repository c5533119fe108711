// State that a process has once, and that any thread may use.
#pragma once

#include <mutex>

// The one State of its kind, locked for as long as this lives. State has a std::mutex `mutex`. It
// is never destroyed, so that it serves the destructors of static objects too.
template <typename State> class TB_Locked {
public:
  operator State*() const { return &_state; }
  State* operator->() const { return &_state; }

private:
  static State& Shared() {
    static State& state = *new State;
    return state;
  }

  State& _state = Shared();
  std::lock_guard<std::mutex> _lock{_state.mutex};
};
