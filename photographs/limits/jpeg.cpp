#include "format_limits.h"

#include <algorithm>

namespace limn {

// Counts the segments, beside the pixels and between their scans. The decoder looks through all
// earlier segments for each new one, and goes over the whole picture for each scan.
void CheckJpeg(FileBytes& bytes) {
  constexpr int END_OF_IMAGE = 0xd9;
  constexpr int START_OF_SCAN = 0xda;
  // The largest profile takes 255 segments, scans of a progressive one ten or twenty.
  constexpr int MOST_SEGMENTS = 2'000;
  constexpr int MOST_SCANS = 100;
  int numSegments = 0;
  int numScans = 0;
  for (int64_t at = bytes.Find(0xff, 2); at >= 0; at = bytes.Find(0xff, at)) {
    const int marker = bytes.At(++at);
    if (marker < 0 || marker == END_OF_IMAGE)
      return;
    if (marker == 0xff) // one that fills, before the marker
      continue;
    ++at;
    if (marker <= 1 || (marker >= 0xd0 && marker < END_OF_IMAGE)) // pixels, or a mark among them
      continue;
    if (++numSegments > MOST_SEGMENTS)
      bytes.Refuse("holds more than " + std::to_string(MOST_SEGMENTS) +
                   " segments, as no photograph does");
    if (marker == START_OF_SCAN && ++numScans > MOST_SCANS)
      bytes.Refuse("holds its pixels in more than " + std::to_string(MOST_SCANS) +
                   " scans, as no photograph does");
    at += std::max<int64_t>(2, static_cast<int64_t>(bytes.Number(at, 2)));
  }
}

} // namespace limn
