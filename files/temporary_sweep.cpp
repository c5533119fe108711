#include "temporary_sweep.h"

#include "posix_file.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace limn {
namespace {

// How long a writer waits for a sweeper, in steps of a millisecond.
constexpr int PATIENCE = 1000;

bool IsTemporaryName(const std::string& name) {
  int token = 0;
  int ending = 0;
  int end = 0;
  std::sscanf(name.c_str(), ".limn-%*[0-9]-%n%*16[0-9a-f]%n.tmp%n", &token, &ending, &end);
  return ending - token == 16 && end > 0 && static_cast<size_t>(end) == name.size();
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
  // A sweeper has it for a moment only, and must be done with the name before the name is used
  // again: what it removes would be the new file.
  int waits = 0;
  while (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR)
      return true;
    if (++waits > PATIENCE)
      return false;
    usleep(1000);
  }
  struct stat status {};
  return fstat(descriptor, &status) == 0 && status.st_nlink > 0;
}

void SweepTemporaries(const std::string& folder) {
  // Not by the C++ library's iterator, which ends the program when memory runs out.
  const std::unique_ptr<DIR, int (*)(DIR*)> listed(opendir(folder.c_str()), closedir);
  std::vector<std::string> found;
  while (const dirent* entry = listed != nullptr ? readdir(listed.get()) : nullptr)
    if (IsTemporaryName(entry->d_name))
      found.push_back(folder + "/" + entry->d_name);
  for (const std::string& path : found)
    RemoveUnlessHeld(path);
}

void SweepOnce(const std::string& folder) {
  static std::set<std::string> swept;
  if (swept.insert(folder).second)
    SweepTemporaries(folder);
}

} // namespace limn
