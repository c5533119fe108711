#include "small_file.h"

#include "posix_file.h"

namespace limn {

std::vector<uint8_t> ReadSmallFile(const std::string& path, size_t limit) {
  const Descriptor file = OpenRegularFile(path);
  std::vector<uint8_t> content;
  ReadPieces(file.Number(), ExitCode::BadInput, path, [&](std::string_view piece) {
    content.insert(content.end(), piece.begin(), piece.end());
    if (content.size() > limit)
      throw Failure(ExitCode::BadInput,
                    path + ": is longer than " + std::to_string(limit) + " bytes");
  });
  return content;
}

} // namespace limn
