#include "format_limits.h"

#include "posix_file.h"

#include <algorithm>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace limn {

FileBytes::FileBytes(int descriptor, std::string name)
    : _descriptor(descriptor), _name(std::move(name)) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0)
    Refuse(SystemReason(errno));
  _length = status.st_size;
}

void FileBytes::Refuse(const std::string& why) const {
  throw Failure(ExitCode::BadInput, _name + ": " + why);
}

int FileBytes::At(int64_t place) {
  if (place < _start || place >= _start + _held)
    _Read(place);
  return place < _start + _held ? _bytes[place - _start] : -1;
}

bool FileBytes::HasAt(int64_t place, std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [&](char letter) { return At(place++) == static_cast<uint8_t>(letter); });
}

uint64_t FileBytes::Number(int64_t place, int size, std::endian order) {
  if (place < 0 || size > _length - place)
    return 0;
  uint64_t number = 0;
  for (int i = 0; i < size; ++i) {
    const int byte = At(place + i);
    if (byte < 0) // the file became shorter
      return 0;
    number |= static_cast<uint64_t>(byte) << 8 * (order == std::endian::big ? size - 1 - i : i);
  }
  return number;
}

int64_t FileBytes::Find(uint8_t value, int64_t place) {
  for (; At(place) >= 0; place = _start + _held) {
    const uint8_t* const from = _bytes + (place - _start);
    const void* const found = std::memchr(from, value, static_cast<size_t>(_start + _held - place));
    if (found != nullptr)
      return place + (static_cast<const uint8_t*>(found) - from);
  }
  return -1;
}

void FileBytes::_Read(int64_t place) {
  const ssize_t got = Uninterrupted(
      [&] { return pread(_descriptor, _bytes, sizeof _bytes, static_cast<off_t>(place)); });
  if (got < 0)
    Refuse(SystemReason(errno));
  _start = place;
  _held = got;
}

} // namespace limn
