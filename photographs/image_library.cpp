#include "image_library.h"

#include "termination.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <mutex>
#include <string_view>
#include <thread>
#include <vips/vips8>

namespace limn {
namespace {

SizeLimit sizeLimit;
bool isStarted = false;
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

// What libraries say when memory runs out, and what only sounds like it. The first that fits
// counts.
struct KnownSentence {
  std::string_view words;
  bool isShortMemory;
};
constexpr KnownSentence SENTENCES[] = {
    {"Security limit", false},    // libheif declines to allocate what a file claims
    {"byte limit", false},        // so does libtiff
    {"ut of memory", true},       // libvips, libpng, libtiff, libgif
    {"nsufficient memory", true}, // libjpeg, libpng
    {"ot enough memory", true},   // OpenJPEG, libtiff
    {"memory error", true},       // libwebp's picture
    {"emory allocation", true},   // libheif
    {"ailed to allocate", true},  // GLib, libvips, libtiff
    {"nable to allocate", true},  // libtiff
    {"annot allocate", true},     // libtiff, the system
    {"No space for", true},       // libtiff's coders
    {"creating thread", true},    // libvips
};

// libtiff says how much it asked for. Nothing at all, or more than a photograph's tables take, is
// what a damaged file asks for.
bool IsAbsurdRequest(const std::string& text) {
  constexpr double MOST_BYTES = 1 << 30;
  const size_t bracket = text.find('(');
  const size_t elements = text.find(" elements of ");
  if (bracket == std::string::npos || elements == std::string::npos || bracket > elements)
    return false;
  const double number = std::atof(text.c_str() + bracket + 1);
  const double size = std::atof(text.c_str() + elements + std::strlen(" elements of "));
  return number <= 0 || number * size > MOST_BYTES;
}

// Whether a library that says this has run out of memory.
bool IsShortMemory(const std::string& text) {
  if (IsAbsurdRequest(text))
    return false;
  for (const KnownSentence& known : SENTENCES)
    if (text.find(known.words) != std::string::npos)
      return known.isShortMemory;
  return false;
}

} // namespace

void StartImageLibrary(int threads, const SizeLimit& limit) {
  sizeLimit = limit;
  g_log_set_default_handler(KeepWarning, nullptr);
  if (vips_init("limn") != 0)
    throw Failure(ExitCode::Refused, "libvips does not start: " + Sentence(vips_error_buffer()));
  const unsigned all = std::max(1U, std::thread::hardware_concurrency());
  isStarted = true;
  vips_concurrency_set(threads == ALL_THREADS ? static_cast<int>(all) : threads);
  // Each image is used once; a cache would only keep dead pictures in memory.
  vips_cache_set_max(0);
  vips_block_untrusted_set(TRUE);
  vips_operation_block_set("VipsForeignLoadPpm", FALSE);
  vips_operation_block_set("VipsForeignLoadRad", FALSE);
  vips_operation_block_set("VipsForeignLoadOpenexr", FALSE);
  // A table of numbers in a text file is no photograph.
  vips_operation_block_set("VipsForeignLoadMatrix", TRUE);
}

bool IsImageLibraryStarted() {
  return isStarted;
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
  if (!firstWarning.empty() && IsShortMemory(firstWarning))
    throw Failure(ExitCode::NoMemory, file + ": not enough memory");
  if (!firstWarning.empty())
    throw Failure(code, file + ": " + Sentence(firstWarning));
}

Failure LibraryFailure(ExitCode code, const std::string& file) {
  const std::string text = vips_error_buffer();
  vips_error_clear();
  if (IsShortMemory(text))
    return {ExitCode::NoMemory, file + ": not enough memory"};
  // What libheif calls an allocation error when it declines to allocate.
  const size_t limit = text.find("Security limit");
  std::string sentence = Sentence(limit == std::string::npos ? text : text.substr(limit));
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
