// libvips, started once in each process that touches images, and what it has to say.
#pragma once

#include "failure.h"

#include <cstdint>
#include <string>

namespace limn {

// How large an image may be. pixels: 0 for limits that no photograph reaches, lower ones where a
// format has to be decoded whole. advice: what a message about the limit ends with.
struct SizeLimit {
  uint64_t pixels = 0;
  const char* advice = "";
};

// The advice of the commands that take the option.
constexpr const char* MAX_PIXELS_ADVICE = "; --max-pixels sets another limit";

// As many threads as the machine runs at a time.
constexpr int ALL_THREADS = 0;

// Starts libvips with `threads` threads, without its operation cache, and with the loaders that are
// not meant for strangers' files switched off (all but PPM, Radiance and OpenEXR). Call it in the
// process that uses it, never before a fork. Throws Failure(Refused).
// From here on GLib's log does not reach the terminal; see Complaints. When GLib itself cannot get
// memory the process exits with ExitCode::NoMemory.
void StartImageLibrary(int threads, const SizeLimit& limit = {});

bool IsImageLibraryStarted();

// What StartImageLibrary was given.
const SizeLimit& ImageSizeLimit();

// The warnings that libvips, its loaders and GLib gave since construction, from any thread. A
// picture made with one of them pending may hold wrong pixels. One object at a time.
class Complaints {
public:
  Complaints();
  ~Complaints();
  Complaints(const Complaints&) = delete;
  Complaints& operator=(const Complaints&) = delete;

  // Throws Failure(code, "FILE: WARNING") with the first warning if there was any; NoMemory when
  // it is about that.
  void Check(ExitCode code, const std::string& file) const;
};

// Turns libvips' error, which it empties, into a failure about `file`: NoMemory when that is what
// it was, otherwise `code`.
Failure LibraryFailure(ExitCode code, const std::string& file);

// In a catch block: the same for an error of libvips; anything else as CaughtFailure has it.
Failure CaughtLibraryFailure(ExitCode code, const std::string& file);

// What `work` makes of a file; whatever goes wrong inside, warnings included, becomes a failure
// about it. No Complaints may be held.
template <class Work> auto Guarded(const std::string& file, const Work& work) {
  const Complaints complaints;
  try {
    auto result = work();
    complaints.Check(ExitCode::BadInput, file);
    return result;
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, file);
  }
}

} // namespace limn
