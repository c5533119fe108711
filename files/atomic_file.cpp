#include "atomic_file.h"

#include "failure.h"
#include "temporary_sweep.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace limn {
namespace {

constexpr int MOST_ATTEMPTS = 20;

uint64_t temporaryMark = 0; // 0: not drawn yet
// Fixed storage, because a signal handler reads it.
char temporaryInProgress[PATH_MAX] = "";

[[noreturn]] void Fail(const std::string& target, int error) {
  throw Failure(ExitCode::CannotWrite, target + ": " + SystemReason(error));
}

// A folder that cannot be flushed (some network file systems) still holds the renamed file.
void FlushFolder(const std::string& path, const std::string& target) {
  const Descriptor folder(
      Uninterrupted([&] { return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
  if (folder.Number() < 0)
    return;
  if (Uninterrupted([&] { return fsync(folder.Number()); }) != 0 && errno == EIO)
    Fail(target, EIO);
}

// 0 or -1 with errno, as rename() has it; EEXIST when the new name stands for something, ENOSYS
// where a system's headers do not have the call.
int RenameIfFree(const char* from, const char* to) {
#ifdef RENAME_NOREPLACE
  return renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
#else
  static_cast<void>(from), static_cast<void>(to);
  errno = ENOSYS;
  return -1;
#endif
}

// Gives the new file the replaced one's owner, as far as this user may, and its permissions, short
// of running as its owner. Where it cannot have the old group, the group that it has may do what
// strangers may. 0 or the system's error.
int TakeAccess(int descriptor, const struct stat& old) {
  struct stat own {};
  if (fstat(descriptor, &own) != 0)
    return errno;
  mode_t mode = old.st_mode & 0777;
  const bool isSame = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
  if (!isSame && fchown(descriptor, old.st_uid, old.st_gid) != 0 && own.st_gid != old.st_gid &&
      fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0)
    mode = (mode & 0707) | (mode & 07) << 3;
  return fchmod(descriptor, mode) == 0 || errno == EPERM ? 0 : errno;
}

} // namespace

void DrawTemporaryMark() {
  // More than a process number tells apart: processes of other containers and machines may have the
  // same one.
  if (getentropy(&temporaryMark, sizeof temporaryMark) != 0)
    temporaryMark =
        static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) ^
        static_cast<uint64_t>(getpid()) << 40;
}

const char* TemporaryInProgress() {
  return temporaryInProgress;
}

std::string TemporaryPath(const std::string& target, pid_t process) {
  if (temporaryMark == 0)
    DrawTemporaryMark();
  char name[64];
  std::snprintf(name, sizeof name, ".limn-%ld-%016llx.tmp", static_cast<long>(process),
                static_cast<unsigned long long>(temporaryMark));
  return (std::filesystem::path(target).parent_path() / name).string();
}

std::string FolderOf(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  return folder.empty() ? "." : folder;
}

bool IsStandardOutput(const std::string& path) {
  return path == STANDARD_OUTPUT || path.starts_with("-.");
}

std::string ResolveTarget(const std::string& path) {
  if (IsStandardOutput(path))
    return STANDARD_OUTPUT;
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT && errno != ENOTDIR)
      Fail(path, errno);
    // Another run's file may have come by now.
    if (lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode))
      throw Failure(ExitCode::CannotWrite, path + ": is a link to nothing");
    return path;
  }
  if (!S_ISREG(status.st_mode))
    throw Failure(ExitCode::CannotWrite, path + ": is there already, and is not a regular file");
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(path, error);
  if (error)
    Fail(path, error.value());
  return real.string();
}

AtomicFile::AtomicFile(std::string target, Existing existing)
    : _target(std::move(target)), _existing(existing) {
  if (_target == STANDARD_OUTPUT) {
    _file = OpenUnnamedFile();
    return;
  }
  _temporary = TemporaryPath(_target, getpid());
  if (_temporary.size() >= sizeof temporaryInProgress)
    Fail(_target, ENAMETOOLONG);
  // Noted before the file exists: removing one that is not there does no harm.
  // Its first letter comes last, so that a signal never meets half a name.
  std::memcpy(temporaryInProgress + 1, _temporary.c_str() + 1, _temporary.size());
  std::atomic_signal_fence(std::memory_order_release);
  temporaryInProgress[0] = _temporary[0];
  try {
    _Open();
  } catch (...) {
    _RemoveTraces(); // the file too, where it was made and could not be held
    throw;
  }
}

void AtomicFile::_Open() {
  SweepOnce(FolderOf(_target));
  // What replaces a private file is private from its first byte.
  struct stat old {};
  const bool isReplacing = _existing == Existing::Replace && stat(_target.c_str(), &old) == 0;
  const mode_t mode = isReplacing ? 0600 : 0666;
  int error = 0;
  for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
    constexpr int FLAGS = O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    _file = Descriptor(Uninterrupted([&] { return open(_temporary.c_str(), FLAGS, mode); }));
    error = _file.Number() < 0 ? errno : EAGAIN;
    if (_file.Number() >= 0 && HoldTemporary(_file.Number()))
      return;
    if (error == ENOENT)
      _MakeFolder(); // which another run may remove again, as it may have swept the file
    else if (error != EAGAIN)
      break;
    _file = Descriptor();
  }
  Fail(_target, error);
}

void AtomicFile::_MakeFolder() {
  std::filesystem::path made;
  for (const std::filesystem::path& part : std::filesystem::path(FolderOf(_target))) {
    made /= part;
    if (access(made.c_str(), F_OK) == 0)
      continue;
    if (mkdir(made.c_str(), 0777) == 0)
      _madeFolders.push_back(made.string());
    else if (errno != EEXIST)
      Fail(made.string(), errno);
  }
}

void AtomicFile::_RemoveTraces() {
  if (!_temporary.empty())
    unlink(_temporary.c_str());
  temporaryInProgress[0] = '\0';
  for (; !_madeFolders.empty(); _madeFolders.pop_back())
    rmdir(_madeFolders.back().c_str()); // unless somebody uses it
}

AtomicFile::~AtomicFile() {
  _RemoveTraces();
}

void AtomicFile::Write(const void* bytes, size_t size) {
  if (!WriteAll(_file.Number(), {static_cast<const char*>(bytes), size}))
    Fail(_target, errno);
}

void AtomicFile::CheckRoom() {
  constexpr char PIECE[64 << 10] = {};
  lseek(_file.Number(), 0, SEEK_END);
  Write(PIECE, sizeof PIECE);
}

void AtomicFile::StartFlush() const {
#ifdef SYNC_FILE_RANGE_WRITE
  static_cast<void>(sync_file_range(_file.Number(), 0, 0, SYNC_FILE_RANGE_WRITE));
#endif
}

void AtomicFile::Commit() {
  if (_target == STANDARD_OUTPUT) {
    lseek(_file.Number(), 0, SEEK_SET);
    CopyFile(_file.Number(), STDOUT_FILENO, ExitCode::CannotWrite, "standard output");
    return;
  }
  struct stat old {};
  if (_existing == Existing::Replace && stat(_target.c_str(), &old) == 0)
    if (const int error = TakeAccess(_file.Number(), old); error != 0)
      Fail(_target, error);
  if (Uninterrupted([&] { return fsync(_file.Number()); }) != 0)
    Fail(_target, errno);
  // Some file systems report a full disk only when a descriptor is closed. Ours stays open, and the
  // file with it held against sweeping, until it has its name.
  const int second = fcntl(_file.Number(), F_DUPFD_CLOEXEC, 0);
  // An interrupted close has closed it all the same.
  if (second < 0 || (close(second) != 0 && errno != EINTR))
    Fail(_target, errno);
  const std::string folder = FolderOf(_target); // no allocation may fail once the name is given
  _GiveName();
  _temporary.clear();
  _madeFolders.clear();
  temporaryInProgress[0] = '\0';
  FlushFolder(folder, _target);
}

void AtomicFile::_GiveName() {
  if (_existing == Existing::Keep) {
    if (RenameIfFree(_temporary.c_str(), _target.c_str()) == 0)
      return;
    if (errno == EEXIST)
      throw AlreadyThere(_target);
    if (errno != EINVAL && errno != ENOSYS)
      Fail(_target, errno);
    // A file system without that call: the check below can be overtaken, but only just.
    struct stat there {};
    if (lstat(_target.c_str(), &there) == 0)
      throw AlreadyThere(_target);
  }
  if (rename(_temporary.c_str(), _target.c_str()) != 0)
    Fail(_target, errno);
}

} // namespace limn
