#include "LM_style_temporary.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "MacFiles.h"

namespace {

constexpr std::string_view PREFIX = ".limn-";
// A file of this age belongs to no write that is going on, whatever its process number says.
constexpr time_t OLDEST = 3600;

bool IsLeftOver(int folder, const char* file) {
  const std::string_view name = file;
  if (!name.starts_with(PREFIX))
    return false;
  int32_t process = 0;
  const char* end = name.data() + name.size();
  const auto number = std::from_chars(name.data() + PREFIX.size(), end, process);
  if (number.ec != std::errc() || number.ptr == end || *number.ptr != '-' || process <= 0)
    return false;
  if (kill(process, 0) != 0 && errno == ESRCH)
    return true;
  struct stat status {};
  return fstatat(folder, file, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         time(nullptr) - status.st_mtime > OLDEST;
}

} // namespace

TB_Str255 LM_TemporaryName() {
  static std::atomic<uint32_t> count{0};
  std::string name(PREFIX);
  name += std::to_string(getpid()) + "-" + std::to_string(++count);
  return TB_PString(name);
}

void LM_SweepTemporaries(const LM_style_place& folder) {
  const std::string path = TB_PathOf(folder.vRefNum, folder.dirID, nullptr);
  // Not by the C++ library's iterator, which ends the program when memory runs out.
  const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(path.c_str()), closedir);
  if (open == nullptr)
    return;
  std::vector<std::string> leftOver;
  while (const dirent* entry = readdir(open.get())) {
    if (IsLeftOver(dirfd(open.get()), entry->d_name))
      leftOver.emplace_back(entry->d_name);
  }
  for (const std::string& file : leftOver)
    unlinkat(dirfd(open.get()), file.c_str(), 0);
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
