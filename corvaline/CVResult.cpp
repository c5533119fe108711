#include "CVResult.h"

#include "CVFilterRecord.h"

#include <exception>

CVResult CVOutOfMemory(const char* what) noexcept {
  CVResult result;
  result.outcome = CVOutcome::NoMemory;
  result.code = CV_RESULT_NO_MEMORY;
  try {
    result.message = std::string("not enough memory for ") + what;
  } catch (const std::exception&) {
    result.message = "out of memory"; // short enough to need none
  }
  return result;
}
