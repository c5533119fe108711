// A filter plug-in without a mind of its own: it passes every call on to what a test put into
// `testScript`.
#include "CVFilterRecord.h"

#define EXPORT extern "C" __attribute__((visibility("default")))

EXPORT CVFilterEntry testScript;
CVFilterEntry testScript = nullptr;

// The entry point has the one name that C++ keeps for itself.
EXPORT int filterMain(int selector, void* record, intptr_t* data, int16_t* result) __asm__("main");

int filterMain(int selector, void* record, intptr_t* data, int16_t* result) {
  *result = CV_RESULT_OK;
  return testScript != nullptr ? testScript(selector, record, data, result) : 0;
}
