#include "TB_Folders.h"

#include "MacFiles.h"
#include "MacStrings.h"
#include "TB_FileNames.h"
#include "TB_Locked.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <dirent.h>
#include <mutex>
#include <sys/stat.h>
#include <utility>

namespace {

constexpr int32_t FIRST_ID = 16;
// A folder that changed this shortly before it was listed may change again without a new time.
constexpr int64_t TIME_GRAIN = 50'000'000;

// A listing and the state of the folder it was made from.
struct CachedListing {
  std::string path;
  dev_t device;
  ino_t node;
  int64_t changed; // nanoseconds
  bool settled;    // a later change is sure to show in `changed`
  TB_Listing names;
};

struct State {
  std::mutex mutex;
  std::vector<std::string> paths; // by id, from FIRST_ID
  std::string defaultFolder;
  CachedListing listing{};
};

int64_t Nanoseconds(const timespec& time) {
  return time.tv_sec * INT64_C(1000000000) + time.tv_nsec;
}

bool IsRegularFile(DIR* folder, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
    return entry.d_type == DT_REG;
  struct stat status;
  return fstatat(dirfd(folder), entry.d_name, &status, 0) == 0 && S_ISREG(status.st_mode);
}

TB_Listing ReadFolder(const std::string& path) {
  std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
  if (!folder)
    return nullptr;
  auto names = std::make_shared<std::vector<std::string>>();
  while (const dirent* entry = readdir(folder.get())) {
    if (entry->d_name[0] == '.' || !IsRegularFile(folder.get(), *entry))
      continue;
    if (auto name = TB_NameForFile(entry->d_name))
      names->push_back(std::move(*name));
  }
  std::sort(names->begin(), names->end(),
            [](const std::string& a, const std::string& b) { return TB_CompareNames(a, b) < 0; });
  return names;
}

std::string DefaultFolder(State* state) {
  if (!state->defaultFolder.empty())
    return state->defaultFolder;
  std::string current;
  return TB_ResolveFolder(".", &current) == noErr ? current : "/";
}

} // namespace

OSErr TB_ResolveFolder(const std::string& path, std::string* resolved) {
  std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), free);
  struct stat status;
  if (!real || stat(real.get(), &status) != 0 || !S_ISDIR(status.st_mode))
    return dirNFErr;
  *resolved = real.get();
  return noErr;
}

int32_t TB_FolderID(const std::string& path) {
  const TB_Locked<State> state;
  const auto known = std::find(state->paths.begin(), state->paths.end(), path);
  const auto place = static_cast<int32_t>(known - state->paths.begin());
  if (known == state->paths.end())
    state->paths.push_back(path);
  return FIRST_ID + place;
}

OSErr TB_FolderPath(int16_t vRefNum, int32_t dirID, std::string* path) {
  if (vRefNum != TB_VOLUME && vRefNum != 0)
    return nsvErr;
  const TB_Locked<State> state;
  if (dirID == 0)
    *path = DefaultFolder(state);
  else if (dirID >= FIRST_ID && static_cast<size_t>(dirID - FIRST_ID) < state->paths.size())
    *path = state->paths[static_cast<size_t>(dirID - FIRST_ID)];
  else
    return dirNFErr;
  return noErr;
}

void TB_SetDefaultFolder(const std::string& path) {
  const TB_Locked<State> state;
  state->defaultFolder = path;
}

TB_Listing TB_ListFolder(const std::string& path) {
  const TB_Locked<State> state;
  struct stat status;
  if (stat(path.c_str(), &status) != 0)
    return nullptr;
  const int64_t changed = Nanoseconds(status.st_mtim);
  const CachedListing& kept = state->listing;
  if (kept.settled && kept.path == path && kept.device == status.st_dev &&
      kept.node == status.st_ino && kept.changed == changed)
    return kept.names;
  timespec time{};
  clock_gettime(CLOCK_REALTIME, &time);
  const int64_t age = Nanoseconds(time) - changed;
  TB_Listing names = ReadFolder(path);
  // A time ahead of ours comes from another machine's clock and cannot be judged.
  const bool settled = names && (age < 0 || age > TIME_GRAIN);
  state->listing = {path, status.st_dev, status.st_ino, changed, settled, names};
  return names;
}

void TB_ForgetListing() {
  const TB_Locked<State> state;
  state->listing = {};
}

OSErr TB_ErrorFor(int error) {
  constexpr std::pair<int, OSErr> CODES[] = {
      {ENOENT, fnfErr},     {ENOTDIR, dirNFErr},      {EEXIST, dupFNErr},   {EACCES, permErr},
      {EPERM, permErr},     {ELOOP, permErr},         {ETXTBSY, permErr},   {EROFS, wPrErr},
      {ENOSPC, dskFulErr},  {EDQUOT, dskFulErr},      {EFBIG, dskFulErr},   {EMFILE, tmfoErr},
      {ENFILE, tmfoErr},    {ENAMETOOLONG, bdNamErr}, {ENOTEMPTY, fBsyErr}, {EISDIR, notAFileErr},
      {ENXIO, notAFileErr}, {ENOMEM, memFullErr},     {EBADF, wrPermErr}};
  for (const auto& [system, code] : CODES)
    if (system == error)
      return code;
  return ioErr;
}
