// The module's one exported symbol.
#include <new>

#include "LM_session.h"
#include "LimnResources.h"
#include "MacResources.h"

// A C++ function of these arguments cannot be called `main`, so only its symbol is.
extern "C" __attribute__((visibility("default"))) int
LM_main(int selector, void* record, intptr_t* data, int16_t* result) __asm__("main");

extern "C" int LM_main(int selector, void* record, intptr_t* data, int16_t* result) {
  constexpr int16_t FAILED = -36;
  // Nothing thrown may cross into the host, which need not even be C++.
  try {
    static const Boolean carried = TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
    static_cast<void>(carried);
    LM_AnswerCall(static_cast<int16_t>(static_cast<uint16_t>(selector)), record, data, result);
  } catch (const std::bad_alloc&) {
    *result = CV_RESULT_NO_MEMORY;
  } catch (...) {
    *result = FAILED;
  }
  return 0;
}
