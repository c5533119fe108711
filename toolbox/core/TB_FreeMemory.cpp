#include "TB_FreeMemory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace {

// The beginning of a system file; its content needs no heap, since this runs when memory is short.
class SystemFile {
public:
  explicit SystemFile(const std::string& path) {
    int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
      return;
    while (_size < _bytes.size()) {
      ssize_t got = read(file, _bytes.data() + _size, _bytes.size() - _size);
      if (got > 0)
        _size += static_cast<size_t>(got);
      else if (got == 0 || errno != EINTR)
        break;
    }
    close(file);
  }
  std::string_view Text() const { return {_bytes.data(), _size}; }

private:
  std::array<char, 16384> _bytes;
  size_t _size = 0;
};

std::string_view TakeUntil(std::string_view* text, char end) {
  size_t at = text->find(end);
  std::string_view part = text->substr(0, at);
  text->remove_prefix(at == std::string_view::npos ? text->size() : at + 1);
  return part;
}

std::optional<uint64_t> Number(std::string_view text) {
  size_t start = text.find_first_not_of(" \t");
  if (start == std::string_view::npos)
    return std::nullopt;
  uint64_t value = 0;
  auto [end, error] = std::from_chars(text.data() + start, text.data() + text.size(), value);
  return error == std::errc() ? std::optional<uint64_t>(value) : std::nullopt;
}

// The number after `key` at the start of a line.
std::optional<uint64_t> NumberOf(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    std::string_view line = TakeUntil(&text, '\n');
    if (line.starts_with(key))
      return Number(line.substr(key.size()));
  }
  return std::nullopt;
}

bool HasWord(std::string_view list, std::string_view word) {
  while (!list.empty())
    if (TakeUntil(&list, ',') == word)
      return true;
  return false;
}

// Where a hierarchy of control groups is mounted, and which of its groups stands at that place.
struct Mount {
  std::string point;
  std::string group;
};

// One line of mountinfo: "id parent major:minor group point options … - type source options".
std::optional<Mount> FindMount(std::string_view mounts, bool unified) {
  while (!mounts.empty()) {
    std::string_view line = TakeUntil(&mounts, '\n');
    size_t dash = line.find(" - ");
    if (dash == std::string_view::npos)
      continue;
    std::string_view end = line.substr(dash + 3);
    std::string_view type = TakeUntil(&end, ' ');
    TakeUntil(&end, ' ');
    if (unified ? type != "cgroup2" : type != "cgroup" || !HasWord(end, "memory"))
      continue;
    for (int skipped = 0; skipped < 3; ++skipped)
      TakeUntil(&line, ' ');
    std::string group(TakeUntil(&line, ' '));
    return Mount{std::string(TakeUntil(&line, ' ')), group};
  }
  return std::nullopt;
}

// One line of /proc/self/cgroup: "number:controllers:group"; version 2 names no controllers.
std::optional<std::string> FindGroup(std::string_view groups, bool unified) {
  while (!groups.empty()) {
    std::string_view line = TakeUntil(&groups, '\n');
    std::string_view number = TakeUntil(&line, ':');
    std::string_view controllers = TakeUntil(&line, ':');
    if (unified ? number == "0" && controllers.empty() : HasWord(controllers, "memory"))
      return std::string(line);
  }
  return std::nullopt;
}

void AddGroups(const std::string& root, bool unified, std::vector<TB_ControlGroup>* found) {
  std::optional<std::string> group =
      FindGroup(SystemFile(root + "/proc/self/cgroup").Text(), unified);
  std::optional<Mount> mount = FindMount(SystemFile(root + "/proc/self/mountinfo").Text(), unified);
  if (!group || !mount)
    return;
  // In a container the mounted place is often the process's own group.
  std::string inside = *group;
  if (mount->group != "/")
    inside = inside.starts_with(mount->group) ? inside.substr(mount->group.size()) : "";
  const std::string folder = root + mount->point;
  while (inside.size() > 1) {
    found->push_back({folder + inside, unified});
    inside.resize(inside.rfind('/') == std::string::npos ? 0 : inside.rfind('/'));
  }
  found->push_back({folder, unified});
}

// Bytes below the group's limit, its file cache counted as free; UINT64_MAX without a limit.
uint64_t FreeInGroup(const TB_ControlGroup& group) {
  const std::string memory = group.folder + "/memory.";
  const bool unified = group.unified;
  std::optional<uint64_t> limit =
      Number(SystemFile(memory + (unified ? "max" : "limit_in_bytes")).Text());
  std::optional<uint64_t> used =
      Number(SystemFile(memory + (unified ? "current" : "usage_in_bytes")).Text());
  // Version 1 says "no limit" with the largest number of pages.
  if (!limit || !used || *limit >= UINT64_C(1) << 62)
    return UINT64_MAX;
  SystemFile counts(memory + "stat");
  uint64_t cache =
      NumberOf(counts.Text(), unified ? "inactive_file " : "total_inactive_file ").value_or(0) +
      NumberOf(counts.Text(), unified ? "active_file " : "total_active_file ").value_or(0);
  uint64_t held = *used > cache ? *used - cache : 0;
  return *limit > held ? *limit - held : 0;
}

} // namespace

std::vector<TB_ControlGroup> TB_FindControlGroups(const std::string& root) {
  std::vector<TB_ControlGroup> found;
  AddGroups(root, true, &found);
  AddGroups(root, false, &found);
  return found;
}

uint64_t TB_FreeMemory(const std::string& root, const std::vector<TB_ControlGroup>& groups) {
  uint64_t least = UINT64_MAX;
  if (auto kilobytes = NumberOf(SystemFile(root + "/proc/meminfo").Text(), "MemAvailable:"))
    least = std::min(*kilobytes, UINT64_MAX / 1024) * 1024;
  for (const TB_ControlGroup& group : groups)
    least = std::min(least, FreeInGroup(group));
  return least;
}

uint64_t TB_ResidentMemory() {
  SystemFile pages("/proc/self/statm");
  std::string_view text = pages.Text();
  TakeUntil(&text, ' ');
  std::optional<uint64_t> resident = Number(text);
  long pageSize = sysconf(_SC_PAGESIZE);
  return resident && pageSize > 0 ? *resident * static_cast<uint64_t>(pageSize) : UINT64_MAX;
}
