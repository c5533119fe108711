#include "LM_small_file.h"

#include <cctype>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

class Descriptor {
public:
  // Without O_NONBLOCK the open itself would wait for the other end of a pipe.
  explicit Descriptor(const char* path) {
    do
      _number = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    while (_number < 0 && errno == EINTR);
  }
  ~Descriptor() {
    if (_number >= 0)
      close(_number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Number() const { return _number; }

private:
  int _number = -1;
};

// The system's words for its last error, in the middle of a sentence.
std::string SystemWords() {
  std::string words = std::generic_category().message(errno);
  if (!words.empty())
    words[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(words[0])));
  return words;
}

bool Fail(std::string& why, std::string what) {
  why = std::move(what);
  return false;
}

} // namespace

bool LM_ReadSmallFile(const std::string& path, size_t limit, std::vector<uint8_t>& content,
                      std::string& why) {
  content.clear();
  const Descriptor file(path.c_str());
  struct stat status {};
  if (file.Number() < 0 || fstat(file.Number(), &status) != 0)
    return Fail(why, SystemWords());
  if (!S_ISREG(status.st_mode))
    return Fail(why, S_ISDIR(status.st_mode) ? "is a folder, not a file" : "is not a regular file");
  uint8_t piece[4096];
  for (;;) {
    const ssize_t got = read(file.Number(), piece, sizeof piece);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      return Fail(why, SystemWords());
    if (got == 0)
      return true;
    content.insert(content.end(), piece, piece + got);
    if (content.size() > limit)
      return Fail(why, "is longer than " + std::to_string(limit) + " bytes");
  }
}
