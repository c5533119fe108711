#include "format_limits.h"

namespace limn {

// A RIFF's chunks are counted. The decoder looks through all earlier frames for each one.
void CheckWebp(FileBytes& bytes) {
  int numChunks = 0;
  for (int64_t at = 12; bytes.At(at + 7) >= 0; ++numChunks) {
    if (numChunks == MOST_CHUNKS)
      bytes.Refuse("holds more than " + std::to_string(MOST_CHUNKS) +
                   " chunks, as no photograph does");
    const auto length = static_cast<int64_t>(bytes.Number(at + 4, 4, std::endian::little));
    at += 8 + length + (length & 1);
  }
}

} // namespace limn
