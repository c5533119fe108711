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
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <utility>

namespace {

constexpr int16_t ONLY_VOLUME = -1;
constexpr int32_t ROOT_ID = 2;
constexpr int32_t FIRST_ID = 16;
constexpr size_t MOST_LISTINGS = 16;
// A folder that changed this shortly before it was listed may change again without a new time.
constexpr int64_t TIME_GRAIN = 50'000'000;

// A listing and the state of the folder it was made from.
struct CachedListing {
  dev_t device;
  ino_t node;
  int64_t changed; // nanoseconds
  bool settled;    // a later change is sure to show in `changed`
  TB_Listing names;
};

struct State {
  std::mutex mutex;
  std::vector<std::string> paths;
  std::map<std::string, int32_t> ids;
  std::string defaultFolder;
  std::map<std::string, CachedListing> listings;
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
  if (path == "/")
    return ROOT_ID;
  const TB_Locked<State> state;
  const auto known = state->ids.find(path);
  if (known != state->ids.end())
    return known->second;
  // In this order no number is left without a folder when memory runs out.
  state->paths.push_back(path);
  return state->ids[path] = FIRST_ID + static_cast<int32_t>(state->paths.size() - 1);
}

OSErr TB_FolderPath(int16_t vRefNum, int32_t dirID, std::string* path) {
  if (vRefNum != ONLY_VOLUME && vRefNum != 0)
    return nsvErr;
  const TB_Locked<State> state;
  if (dirID == 0)
    *path = DefaultFolder(state);
  else if (dirID == ROOT_ID)
    *path = "/";
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
  auto cached = state->listings.find(path);
  if (cached != state->listings.end()) {
    const CachedListing& listing = cached->second;
    if (listing.settled && listing.device == status.st_dev && listing.node == status.st_ino &&
        listing.changed == changed)
      return listing.names;
    state->listings.erase(cached);
  }
  timespec time{};
  clock_gettime(CLOCK_REALTIME, &time);
  const int64_t age = Nanoseconds(time) - changed;
  TB_Listing names = ReadFolder(path);
  if (names) {
    if (state->listings.size() >= MOST_LISTINGS)
      state->listings.clear();
    // A time ahead of ours comes from another machine's clock and cannot be judged.
    const bool settled = age < 0 || age > TIME_GRAIN;
    state->listings[path] = {status.st_dev, status.st_ino, changed, settled, names};
  }
  return names;
}

void TB_ForgetListing(const std::string& path) {
  const TB_Locked<State> state;
  state->listings.erase(path);
}

OSErr TB_ErrorFor(int error) {
  constexpr std::pair<int, OSErr> CODES[] = {
      {ENOENT, fnfErr},     {ENOTDIR, dirNFErr},      {EEXIST, dupFNErr},   {EACCES, permErr},
      {EPERM, permErr},     {ELOOP, permErr},         {ETXTBSY, permErr},   {EROFS, wPrErr},
      {ENOSPC, dskFulErr},  {EDQUOT, dskFulErr},      {EFBIG, dskFulErr},   {EMFILE, tmfoErr},
      {ENFILE, tmfoErr},    {ENAMETOOLONG, bdNamErr}, {ENOTEMPTY, fBsyErr}, {EISDIR, notAFileErr},
      {ENXIO, notAFileErr}, {ENOMEM, memFullErr}};
  for (const auto& [system, code] : CODES)
    if (system == error)
      return code;
  return ioErr;
}
