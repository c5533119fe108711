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

bool CVResultImage::_copy(const CVDocument::Plane& plane, int bottom, Copy& copy) const {
  const size_t bytes = rowBytes(_area, plane.view.pixelStep);
  if (copy.pixels == nullptr) {
    auto pixels = std::make_shared<CVBuffer>();
    if (!pixels->reserve(static_cast<size_t>(_area.bottom - _area.top) * bytes))
      return false;
    copy.pixels = std::move(pixels);
  }
  const uint8_t* source = topLeft(plane.view, _area);
  for (; copy.rows < static_cast<size_t>(bottom - _area.top); ++copy.rows)
    std::memcpy(copy.pixels->data() + copy.rows * bytes, source + copy.rows * plane.view.rowStride,
                bytes);
  return true;
}

bool CVResultImage::open(int firstChannel, int lastChannel, int bottom) {
  const int basePlanes = _document.basePlanes();
  if (firstChannel < basePlanes && !_copy(_document._base, bottom, _base))
    return false;
  if (lastChannel >= basePlanes && _extras.empty())
    _extras.resize(_document._extras.size());
  for (int channel = basePlanes > firstChannel ? basePlanes : firstChannel; channel <= lastChannel;
       ++channel) {
    const auto index = static_cast<size_t>(channel - basePlanes);
    if (!_copy(_document._extras[index], bottom, _extras[index]))
      return false;
  }
  return true;
}

CVChannelView<uint8_t> CVResultImage::channel(int index) const {
  const int basePlanes = _document.basePlanes();
  if (index < basePlanes) {
    const auto step = static_cast<size_t>(basePlanes);
    return {_base.pixels->data() + index, rowBytes(_area, step), step};
  }
  return {_extras[static_cast<size_t>(index - basePlanes)].pixels->data(), rowBytes(_area, 1), 1};
}

std::shared_ptr<const CVBuffer> CVResultImage::base(int bottom) {
  return open(0, 0, bottom) ? _base.pixels : nullptr;
}

void CVResultImage::_store(Copy& copy, CVDocument::Plane& plane) const {
  if (copy.pixels == nullptr)
    return;
  const auto rows = static_cast<size_t>(_area.bottom - _area.top);
  const size_t bytes = rowBytes(_area, plane.view.pixelStep);
  if (plane.owned && plane.owned.size() == rows * bytes) {
    _copy(plane, _area.bottom, copy);
    plane.owned = std::move(*copy.pixels);
    plane.view.data = plane.owned.data();
    return;
  }
  uint8_t* dest = topLeft(plane.view, _area);
  for (size_t row = 0; row < copy.rows; ++row)
    std::memcpy(dest + row * plane.view.rowStride, copy.pixels->data() + row * bytes, bytes);
}

void CVResultImage::store() {
  _store(_base, _document._base);
  for (size_t i = 0; i < _extras.size(); ++i)
    _store(_extras[i], _document._extras[i]);
}
