// Floating point as the arithmetic is defined on, whatever the calling program has set.
#pragma once

#include <cfenv>

// From its beginning to its end the thread rounds to nearest and keeps subnormal numbers; then it
// has the caller's environment again. Stands where programs that are not ours call in. Threads
// started meanwhile begin with what it sets.
class LM_floating_point {
public:
  LM_floating_point() {
    std::fegetenv(&_callers);
    std::fesetenv(FE_DFL_ENV);
  }
  ~LM_floating_point() { std::fesetenv(&_callers); }
  LM_floating_point(const LM_floating_point&) = delete;
  LM_floating_point& operator=(const LM_floating_point&) = delete;

private:
  std::fenv_t _callers;
};
