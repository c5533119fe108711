#include "report.h"

#include "posix_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

namespace limn {
namespace {

// Length of the UTF-8 character at the start of `text`, or 0 when there is none that may be
// printed.
size_t CharacterLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t first = byte(0);
  if (first < 0x80)
    return first < 0x20 || first == 0x7f ? 0 : 1;
  const size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
  if (first < 0xc2 || first > 0xf4 || text.size() < length)
    return 0;
  for (size_t i = 1; i < length; ++i)
    if ((byte(i) & 0xc0) != 0x80)
      return 0;
  // Longer than need be, half of a pair, or beyond the last character.
  if ((first == 0xe0 && byte(1) < 0xa0) || (first == 0xed && byte(1) >= 0xa0) ||
      (first == 0xf0 && byte(1) < 0x90) || (first == 0xf4 && byte(1) >= 0x90))
    return 0;
  // The control characters above ASCII.
  return first == 0xc2 && byte(1) < 0xa0 ? 0 : length;
}

} // namespace

std::string Printable(std::string_view text) {
  std::string printable;
  while (!text.empty()) {
    const size_t length = CharacterLength(text);
    printable += length == 0 ? std::string_view("?") : text.substr(0, length);
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return printable;
}

void PrintProblem(const std::string& sentence) {
  const std::string line = "limn: " + Printable(sentence) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void PrintText(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

void PrintLine(const std::string& line) {
  PrintText(line + "\n");
}

bool CanPrint(int descriptor) {
  pollfd output{descriptor, POLLOUT, 0};
  return poll(&output, 1, 0) != 0;
}

ExitCode FlushedOutput(ExitCode code) {
  if (code == ExitCode::Cancelled && !CanPrint(STDOUT_FILENO))
    _exit(static_cast<int>(code));
  if ((std::fflush(stdout) == 0 && std::ferror(stdout) == 0) || code == ExitCode::Cancelled)
    return code;
  PrintProblem("standard output: cannot be written");
  return std::max(code, ExitCode::CannotWrite);
}

int ReportedExit(const std::function<ExitCode()>& run) {
  ExitCode code = ExitCode::Refused;
  try {
    if (!HoldStandardFiles())
      throw Failure(ExitCode::Refused, "standard input, output or error is closed");
    code = run();
  } catch (...) {
    const Failure failure = CaughtFailure();
    PrintProblem(failure.what());
    code = failure.Code();
  }
  return static_cast<int>(code);
}

} // namespace limn
