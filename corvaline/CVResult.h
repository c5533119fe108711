// What became of something the host was asked to do: a code to act on and a sentence to show.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

enum class CVOutcome {
  Done,
  Cancelled,  // by the user: through the cancel test, or in the plug-in's dialog
  Stopped,    // the plug-in gave up and has itself told the user why
  NoMemory,   // here or in the plug-in
  BadImage,   // the document, the filter area or other arguments of the caller
  BadPlugin,  // the module cannot be loaded, or a run of it is under way
  BadMode,    // the plug-in does not work on this colour mode
  BadRequest, // the plug-in asked for what no host can deliver, or never ended
  Failed      // any other code of the plug-in
};

// `code` is the plug-in's own 16-bit answer where there is one, else 0. `message` is one sentence
// without a final stop, empty only with Done.
struct CVResult {
  CVOutcome outcome = CVOutcome::Done;
  int16_t code = 0;
  std::string message;

  bool ok() const { return outcome == CVOutcome::Done; }
};

// The answer for memory that could not be had. `what`: what it was for, a literal. Never throws.
CVResult CVOutOfMemory(const char* what) noexcept;

// What `work` returns; its exceptions, which here can only mean that memory ran out, become a
// result.
template <typename Work> CVResult CVGuarded(const char* what, Work work) noexcept {
  try {
    return work();
  } catch (const std::exception&) {
    return CVOutOfMemory(what);
  }
}
