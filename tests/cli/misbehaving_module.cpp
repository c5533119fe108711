// A plug-in whose conduct depends on the width of the area it is run on, to see what a host makes
// of crashes, refusals and endless work.
#include "CVFilterRecord.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int16_t CRASHES = 1;
constexpr int16_t RUNS_OUT_OF_MEMORY = 2;
constexpr int16_t REFUSES_THE_MODE = 3;
constexpr int16_t NEVER_ENDS = 4;

int16_t Start(const FilterRecord& record) {
  switch (record.filterArea.right - record.filterArea.left) {
  case CRASHES:
    std::signal(SIGSEGV, SIG_DFL);
    raise(SIGSEGV);
    return 0;
  case RUNS_OUT_OF_MEMORY:
    return CV_RESULT_NO_MEMORY;
  case REFUSES_THE_MODE:
    return CV_RESULT_BAD_MODE;
  case NEVER_ENDS:
    close(creat("begun", 0600)); // for who waits for this
    for (;;)
      pause();
  default:
    return CV_RESULT_OK;
  }
}

} // namespace

extern "C" __attribute__((visibility("default"))) int
MisbehavingMain(int selector, void* record, intptr_t* data, int16_t* result) asm("main");

int MisbehavingMain(int selector, void* record, intptr_t*, int16_t* result) {
  auto* filter = static_cast<FilterRecord*>(record);
  *result = CV_RESULT_OK;
  if ((selector & 0xffff) == LM_SEL_START) {
    filter->inTileRect = filter->outTileRect = filter->maskTileRect = CVRect{0, 0, 0, 0};
    *result = Start(*filter);
  }
  return 0;
}
