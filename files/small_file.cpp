#include "small_file.h"

#include "failure.h"
#include "posix_file.h"

#include <cerrno>
#include <unistd.h>

namespace limn {

std::vector<uint8_t> ReadSmallFile(const std::string& path, size_t limit) {
  const Descriptor file = OpenRegularFile(path);
  std::vector<uint8_t> content;
  uint8_t piece[4096];
  for (;;) {
    const auto got = Uninterrupted([&] { return read(file.Number(), piece, sizeof piece); });
    if (got < 0)
      throw Failure(ExitCode::BadInput, path + ": " + SystemReason(errno));
    if (got == 0)
      return content;
    content.insert(content.end(), piece, piece + got);
    if (content.size() > limit)
      throw Failure(ExitCode::BadInput,
                    path + ": is longer than " + std::to_string(limit) + " bytes");
  }
}

} // namespace limn
