#include "CVBuffer.h"

#include <cstdint>
#include <limits>

// A view of a larger block could not be indexed by differences of pointers.
static constexpr size_t LARGEST = std::numeric_limits<ptrdiff_t>::max();

CVBuffer CVBuffer::zeroed(size_t rows, size_t rowBytes) {
  CVBuffer buffer;
  if (rows == 0 || rowBytes == 0 || rowBytes > LARGEST / rows)
    return buffer;
  buffer._bytes.reset(static_cast<uint8_t*>(std::calloc(rows, rowBytes)));
  buffer._size = buffer._bytes ? rows * rowBytes : 0;
  return buffer;
}

bool CVBuffer::reserve(size_t size) {
  if (size <= _size && _bytes)
    return true;
  _bytes.reset(); // first, so that both blocks are never held at once
  _size = 0;
  if (size == 0 || size > LARGEST)
    return false;
  _bytes.reset(static_cast<uint8_t*>(std::malloc(size)));
  _size = _bytes ? size : 0;
  return _bytes != nullptr;
}
