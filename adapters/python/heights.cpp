#include "heights.h"

#include "arrays.h"
#include "errors.h"

#include "LM_height_samples.h"
#include "LM_plane_scaling.h"

#include <algorithm>
#include <vector>

namespace py = pybind11;

namespace {

template <class Sample>
LM_height_plane ReadPlane(const py::array& image, const LM_height_weights& weights,
                          const LM_plane_size& size) {
  const auto width = static_cast<int>(image.shape(1));
  const auto height = static_cast<int>(image.shape(0));
  const auto channels = image.ndim() == 3 ? image.shape(2) : py::ssize_t{1};
  LM_plane_reducer reducer(width, height, std::min(size.width, width),
                           std::min(size.height, height));
  std::vector<uint16_t> row(static_cast<size_t>(width));
  const auto* pixel = static_cast<const Sample*>(image.data());
  for (int y = 0; y < height; ++y, pixel += width * channels) {
    LM_HeightsOfPixels(pixel, channels, weights, row.data(), row.size());
    reducer.Add(row.data());
  }
  return reducer.Take();
}

LM_height_weights WeightsOf(const LM_height_source& source, py::ssize_t channels) {
  if (source.kind == LM_height_kind::Luminance && channels >= 3)
    return LM_LUMINANCE;
  if (source.kind == LM_height_kind::Luminance)
    return {};
  if (source.channel < 1 || source.channel > channels)
    Refuse("source: the image has no channel " + std::to_string(source.channel));
  return {source.channel - 1, {65536, 0, 0}};
}

void Enlarge(const LM_height_plane& plane, int width, int height, uint16_t* heights) {
  const LM_plane_enlarger enlarger(plane, width, height);
  std::vector<double> scratch;
  for (int y = 0; y < height; ++y)
    enlarger.MakeRow(y, 0, width, heights + static_cast<ptrdiff_t>(y) * width, scratch);
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
  const LM_height_weights weights = WeightsOf(source, image.ndim() == 3 ? image.shape(2) : 1);
  const py::array packed = Packed(image);
  py::array_t<uint16_t> heights({py::ssize_t{height}, py::ssize_t{width}});
  uint16_t* const values = heights.mutable_data();
  const LM_plane_size size = LM_PreparedSize(source, width, height);
  const py::gil_scoped_release others;
  LM_height_plane plane = kind == LIMN_BYTES   ? ReadPlane<uint8_t>(packed, weights, size)
                          : kind == LIMN_WORDS ? ReadPlane<uint16_t>(packed, weights, size)
                                               : ReadPlane<float>(packed, weights, size);
  LM_PrepareHeights(source, std::max(width, height), plane);
  Enlarge(plane, width, height, values);
  return heights;
}
