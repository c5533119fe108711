#include "report.h"

#include "posix_file.h"

#include "TB_Text.h"

#include <algorithm>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

namespace limn {
std::string Printable(std::string_view text) {
  return TB_Printable(text);
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
