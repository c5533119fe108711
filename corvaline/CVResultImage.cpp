#include "CVResultImage.h"

#include <cstddef>
#include <cstring>
#include <utility>

CVResultImage::CVResultImage(CVDocument& document, CVRect area)
    : _document(document), _area(area) {}

static size_t rowBytes(const CVRect& area, size_t pixelStep) {
  return static_cast<size_t>(area.right - area.left) * pixelStep;
}

static uint8_t* topLeft(const CVChannelView<uint8_t>& view, const CVRect& area) {
  return view.data + static_cast<size_t>(area.top) * view.rowStride +
         static_cast<size_t>(area.left) * view.pixelStep;
}

CVBuffer CVResultImage::_copy(const CVDocument::Plane& plane) const {
  const auto rows = static_cast<size_t>(_area.bottom - _area.top);
  const size_t bytes = rowBytes(_area, plane.view.pixelStep);
  CVBuffer copy = CVBuffer::zeroed(rows, bytes);
  if (!copy)
    return copy;
  const uint8_t* source = topLeft(plane.view, _area);
  for (size_t row = 0; row < rows; ++row)
    std::memcpy(copy.data() + row * bytes, source + row * plane.view.rowStride, bytes);
  return copy;
}

bool CVResultImage::open(int firstChannel, int lastChannel) {
  const int basePlanes = _document.basePlanes();
  if (firstChannel < basePlanes && !_base) {
    _base = _copy(_document._base);
    if (!_base)
      return false;
  }
  if (lastChannel >= basePlanes && _extras.empty())
    _extras.resize(_document._extras.size());
  for (int channel = basePlanes > firstChannel ? basePlanes : firstChannel; channel <= lastChannel;
       ++channel) {
    const auto index = static_cast<size_t>(channel - basePlanes);
    if (!_extras[index])
      _extras[index] = _copy(_document._extras[index]);
    if (!_extras[index])
      return false;
  }
  return true;
}

CVChannelView<uint8_t> CVResultImage::channel(int index) const {
  const int basePlanes = _document.basePlanes();
  if (index < basePlanes) {
    const auto step = static_cast<size_t>(basePlanes);
    return {_base.data() + index, rowBytes(_area, step), step};
  }
  return {_extras[static_cast<size_t>(index - basePlanes)].data(), rowBytes(_area, 1), 1};
}

void CVResultImage::_store(CVBuffer& copy, CVDocument::Plane& plane) const {
  if (!copy)
    return;
  const auto rows = static_cast<size_t>(_area.bottom - _area.top);
  const size_t bytes = rowBytes(_area, plane.view.pixelStep);
  if (plane.owned && plane.owned.size() == rows * bytes) {
    plane.owned = std::move(copy);
    plane.view.data = plane.owned.data();
    return;
  }
  uint8_t* dest = topLeft(plane.view, _area);
  for (size_t row = 0; row < rows; ++row)
    std::memcpy(dest + row * plane.view.rowStride, copy.data() + row * bytes, bytes);
}

void CVResultImage::store() {
  _store(_base, _document._base);
  for (size_t i = 0; i < _extras.size(); ++i)
    _store(_extras[i], _document._extras[i]);
}
