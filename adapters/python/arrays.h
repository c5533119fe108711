// numpy's arrays as the C library's pictures.
#pragma once

#include <limn.h>
#include <optional>
#include <pybind11/numpy.h>
#include <string>

// The kind of an array's samples; name: what to call it. Throws ArgumentError.
limn_kind KindOf(const char* name, const pybind11::array& array);
// A side, or the number of channels, of an image. Checked before anything is copied: repeated rows
// can make an array of any size. The library has the same limit for channels. Throws ArgumentError.
int32_t SizeOf(const char* name, pybind11::ssize_t size);
// The array without gaps and in order, a copy where it is not so already.
pybind11::array Packed(const pybind11::array& array);

// The arrays of one call and the picture over them, which is good as long as they are. Where the
// library cannot take an array's strides the picture is over a copy.
class Arrays {
public:
  // Throws ArgumentError about what does not fit together. relief, out: null for none.
  Arrays(const pybind11::array& image, const std::optional<pybind11::array>& relief,
         const std::optional<pybind11::array>& out);

  limn_picture picture;

  // Once the picture is lit: where the caller expects it.
  pybind11::array Result();

private:
  void _SetRelief(const pybind11::array& relief);

  pybind11::array _source, _target, _relief, _result;
};
