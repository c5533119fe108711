#include "MacFiles.h"

#include "TB_FilePlace.h"
#include "TB_FileTable.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace {

// Flags for every open: a pipe must not block before it is recognised, a terminal not take over.
constexpr int OPEN_FLAGS = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

OSErr Result(bool done) {
  return done ? noErr : TB_ErrorFor(errno);
}

// Repeats a call of the system that a signal interrupts.
template <typename Call> int Uninterrupted(Call call) {
  for (;;) {
    const int result = call();
    if (result >= 0 || errno != EINTR)
      return result;
  }
}

int OpenFile(const std::string& path, int flags) {
  return Uninterrupted([&] { return open(path.c_str(), flags | OPEN_FLAGS, 0666); });
}

// Whether what lies there may be opened: regular, and for writing neither a link nor locked.
OSErr CheckOpenable(const struct stat& status, bool writing) {
  if (writing && S_ISLNK(status.st_mode))
    return permErr;
  if (!S_ISREG(status.st_mode))
    return notAFileErr;
  return writing && TB_IsLocked(status) ? permErr : noErr;
}

OSErr OpenPlace(const std::string& path, int8_t permission, int16_t* refNum) {
  const bool writing = permission != fsRdPerm;
  struct stat status;
  if (OSErr err = TB_StatusOf(path, writing ? TB_Links::Keep : TB_Links::Follow, &status))
    return err;
  if (OSErr err = CheckOpenable(status, writing))
    return err;
  const int access = permission == fsRdPerm   ? O_RDONLY
                     : permission == fsWrPerm ? O_WRONLY | O_NOFOLLOW
                                              : O_RDWR | O_NOFOLLOW;
  auto file = std::make_shared<TB_OpenFile>();
  file->descriptor = OpenFile(path, access);
  if (file->descriptor < 0)
    return errno == EROFS ? permErr : TB_ErrorFor(errno);
  // What was looked at may have been replaced before it was opened.
  if (fstat(file->descriptor, &status) != 0)
    return TB_ErrorFor(errno);
  if (OSErr err = CheckOpenable(status, writing))
    return err;
  *refNum = TB_AddOpenFile(std::move(file));
  return *refNum == 0 ? tmfoErr : noErr;
}

// Runs an operation on an open file, alone among those on the same file.
template <typename Operation> OSErr WithFile(int16_t refNum, Operation operation) {
  return TB_FileOperation([&]() -> OSErr {
    const std::shared_ptr<TB_OpenFile> file = TB_FindOpenFile(refNum);
    if (!file)
      return rfNumErr;
    std::lock_guard lock(file->mutex);
    return file->descriptor < 0 ? rfNumErr : operation(file->descriptor);
  });
}

// Moves `wanted` bytes with read or write in as many steps as it takes; *moved tells how many.
template <typename Step> OSErr MoveBytes(int32_t wanted, int32_t* moved, Step step) {
  if (wanted < 0)
    return paramErr;
  while (*moved < wanted) {
    const ssize_t done = step(*moved, static_cast<size_t>(wanted - *moved));
    if (done == 0)
      return eofErr;
    if (done > 0)
      *moved += static_cast<int32_t>(done);
    else if (errno != EINTR)
      return TB_ErrorFor(errno);
  }
  return noErr;
}

// Whether a file may be removed. Of a link only the link itself would go.
OSErr CheckRemovable(const struct stat& status) {
  if (S_ISREG(status.st_mode))
    return TB_IsLocked(status) ? fLckdErr : noErr;
  return S_ISLNK(status.st_mode) ? noErr : notAFileErr;
}

} // namespace

OSErr DirCreate(int16_t vRefNum, int32_t parentDirID, ConstStr255Param name,
                int32_t* createdDirID) {
  return TB_AtPlace(vRefNum, parentDirID, name, [&](const std::string& path) -> OSErr {
    if (OSErr err = Result(mkdir(path.c_str(), 0777) == 0))
      return err;
    *createdDirID = TB_FolderID(path);
    return noErr;
  });
}

OSErr HCreate(int16_t vRefNum, int32_t dirID, ConstStr255Param name, OSType, OSType) {
  return TB_AtPlace(vRefNum, dirID, name, [](const std::string& path) -> OSErr {
    const int descriptor = OpenFile(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW);
    if (descriptor < 0)
      return TB_ErrorFor(errno);
    close(descriptor);
    TB_ForgetListing();
    return noErr;
  });
}

OSErr HOpen(int16_t vRefNum, int32_t dirID, ConstStr255Param name, int8_t permission,
            int16_t* refNum) {
  *refNum = 0;
  if (permission < fsRdPerm || permission > fsRdWrPerm)
    return paramErr;
  return TB_AtPlace(vRefNum, dirID, name,
                    [&](const std::string& path) { return OpenPlace(path, permission, refNum); });
}

OSErr HDelete(int16_t vRefNum, int32_t dirID, ConstStr255Param name) {
  return TB_AtPlace(vRefNum, dirID, name, [](const std::string& path) -> OSErr {
    struct stat status;
    if (OSErr err = TB_StatusOf(path, TB_Links::Keep, &status))
      return err;
    if (OSErr err = CheckRemovable(status))
      return err;
    const OSErr deleted = Result(unlink(path.c_str()) == 0);
    TB_ForgetListing();
    return deleted;
  });
}

OSErr FSRead(int16_t refNum, int32_t* count, void* buffer) {
  const int32_t wanted = std::exchange(*count, 0);
  return WithFile(refNum, [&](int file) {
    return MoveBytes(wanted, count, [&](int32_t from, size_t size) {
      return read(file, static_cast<char*>(buffer) + from, size);
    });
  });
}

OSErr FSWrite(int16_t refNum, int32_t* count, const void* buffer) {
  const int32_t wanted = std::exchange(*count, 0);
  return WithFile(refNum, [&](int file) -> OSErr {
    const OSErr err = MoveBytes(wanted, count, [&](int32_t from, size_t size) {
      return write(file, static_cast<const char*>(buffer) + from, size);
    });
    return err == eofErr ? ioErr : err;
  });
}

OSErr FSClose(int16_t refNum) {
  const std::shared_ptr<TB_OpenFile> file = TB_RemoveOpenFile(refNum);
  if (!file)
    return rfNumErr;
  std::lock_guard lock(file->mutex);
  // An interrupted close has released the descriptor all the same.
  return Result(close(std::exchange(file->descriptor, -1)) == 0 || errno == EINTR);
}

OSErr GetEOF(int16_t refNum, int32_t* length) {
  return WithFile(refNum, [&](int file) -> OSErr {
    struct stat status;
    if (fstat(file, &status) != 0)
      return TB_ErrorFor(errno);
    *length = static_cast<int32_t>(std::clamp<int64_t>(status.st_size, 0, INT32_MAX));
    return noErr;
  });
}
