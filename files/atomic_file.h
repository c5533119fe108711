// A file that appears under its name complete, or not at all.
#pragma once

#include "posix_file.h"

#include <string>
#include <sys/types.h>

namespace limn {

enum class Existing { Keep, Replace };

// Draws the random mark in the names of this run's temporary files. Without it each process draws
// its own when it first needs one; called before a fork, parent and child have the same.
void DrawTemporaryMark();

// The temporary file that process `process` of this run uses for `target`: beside it, so that the
// rename stays within one file system. A process writes one target at a time.
std::string TemporaryPath(const std::string& target, pid_t process);

// Where a write to `path` ends up: the file behind a link, or `path` itself when nothing is there.
// Throws Failure(CannotWrite) when what is there is not a regular file.
std::string ResolveTarget(const std::string& path);

// The writer goes to a temporary file beside the target. Only Commit gives it the target's name; a
// writer that is destroyed before leaves the target as it was and removes the temporary file.
class AtomicFile {
public:
  // target: as ResolveTarget gives it. Throws Failure(CannotWrite) naming `target`.
  AtomicFile(std::string target, Existing existing);
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;
  ~AtomicFile();

  // Open for reading and writing, at the start. Owned by this object.
  int DescriptorNumber() const { return _file.Number(); }
  // Throws Failure(CannotWrite).
  void Write(const void* bytes, size_t size);
  // For when somebody else's writing through the descriptor has failed: throws Failure(CannotWrite)
  // with the system's reason when the file cannot grow, because the disk is full or a limit is
  // reached. Else it has made the file longer.
  void CheckRoom();

  // Flushes the content to the disk, renames, and flushes the folder. With Existing::Keep a file
  // that has meanwhile appeared under the name is left alone and is a failure. A replaced file's
  // permissions are kept, and its owner and group as far as the user may give them. Throws
  // Failure(CannotWrite).
  void Commit();
  // Whether the target's name is given, which a Commit that fails to flush the folder has done too.
  bool HasName() const { return _temporary.empty(); }

private:
  void _GiveName();

  std::string _target;
  std::string _temporary;
  Existing _existing;
  Descriptor _file;
};

// The temporary file that this process is writing now, or an empty string. For signal handlers.
const char* TemporaryInProgress();

} // namespace limn
