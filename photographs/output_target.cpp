#include "output_target.h"

#include "failure.h"

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace limn {

void CheckTarget(const std::string& input, const OutputName& output, Existing existing) {
  const std::string target = ResolveTarget(output.path);
  if (target == STANDARD_OUTPUT && isatty(STDOUT_FILENO) != 0)
    throw Failure(ExitCode::WrongUsage,
                  "standard output is a terminal, which shows no picture; send it into a file");
  struct stat status {};
  if (existing == Existing::Replace || target == STANDARD_OUTPUT ||
      stat(target.c_str(), &status) != 0)
    return;
  struct stat source {};
  if (stat(input.c_str(), &source) == 0 && source.st_ino == status.st_ino &&
      source.st_dev == status.st_dev)
    throw Failure(ExitCode::CannotWrite,
                  output.path + ": is the input itself; --force replaces it");
  throw AlreadyThere(output.path);
}

void CheckFolder(const std::string& target) {
  std::error_code none;
  std::filesystem::path folder = std::filesystem::absolute(target, none).parent_path();
  while (folder.has_relative_path() && !std::filesystem::exists(folder, none))
    folder = folder.parent_path();
  if (target != STANDARD_OUTPUT && access(folder.c_str(), W_OK | X_OK) != 0)
    throw Failure(ExitCode::CannotWrite, folder.string() + ": " + SystemReason(errno));
}

} // namespace limn
