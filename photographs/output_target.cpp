#include "output_target.h"

#include "failure.h"

#include <filesystem>
#include <sys/stat.h>

namespace limn {

void CheckTarget(const std::string& input, const OutputName& output, Existing existing) {
  const std::string target = ResolveTarget(output.path);
  struct stat status {};
  if (existing == Existing::Replace || stat(target.c_str(), &status) != 0)
    return;
  struct stat source {};
  if (stat(input.c_str(), &source) == 0 && source.st_ino == status.st_ino &&
      source.st_dev == status.st_dev)
    throw Failure(ExitCode::CannotWrite,
                  output.path + ": is the input itself; --force replaces it");
  throw Failure(ExitCode::CannotWrite, output.path + ": exists already; --force replaces it");
}

void MakeFolder(const std::string& target) {
  const std::filesystem::path folder = std::filesystem::path(target).parent_path();
  std::error_code error;
  if (!folder.empty() && !std::filesystem::exists(folder, error))
    std::filesystem::create_directories(folder, error);
  if (error)
    throw Failure(ExitCode::CannotWrite, folder.string() + ": " + SystemReason(error.value()));
}

} // namespace limn
