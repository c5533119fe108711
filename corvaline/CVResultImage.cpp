#include "CVResultImage.h"

#include <algorithm>
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

const CVResultImage::Copy& CVResultImage::_copyOf(int channel) const {
  return _copies[channel < _document.basePlanes() ? 0 : static_cast<size_t>(channel)];
}

bool CVResultImage::_copy(int channel, int bottom) {
  if (channel < _document.basePlanes())
    channel = 0;
  const auto view = _document.channel(channel);
  const size_t bytes = rowBytes(_area, view.pixelStep);
  Copy& copy = _copies[static_cast<size_t>(channel)];
  if (copy.pixels == nullptr) {
    auto pixels = std::make_shared<CVBuffer>();
    if (!pixels->reserve(static_cast<size_t>(_area.bottom - _area.top) * bytes))
      return false;
    copy.pixels = std::move(pixels);
  }
  const uint8_t* source = topLeft(view, _area);
  for (; copy.rows < static_cast<size_t>(bottom - _area.top); ++copy.rows)
    std::memcpy(copy.pixels->data() + copy.rows * bytes, source + copy.rows * view.rowStride,
                bytes);
  return true;
}

bool CVResultImage::open(int firstChannel, int lastChannel, int bottom) {
  _copies.resize(static_cast<size_t>(_document.channelCount()));
  for (int channel = firstChannel; channel <= lastChannel; ++channel)
    if (!_copy(channel, bottom))
      return false;
  return true;
}

CVChannelView<uint8_t> CVResultImage::channel(int index) const {
  const size_t step = _document.channel(index).pixelStep;
  const int plane = index < _document.basePlanes() ? index : 0;
  return {_copyOf(index).pixels->data() + plane, rowBytes(_area, step), step};
}

std::shared_ptr<const CVBuffer> CVResultImage::base(int bottom) {
  return open(0, 0, bottom) ? _copies[0].pixels : nullptr;
}

void CVResultImage::store() {
  for (int channel = 0; channel < static_cast<int>(_copies.size()); ++channel) {
    const Copy& copy = _copies[static_cast<size_t>(channel)];
    if (copy.pixels == nullptr)
      continue;
    // The document takes the copy of its own memory, where that is of all of it, in its place.
    if (channel == 0 && copy.pixels->size() == _document._owned.size()) {
      _copy(0, _area.bottom);
      _document._owned = std::move(*copy.pixels);
      _document._base.data = _document._owned.data();
      continue;
    }
    const auto view = _document.channel(channel);
    const size_t bytes = rowBytes(_area, view.pixelStep);
    for (size_t row = 0; row < copy.rows; ++row)
      std::memcpy(topLeft(view, _area) + row * view.rowStride, copy.pixels->data() + row * bytes,
                  bytes);
  }
}
