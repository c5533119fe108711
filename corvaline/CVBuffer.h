// A block of bytes that says so, instead of throwing, when it cannot be had.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

class CVBuffer {
public:
  CVBuffer() = default;

  // rows × rowBytes bytes of 0, or an empty buffer when the product is too large or there is no
  // memory. Both counts are above 0.
  static CVBuffer zeroed(size_t rows, size_t rowBytes);

  uint8_t* data() const { return _bytes.get(); }
  size_t size() const { return _size; }
  explicit operator bool() const { return _bytes != nullptr; }

  // Makes room for at least `size` bytes and keeps the block when it is large enough; the content
  // is lost either way. False, with an empty buffer, when there is no memory.
  bool reserve(size_t size);

private:
  struct Free {
    void operator()(uint8_t* bytes) const { std::free(bytes); }
  };

  std::unique_ptr<uint8_t[], Free> _bytes;
  size_t _size = 0;
};
