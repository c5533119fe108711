#include "small_file.h"

#include "guard.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace limn {
namespace {

class Descriptor {
public:
  // Without O_NONBLOCK the open itself would wait for the other end of a pipe.
  explicit Descriptor(const std::string& path)
      : _number(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}
  ~Descriptor() {
    if (_number >= 0)
      close(_number);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Number() const { return _number; }

private:
  int _number;
};

Failure CannotRead(const std::string& path, const std::string& reason) {
  return {LIMN_CANNOT_READ, path + ": " + reason};
}

Failure SystemFailure(const std::string& path, int number) {
  return CannotRead(path, std::generic_category().message(number));
}

} // namespace

std::vector<uint8_t> ReadSmallFile(const std::string& path, size_t limit) {
  const Descriptor file(path);
  struct stat status {};
  if (file.Number() < 0 || fstat(file.Number(), &status) != 0)
    throw SystemFailure(path, errno);
  if (!S_ISREG(status.st_mode))
    throw CannotRead(path,
                     S_ISDIR(status.st_mode) ? "is a folder, not a file" : "is not a regular file");
  std::vector<uint8_t> content;
  uint8_t piece[4096];
  for (;;) {
    const ssize_t got = read(file.Number(), piece, sizeof piece);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      throw SystemFailure(path, errno);
    if (got == 0)
      return content;
    content.insert(content.end(), piece, piece + got);
    if (content.size() > limit)
      throw CannotRead(path, "is longer than " + std::to_string(limit) + " bytes");
  }
}

} // namespace limn
