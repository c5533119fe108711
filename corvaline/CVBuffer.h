// A block of bytes that says so, instead of throwing, when it cannot be had.
#ifndef CV_BUFFER_H
#define CV_BUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

class CVBuffer {
public:
  CVBuffer() = default;

  // rows × rowBytes bytes of 0, or an empty buffer when the product is too large or there is no
  // memory. Both counts are above 0.
  static CVBuffer zeroed(std::size_t rows, std::size_t rowBytes);

  std::uint8_t* data() const { return _bytes.get(); }
  std::size_t size() const { return _size; }
  explicit operator bool() const { return _bytes != nullptr; }

  // Makes room for at least `size` bytes and keeps the block when it is large enough; the content
  // is lost either way. False, with an empty buffer, when there is no memory.
  bool reserve(std::size_t size);

private:
  struct Free {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
  };

  std::unique_ptr<std::uint8_t[], Free> _bytes;
  std::size_t _size = 0;
};

#endif
