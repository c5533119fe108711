#include "LM_style_temporary.h"

#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include "MacFiles.h"

namespace {

constexpr std::string_view PREFIX = ".limn-";
// A file of this age belongs to no write that is going on, whatever its process number says.
constexpr std::chrono::hours OLDEST{1};

bool IsLeftOver(const std::filesystem::directory_entry& entry) {
  const std::string name = entry.path().filename().string();
  if (!name.starts_with(PREFIX))
    return false;
  int32_t process = 0;
  const char* end = name.data() + name.size();
  const auto number = std::from_chars(name.data() + PREFIX.size(), end, process);
  if (number.ec != std::errc() || number.ptr == end || *number.ptr != '-' || process <= 0)
    return false;
  if (kill(process, 0) != 0 && errno == ESRCH)
    return true;
  std::error_code error;
  const auto written = entry.last_write_time(error);
  return !error && std::filesystem::file_time_type::clock::now() - written > OLDEST;
}

} // namespace

TB_Str255 LM_TemporaryName() {
  static std::atomic<uint32_t> count{0};
  std::string name(PREFIX);
  name += std::to_string(getpid()) + "-" + std::to_string(++count);
  return TB_PString(name);
}

void LM_SweepTemporaries(const LM_style_place& folder) {
  std::error_code error;
  const std::string path = TB_PathOf(folder.vRefNum, folder.dirID, nullptr);
  std::vector<std::filesystem::path> leftOver;
  for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error)) {
    if (IsLeftOver(*entry))
      leftOver.push_back(entry->path());
  }
  for (const std::filesystem::path& file : leftOver)
    std::filesystem::remove(file, error);
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
