#include "format_limits.h"

#include "failure.h"

namespace limn {

// Overlays may be made of overlays, so that a few of them decode one image a million times.
void CheckHeif(FileBytes& bytes, const std::string& path) {
  const auto isType = [&](const char* type, int64_t at) {
    for (int i = 0; i < 4; ++i)
      if (bytes.At(at + i) != type[i])
        return false;
    return true;
  };
  for (int64_t at = 0; bytes.At(at + 7) >= 0;) {
    const int64_t length = int64_t{bytes.At(at)} << 24 | bytes.At(at + 1) << 16 |
                           bytes.At(at + 2) << 8 | bytes.At(at + 3);
    const int64_t end = at + length;
    if (isType("meta", at + 4))
      for (int64_t item = bytes.Find('i', at, end); item >= 0;
           item = bytes.Find('i', item + 1, end))
        if (isType("infe", item) && (isType("iovl", item + 12) || isType("iovl", item + 14)))
          throw Failure(ExitCode::BadInput,
                        path + ": lays images over each other, which is not read");
    if (length < 8) // pixels to the end of the file, or more of them than 4 GB
      return;
    at = end;
  }
}

} // namespace limn
