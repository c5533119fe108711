#include "posix_file.h"

#include "failure.h"

#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace limn {

Descriptor::~Descriptor() {
  if (_number >= 0)
    close(_number);
}

std::string SystemReason(int error) {
  std::string reason = std::generic_category().message(error);
  if (reason.size() > 1 && std::islower(static_cast<unsigned char>(reason[1])) != 0)
    reason[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(reason[0])));
  return reason;
}

Descriptor OpenRegularFile(const std::string& path) {
  // Without O_NONBLOCK the open itself would wait for the other end of a pipe.
  Descriptor file(Uninterrupted(
      [&] { return open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
  if (file.Number() < 0)
    throw Failure(ExitCode::BadInput, path + ": " + SystemReason(errno));
  struct stat status {};
  if (fstat(file.Number(), &status) != 0)
    throw Failure(ExitCode::BadInput, path + ": " + SystemReason(errno));
  if (S_ISDIR(status.st_mode))
    throw Failure(ExitCode::BadInput, path + ": is a folder, not a file");
  if (!S_ISREG(status.st_mode))
    throw Failure(ExitCode::BadInput, path + ": is not a regular file");
  return file;
}

bool HoldStandardFiles() {
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(number, F_GETFD) >= 0)
      continue;
    // The lowest number that is free. Opened the wrong way round, and kept by every new program.
    const int opened = open("/dev/null", number == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    if (opened != number)
      return false;
  }
  return true;
}

} // namespace limn
