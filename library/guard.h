// The border between C++ and C: failures are thrown on the one side and reported on the other.
#pragma once

#include "limn.h"

#include "LM_floating_point.h"
#include "failure.h"

#include <new>
#include <string>

namespace limn {

// Ends a call of the library with this code and sentence.
using CallFailure = CodedFailure<limn_result>;

// Fills the caller's error: bytes that are not UTF-8 become U+FFFD, and it is cut between
// characters where it is full. error: may be null.
void Report(limn_error* error, limn_result code, const char* text) noexcept;

// Runs `work` and turns what it throws into the call's error.
template <class Work> limn_result Guard(limn_error* error, Work work) noexcept {
  try {
    const LM_floating_point floatingPoint;
    work();
    Report(error, LIMN_OK, "");
    return LIMN_OK;
  } catch (const CallFailure& failure) {
    Report(error, failure.Code(), failure.what());
    return failure.Code();
  } catch (const Failure& failure) { // of a file
    Report(error, LIMN_CANNOT_READ, failure.what());
    return LIMN_CANNOT_READ;
  } catch (const std::bad_alloc&) {
    Report(error, LIMN_NO_MEMORY, "there is not enough memory");
    return LIMN_NO_MEMORY;
  } catch (...) {
    Report(error, LIMN_FAILED, "the library failed");
    return LIMN_FAILED;
  }
}

// What `work` makes; null or 0, and the call's error, where it throws.
template <class Made, class Work> Made GuardedMade(limn_error* error, Work work) noexcept {
  Made made = {};
  Guard(error, [&] { made = work(); });
  return made;
}

// Throws LIMN_BAD_ARGUMENT about a pointer that is null; `name` is the argument's.
void NeedPointer(const void* pointer, const char* name);

// Writes text as the C interface hands it out: cut where `room` is full, ending with a zero, the
// whole length returned.
size_t CopyText(const std::string& text, char* buffer, size_t room) noexcept;

} // namespace limn
