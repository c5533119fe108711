#include "arrays.h"

#include "errors.h"

#include <algorithm>
#include <cstdlib>

namespace py = pybind11;

namespace {

std::string Told(const py::handle& value) {
  return std::string(py::str(value));
}

// Dimensions of one element have a stride that says nothing.
bool IsStepAtLeast(const py::array& array, int dimension, py::ssize_t bytes) {
  return array.shape(dimension) <= 1 || std::abs(array.strides(dimension)) >= bytes;
}
bool IsStep(const py::array& array, int dimension, py::ssize_t bytes) {
  return array.shape(dimension) <= 1 || array.strides(dimension) == bytes;
}

// Pixels side by side in rows that may lie anywhere.
bool HasRows(const py::array& pixels) {
  const py::ssize_t pixelBytes = pixels.shape(2) * pixels.itemsize();
  return IsStep(pixels, 2, pixels.itemsize()) && IsStep(pixels, 1, pixelBytes) &&
         IsStepAtLeast(pixels, 0, pixels.shape(1) * pixelBytes);
}

bool HasHeights(const py::array& relief) {
  return IsStepAtLeast(relief, 0, relief.itemsize()) && IsStepAtLeast(relief, 1, relief.itemsize());
}

py::array Empty(const py::array& like) {
  return py::array(like.dtype(), {like.shape(0), like.shape(1), like.shape(2)});
}

// 0, which the library fills in, where there is one element and any stride would do.
py::ssize_t Stride(const py::array& array, int dimension) {
  return array.shape(dimension) <= 1 ? 0 : array.strides(dimension);
}

void CheckOut(const py::array& image, const py::array& out) {
  if (out.ndim() != 3 || !std::equal(out.shape(), out.shape() + 3, image.shape()) ||
      KindOf("out", out) != KindOf("image", image))
    Refuse("out: it is not of the image's shape and type");
  if (!out.writeable())
    Refuse("out: it is read-only");
}

} // namespace

limn_kind KindOf(const char* name, const py::array& array) {
  const py::dtype type = array.dtype();
  const bool isNative = type.byteorder() == '=' || type.byteorder() == '|';
  if (isNative && type.kind() == 'u' && type.itemsize() == 1)
    return LIMN_BYTES;
  if (isNative && type.kind() == 'u' && type.itemsize() == 2)
    return LIMN_WORDS;
  if (isNative && type.kind() == 'f' && type.itemsize() == 4)
    return LIMN_FLOATS;
  Refuse(std::string(name) + ": its samples are " + Told(type) +
         ", not uint8, uint16 or float32 in this machine's byte order");
}

py::array Packed(const py::array& array) {
  py::array packed = py::array::ensure(array, py::array::c_style);
  if (!packed)
    throw py::error_already_set();
  return packed;
}

int32_t SizeOf(const char* name, py::ssize_t size) {
  if (size > LIMN_LONGEST_SIDE)
    Refuse(std::string(name) + ": " + std::to_string(size) + " is more than " +
           std::to_string(LIMN_LONGEST_SIDE));
  return static_cast<int32_t>(size);
}

Arrays::Arrays(const py::array& image, const std::optional<py::array>& relief,
               const std::optional<py::array>& out)
    : picture{} {
  if (image.ndim() != 3)
    Refuse("image: its shape is " + Told(image.attr("shape")) + ", not (height, width, channels)");
  picture.kind = KindOf("image", image);
  picture.height = SizeOf("height", image.shape(0));
  picture.width = SizeOf("width", image.shape(1));
  picture.channels = SizeOf("channels", image.shape(2));
  if (out)
    CheckOut(image, *out);
  _source = HasRows(image) ? image : Packed(image);
  _result = out ? *out : Empty(image);
  _target = HasRows(_result) ? _result : _result.is(image) ? _source : Empty(image);
  picture.source = static_cast<const uint8_t*>(_source.data());
  picture.source_stride = Stride(_source, 0);
  picture.output = static_cast<uint8_t*>(_target.mutable_data());
  picture.output_stride = Stride(_target, 0);
  if (relief)
    _SetRelief(*relief);
}

void Arrays::_SetRelief(const py::array& relief) {
  if (relief.ndim() != 2 || relief.shape(0) != picture.height || relief.shape(1) != picture.width)
    Refuse("relief: its shape is " + Told(relief.attr("shape")) +
           ", not the image's (height, width)");
  picture.relief_kind = KindOf("relief", relief);
  _relief = HasHeights(relief) ? relief : Packed(relief);
  picture.relief = static_cast<const uint8_t*>(_relief.data());
  picture.relief_step = Stride(_relief, 1);
  picture.relief_stride = Stride(_relief, 0);
}

py::array Arrays::Result() {
  if (!_target.is(_result))
    _result[py::ellipsis()] = _target;
  return _result;
}
