#include "temporary_sweep.h"

#include "posix_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace limn {
namespace {

bool IsTemporaryName(const std::string& name) {
  int end = 0;
  return std::sscanf(name.c_str(), ".limn-%*[0-9]-%*16[0-9a-f].tmp%n", &end) == 0 && end > 0 &&
         static_cast<size_t>(end) == name.size();
}

// Going by a lock, and not by the process number in the name, holds for processes of other machines
// and containers too, and when the number has been given to another process.
void RemoveUnlessHeld(const std::string& path) {
  const Descriptor file(
      open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat opened {};
  struct stat named {};
  if (file.Number() < 0 || fstat(file.Number(), &opened) != 0 || !S_ISREG(opened.st_mode) ||
      flock(file.Number(), LOCK_EX | LOCK_NB) != 0)
    return;
  // Its writer may have given it its name, or another sweeper may have removed it, just before.
  if (lstat(path.c_str(), &named) == 0 && named.st_ino == opened.st_ino &&
      named.st_dev == opened.st_dev)
    unlink(path.c_str());
}

} // namespace

bool HoldTemporary(int descriptor) {
  if (flock(descriptor, LOCK_EX | LOCK_NB) != 0)
    return errno != EWOULDBLOCK;
  struct stat status {};
  return fstat(descriptor, &status) == 0 && status.st_nlink > 0;
}

void SweepTemporaries(const std::string& folder) {
  static std::set<std::string> swept;
  if (!swept.insert(folder).second)
    return;
  std::vector<std::string> found;
  std::error_code error;
  const std::filesystem::directory_iterator end;
  for (std::filesystem::directory_iterator entry(folder, error); !error && entry != end;
       entry.increment(error))
    if (IsTemporaryName(entry->path().filename().string()))
      found.push_back(entry->path().string());
  for (const std::string& path : found)
    RemoveUnlessHeld(path);
}

} // namespace limn
