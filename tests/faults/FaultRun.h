// Lets every allocation or file operation of a piece of work fail in turn, each time in a process
// of its own, so that no failure, and no crash, reaches the next.
#pragma once

#include "fault_shim.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

// Operations count while one of these lives, and no Sheltered within it: around the calls into the
// program, so that the test's own code does not fail.
class Exposed {
public:
  Exposed() { --fault_plan->paused; }
  ~Exposed() { ++fault_plan->paused; }
  Exposed(const Exposed&) = delete;
  Exposed& operator=(const Exposed&) = delete;
};
// Around the parts that the test plays in such a call.
class Sheltered {
public:
  Sheltered() { ++fault_plan->paused; }
  ~Sheltered() { --fault_plan->paused; }
  Sheltered(const Sheltered&) = delete;
  Sheltered& operator=(const Sheltered&) = delete;
};

// True once the failure was given in this run of the work.
inline bool HasFailed() {
  return fault_plan->failed != 0;
}

enum class Pace { EveryOne, Some }; // Some: every one in the deep form only

// Runs `work` without a failure, then with the first, second, ... failing until a run has none,
// cold and after a run in the same process. Prints how many failed of `what`. The work's EXPECTs
// say what must hold; it must leave no block behind, and end within a minute.
void TryEachFailure(fault_kind kind, const char* what, const std::function<void()>& work,
                    Pace pace = Pace::EveryOne);

// A test with an empty folder of its own, the only one whose files count.
class FaultTest : public testing::Test {
protected:
  FaultTest();
  ~FaultTest() override;
  std::filesystem::path folder;
};
