#include "format_limits.h"

#include <string>

namespace limn {
namespace {

// The line that begins there, without its end, and cut to that length.
std::string LineAt(FileBytes& bytes, int64_t at, int64_t end) {
  constexpr int64_t LONGEST = 64;
  std::string line;
  for (; at < end && static_cast<int64_t>(line.size()) < LONGEST; ++at)
    line.push_back(static_cast<char>(bytes.At(at)));
  return line;
}

} // namespace

// The file begins with lines of text, of which an empty one is the last, and a line with its sides.
// The decoder takes any order of rows and columns for the usual one.
void CheckRadiance(FileBytes& bytes) {
  constexpr int64_t LONGEST_HEAD = 64 << 10;
  bool isHead = true;
  for (int64_t at = 0;;) {
    const int64_t end = bytes.Find('\n', at);
    if (end < 0 || end > LONGEST_HEAD)
      bytes.Refuse("does not say how large it is");
    const std::string line = LineAt(bytes, at, end);
    if (line.starts_with("FORMAT=32-bit_rle_xyze"))
      bytes.Refuse("holds XYZ colours, which are not read");
    if (!isHead && (!line.starts_with("-Y ") || line.find(" +X ") == std::string::npos))
      bytes.Refuse("holds its rows or columns in an unusual order, which is not read");
    if (!isHead)
      return;
    isHead = !line.empty();
    at = end + 1;
  }
}

} // namespace limn
