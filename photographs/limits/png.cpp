#include "format_limits.h"

#include <algorithm>

namespace limn {
namespace {

// The decoder gives up a text at 8 MB; deflated text grows at most 1032-fold.
constexpr int64_t LONGEST_TEXT = 8'000'000;
constexpr int64_t DEFLATE_GROWTH = 1032;
constexpr int64_t MOST_TEXT = 100'000'000;

// What a chunk can fill with text.
int64_t TextOf(uint64_t type, int64_t length) {
  const bool isDeflated = type == NameOf("zTXt") || type == NameOf("iTXt");
  if (!isDeflated && type != NameOf("tEXt") && type != NameOf("sPLT"))
    return 0;
  return std::min(LONGEST_TEXT, isDeflated ? length * DEFLATE_GROWTH : length);
}

} // namespace

// Adds up the texts in front of the pixels. A chunk that claims more than there is would be given
// the memory that it claims.
void CheckPng(FileBytes& bytes) {
  int64_t text = 0;
  int64_t at = 8;
  for (int i = 0; bytes.At(at + 7) >= 0; ++i) {
    const auto length = static_cast<int64_t>(bytes.Number(at, 4));
    const uint64_t type = bytes.Number(at + 4, 4);
    if (type == NameOf("IDAT"))
      return;
    if (length > bytes.Length() - at)
      bytes.Refuse("ends before its pixels");
    text += TextOf(type, length);
    if (text > MOST_TEXT || i == MOST_CHUNKS)
      bytes.Refuse("holds more text beside its pixels than is read");
    at += 12 + length;
  }
}

} // namespace limn
