// A file that appears under its name complete, or not at all.
#pragma once

#include "failure.h"
#include "posix_file.h"

#include <string>
#include <sys/types.h>
#include <vector>

namespace limn {

enum class Existing { Keep, Replace };

// The target that stands for standard output.
constexpr const char* STANDARD_OUTPUT = "-";
// Whether a name means standard output: "-", or with the format of what is written, "-.png".
bool IsStandardOutput(const std::string& path);

// What is thrown where Existing::Keep meets a file.
class AlreadyThere : public Failure {
public:
  explicit AlreadyThere(const std::string& path)
      : Failure(ExitCode::CannotWrite, path + ": exists already; --force replaces it") {}
};

// Draws the random mark in the names of this run's temporary files. Without it each process draws
// its own when it first needs one; called before a fork, parent and child have the same.
void DrawTemporaryMark();

// The temporary file that process `process` of this run uses for `target`: beside it, so that the
// rename stays within one file system. A process writes one target at a time.
std::string TemporaryPath(const std::string& target, pid_t process);

// The folder that a file lies in.
std::string FolderOf(const std::string& path);

// Where a write to `path` ends up: the file behind a link, `path` itself when nothing is there, or
// STANDARD_OUTPUT. Throws Failure(CannotWrite) when what is there is not a regular file.
std::string ResolveTarget(const std::string& path);

// The writer goes to a temporary file beside the target, in a folder that is made if need be. Only
// Commit gives it the target's name; a writer that is destroyed before leaves the target as it was
// and removes the temporary file, and the folders that it made if they are empty. What is to go to
// standard output is kept in a file without a name, and goes there whole.
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

  // Has the disk begin with what is there while more is written, so that Commit waits less for it.
  // A hint: nothing where the system has no such call.
  void StartFlush() const;
  // Flushes the content to the disk, renames, and flushes the folder. With Existing::Keep a file
  // that has meanwhile appeared under the name is left alone: AlreadyThere. A replaced file's
  // permissions are kept, and its owner and group as far as the user may give them. Throws
  // Failure(CannotWrite).
  void Commit();
  // Whether the target's name is given, which a Commit that fails to flush the folder has done too.
  bool HasName() const { return _temporary.empty(); }

private:
  void _Open();
  void _MakeFolder();
  void _RemoveTraces();
  void _GiveName();

  std::string _target;
  std::string _temporary;
  Existing _existing;
  Descriptor _file;
  std::vector<std::string> _madeFolders; // outermost first
};

// The temporary file that this process is writing now, or an empty string. For signal handlers.
const char* TemporaryInProgress();

} // namespace limn
