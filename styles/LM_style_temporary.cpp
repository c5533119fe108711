#include "LM_style_temporary.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

#include "MacFiles.h"

namespace {

constexpr std::string_view PREFIX = ".limn-";
constexpr size_t DIGITS = 16;
// How long a writer waits for a sweep, which takes a moment, in steps of a millisecond.
constexpr int PATIENCE = 1000;

// No other hidden file is ours to remove, were its beginning the same.
bool IsTemporaryName(std::string_view name) {
  return name.size() == PREFIX.size() + DIGITS && name.starts_with(PREFIX) &&
         name.find_first_not_of("0123456789abcdef", PREFIX.size()) == std::string_view::npos;
}

int OpenFolder(const LM_style_place& folder) {
  const std::string path = TB_PathOf(folder.vRefNum, folder.dirID, nullptr);
  if (path.empty())
    return -1;
  int descriptor = -1;
  do
    descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

} // namespace

LM_folder_use::LM_folder_use(const LM_style_place& folder) : _descriptor(OpenFolder(folder)) {
  for (int i = 0; i < PATIENCE && _descriptor >= 0 && flock(_descriptor, LOCK_SH | LOCK_NB) != 0 &&
                  (errno == EWOULDBLOCK || errno == EINTR);
       ++i)
    usleep(1000);
}

LM_folder_use::~LM_folder_use() {
  if (_descriptor >= 0)
    close(_descriptor);
}

void LM_folder_use::Flush() const noexcept {
  while (_descriptor >= 0 && fsync(_descriptor) != 0 && errno == EINTR) {
  }
}

TB_Str255 LM_TemporaryName() {
  // What a process number would not give: processes of other containers and machines may have the
  // same one.
  uint64_t number = 0;
  if (getentropy(&number, sizeof number) != 0)
    number = static_cast<uint64_t>(std::chrono::system_clock::now().time_since_epoch().count()) ^
             static_cast<uint64_t>(getpid()) << 40;
  char name[32];
  std::snprintf(name, sizeof name, ".limn-%016llx", static_cast<unsigned long long>(number));
  return TB_PString(name);
}

void LM_SweepTemporaries(const LM_style_place& folder) {
  const std::string path = TB_PathOf(folder.vRefNum, folder.dirID, nullptr);
  // Not by the C++ library's iterator, which ends the program when memory runs out.
  const std::unique_ptr<DIR, int (*)(DIR*)> listed(opendir(path.c_str()), closedir);
  // Nobody writes while this is held, so every temporary file is one that was given up.
  if (listed == nullptr || flock(dirfd(listed.get()), LOCK_EX | LOCK_NB) != 0)
    return;
  std::vector<std::string> found;
  while (const dirent* entry = readdir(listed.get())) {
    if (IsTemporaryName(entry->d_name))
      found.emplace_back(entry->d_name);
  }
  for (const std::string& name : found)
    unlinkat(dirfd(listed.get()), name.c_str(), 0);
}

OSErr LM_WriteNewFile(const LM_style_place& folder, ConstStr255Param name, std::string_view bytes) {
  OSErr result = HCreate(folder.vRefNum, folder.dirID, name, 0, 0);
  if (result != noErr)
    return result;
  int16_t file = 0;
  result = HOpen(folder.vRefNum, folder.dirID, name, fsRdWrPerm, &file);
  if (result == noErr) {
    int32_t count = static_cast<int32_t>(bytes.size());
    result = FSWrite(file, &count, bytes.data());
    if (result == noErr)
      result = TB_FlushFile(file);
    const OSErr closed = FSClose(file);
    if (result == noErr)
      result = closed;
  }
  if (result != noErr)
    HDelete(folder.vRefNum, folder.dirID, name);
  return result;
}
