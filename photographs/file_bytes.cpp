#include "format_limits.h"

#include "posix_file.h"

#include <algorithm>
#include <cstring>
#include <unistd.h>

namespace limn {

int FileBytes::At(int64_t place) {
  if (place < _start || place >= _start + _held)
    _Read(place);
  return place < _start + _held ? _bytes[place - _start] : -1;
}

uint64_t FileBytes::Number(uint64_t place, uint64_t size, std::endian order) {
  const auto length = static_cast<uint64_t>(_length);
  if (place > length || size > length - place)
    return 0;
  uint64_t number = 0;
  for (uint64_t i = 0; i < size; ++i) {
    const int byte = At(static_cast<int64_t>(place + i));
    if (byte < 0) // the file became shorter
      return 0;
    number |= static_cast<uint64_t>(byte) << 8 * (order == std::endian::big ? size - 1 - i : i);
  }
  return number;
}

int64_t FileBytes::Find(uint8_t value, int64_t place, int64_t end) {
  for (; place < end && At(place) >= 0; place = _start + _held) {
    const uint8_t* const from = _bytes + (place - _start);
    const void* const found =
        std::memchr(from, value, static_cast<size_t>(std::min(end, _start + _held) - place));
    if (found != nullptr)
      return place + (static_cast<const uint8_t*>(found) - from);
  }
  return -1;
}

void FileBytes::_Read(int64_t place) {
  const ssize_t got = Uninterrupted(
      [&] { return pread(_descriptor, _bytes, sizeof _bytes, static_cast<off_t>(place)); });
  _start = place;
  _held = std::max<ssize_t>(got, 0);
}

} // namespace limn
