#include "edit.h"

#include "posix_file.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace limn {

void BecomeEdit(char** argv) {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) // and not a program of this name in the current folder
    throw Failure(ExitCode::Refused, "/proc/self/exe: " + SystemReason(error.value()));
  const std::string program = (self.parent_path() / "limn-edit").string();
  execv(program.c_str(), argv + 1);
  const int reason = errno;
  if (reason == ENOENT)
    throw Failure(ExitCode::Refused, "the dialog is not installed: there is no " + program);
  throw Failure(ExitCode::Refused, program + ": " + SystemReason(reason));
}

} // namespace limn
