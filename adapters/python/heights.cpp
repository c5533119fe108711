#include "heights.h"

#include "arrays.h"
#include "errors.h"
#include "picture_heights.h"

namespace py = pybind11;

namespace {

LM_height_weights WeightsOf(const LM_height_source& source, py::ssize_t channels) {
  if (source.kind == LM_height_kind::Luminance && channels >= 3)
    return LM_LUMINANCE;
  if (source.kind == LM_height_kind::Luminance)
    return {};
  if (source.channel < 1 || source.channel > channels)
    Refuse("source: the image has no channel " + std::to_string(source.channel));
  return {source.channel - 1, {65536, 0, 0}};
}

} // namespace

py::array Heights(const py::array& image, LM_height_source source) {
  if (image.ndim() != 2 && image.ndim() != 3)
    Refuse("image: its shape is neither (height, width) nor (height, width, channels)");
  const limn_kind kind = KindOf("image", image);
  const int height = SizeOf("height", image.shape(0));
  const int width = SizeOf("width", image.shape(1));
  if (width == 0 || height == 0 || image.size() == 0)
    Refuse("image: it is empty");
  source = LM_ResolvedSource(source, true);
  const ptrdiff_t channels = image.ndim() == 3 ? image.shape(2) : 1;
  const LM_height_weights weights = WeightsOf(source, channels);
  const py::array packed = Packed(image);
  py::array_t<uint16_t> heights({py::ssize_t{height}, py::ssize_t{width}});
  uint16_t* const values = heights.mutable_data();
  const void* const pixels = packed.data();
  const py::gil_scoped_release others;
  const auto make = [&](const auto* samples) {
    const LM_plane_size size = {width, height};
    HeightsOfPicture(source, weights, samples, channels, size, std::max(width, height), values,
                     size);
  };
  if (kind == LIMN_BYTES)
    make(static_cast<const uint8_t*>(pixels));
  else if (kind == LIMN_WORDS)
    make(static_cast<const uint16_t*>(pixels));
  else
    make(static_cast<const float*>(pixels));
  return heights;
}
