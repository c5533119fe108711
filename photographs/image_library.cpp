#include "image_library.h"

#include "termination.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <mutex>
#include <vips/vips8>

namespace limn {
namespace {

SizeLimit sizeLimit;
std::mutex logLock;
std::string firstWarning;

// Remarks about a file's extras that say nothing about its pixels, and that common cameras and
// editors give rise to.
bool IsHarmless(const char* message) {
  for (const char* remark :
       {"Unknown field with tag", "does not end in null byte", "tags are not sorted",
        "ignoring nclx profile", "iCCP: ", "sRGB: ", "gAMA: ", "cHRM: "})
    if (std::strstr(message, remark) != nullptr)
      return true;
  return false;
}

void KeepWarning(const char*, GLogLevelFlags level, const char* message, void*) {
  if ((level & G_LOG_LEVEL_ERROR) != 0)
    // GLib aborts after such a message, and gives one only when it cannot allocate.
    RemoveTemporaryAndExit(ExitCode::NoMemory);
  if ((level & (G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL)) == 0 || message == nullptr ||
      IsHarmless(message))
    return;
  const std::lock_guard<std::mutex> hold(logLock);
  if (firstWarning.empty())
    firstWarning = message;
}

// The first line that says something, without the name of the operation or library in front.
std::string Sentence(std::string text) {
  text.erase(0, text.find_first_not_of("\n "));
  text.erase(std::min(text.find('\n'), text.size()));
  for (size_t colon = text.find(": "); colon != std::string::npos; colon = text.find(": ")) {
    const std::string prefix = text.substr(0, colon);
    if (prefix.empty() || prefix.find(' ') != std::string::npos)
      break;
    text.erase(0, colon + 2);
  }
  while (!text.empty() && (text.back() == '.' || text.back() == ' '))
    text.pop_back();
  return text;
}

} // namespace

void StartImageLibrary(int threads, const SizeLimit& limit) {
  sizeLimit = limit;
  g_log_set_default_handler(KeepWarning, nullptr);
  if (vips_init("limn") != 0)
    throw Failure(ExitCode::Refused, "libvips does not start: " + Sentence(vips_error_buffer()));
  vips_concurrency_set(threads);
  // Each image is used once; a cache would only keep dead pictures in memory.
  vips_cache_set_max(0);
  vips_block_untrusted_set(TRUE);
  vips_operation_block_set("VipsForeignLoadPpm", FALSE);
  // A table of numbers in a text file is no photograph.
  vips_operation_block_set("VipsForeignLoadMatrix", TRUE);
}

const SizeLimit& ImageSizeLimit() {
  return sizeLimit;
}

Complaints::Complaints() {
  const std::lock_guard<std::mutex> hold(logLock);
  firstWarning.clear();
  vips_error_clear();
}

Complaints::~Complaints() {
  vips_error_clear();
}

void Complaints::Check(ExitCode code, const std::string& file) const {
  const std::lock_guard<std::mutex> hold(logLock);
  if (!firstWarning.empty())
    throw Failure(code, file + ": " + Sentence(firstWarning));
}

Failure LibraryFailure(ExitCode code, const std::string& file) {
  const std::string text = vips_error_buffer();
  vips_error_clear();
  // What libheif calls an allocation error when it declines to allocate.
  if (const size_t limit = text.find("Security limit"); limit != std::string::npos)
    return {code, file + ": " + Sentence(text.substr(limit))};
  for (const char* words :
       {"out of memory", "Out of memory", "Insufficient memory", "alloc", "creating thread"})
    if (text.find(words) != std::string::npos)
      return {ExitCode::NoMemory, file + ": not enough memory"};
  std::string sentence = Sentence(text);
  if (sentence == "operation is blocked")
    sentence = "is of a kind whose reader is not made for strangers' files";
  if (sentence.empty()) {
    const std::lock_guard<std::mutex> hold(logLock);
    sentence = firstWarning.empty() ? "libvips gave no reason" : Sentence(firstWarning);
  }
  return {code, file + ": " + sentence};
}

Failure CaughtLibraryFailure(ExitCode code, const std::string& file) {
  try {
    throw;
  } catch (const vips::VError&) {
    return LibraryFailure(code, file);
  } catch (...) {
    return CaughtFailure(file);
  }
}

} // namespace limn
