#include "CVDocument.h"

#include <limits>
#include <utility>

static CVResult badImage(std::string message) {
  return {CVOutcome::BadImage, 0, std::move(message)};
}

static CVResult checkShape(int width, int height, int planes) {
  const std::string size = std::to_string(width) + " x " + std::to_string(height);
  if (width < 1 || height < 1)
    return badImage("an image of " + size + " pixels has no content");
  if (width > CV_MAX_SIDE || height > CV_MAX_SIDE)
    return badImage("the image is " + size + " pixels; its sides may have at most " +
                    std::to_string(CV_MAX_SIDE));
  if (planes < CV_COLOUR_PLANES || planes > CV_MAX_CHANNELS)
    return badImage("an image of colour mode 3 cannot have " + std::to_string(planes) + " planes");
  return {};
}

static std::string defaultName(int index) {
  static const char* const known[] = {"Red", "Green", "Blue", "Alpha"};
  return index < 4 ? known[index] : "Channel " + std::to_string(index + 1);
}

static bool rowsHold(const uint8_t* pixels, size_t rowStride, size_t rowBytes, int rows) {
  const size_t largest = std::numeric_limits<ptrdiff_t>::max();
  return pixels != nullptr && rowStride >= rowBytes &&
         rowStride <= largest / static_cast<size_t>(rows);
}

CVResult CVDocument::create(int width, int height, int planes) {
  return CVGuarded("the image", [&]() -> CVResult {
    if (CVResult shape = checkShape(width, height, planes); !shape.ok())
      return shape;
    const auto rowBytes = static_cast<size_t>(width) * static_cast<size_t>(planes);
    CVBuffer owned = CVBuffer::zeroed(static_cast<size_t>(height), rowBytes);
    if (!owned)
      return CVOutOfMemory("the image");
    CVResult wrapped = wrap(owned.data(), rowBytes, width, height, planes);
    if (wrapped.ok())
      _owned = std::move(owned);
    return wrapped;
  });
}

CVResult CVDocument::wrap(uint8_t* pixels, size_t rowStride, int width, int height, int planes) {
  return CVGuarded("the image", [&]() -> CVResult {
    if (CVResult shape = checkShape(width, height, planes); !shape.ok())
      return shape;
    const auto pixelStep = static_cast<size_t>(planes);
    if (!rowsHold(pixels, rowStride, static_cast<size_t>(width) * pixelStep, height))
      return badImage("rows of " + std::to_string(rowStride) + " bytes do not hold an image of " +
                      std::to_string(width) + " pixels and " + std::to_string(planes) + " planes");
    CVDocument fresh;
    fresh._width = width;
    fresh._height = height;
    fresh._base = {pixels, rowStride, pixelStep};
    for (int i = 0; i < planes; ++i)
      fresh._names.push_back(defaultName(i));
    *this = std::move(fresh);
    return {};
  });
}

CVResult CVDocument::wrapChannel(const std::string& name, uint8_t* pixels, size_t rowStride) {
  return CVGuarded("a channel", [&]() -> CVResult {
    if (channelCount() == 0)
      return badImage("a channel needs an image to belong to");
    if (channelCount() >= CV_MAX_CHANNELS)
      return badImage("an image has at most " + std::to_string(CV_MAX_CHANNELS) + " channels");
    if (!rowsHold(pixels, rowStride, static_cast<size_t>(_width), _height))
      return badImage("the rows of channel \"" + name + "\" are too short for the image");
    _extras.reserve(_extras.size() + 1); // so that the lists cannot end up of different lengths
    _names.push_back(name);
    _extras.push_back({pixels, rowStride, 1});
    return {};
  });
}

CVResult CVDocument::wrapMask(const uint8_t* pixels, size_t rowStride) {
  return CVGuarded("the selection", [&]() -> CVResult {
    if (channelCount() == 0)
      return badImage("a selection needs an image to belong to");
    if (!rowsHold(pixels, rowStride, static_cast<size_t>(_width), _height))
      return badImage("the rows of the selection are too short for the image");
    _mask = {pixels, rowStride, 1};
    return {};
  });
}

CVRect CVDocument::bounds() const {
  return {0, 0, static_cast<int16_t>(_height), static_cast<int16_t>(_width)};
}

CVChannelView<uint8_t> CVDocument::channel(int index) {
  if (index < basePlanes())
    return {_base.data + index, _base.rowStride, _base.pixelStep};
  return _extras[static_cast<size_t>(index - basePlanes())];
}

CVChannelView<const uint8_t> CVDocument::channel(int index) const {
  // Nothing is written through it.
  const auto view = const_cast<CVDocument*>(this)->channel(index);
  return {view.data, view.rowStride, view.pixelStep};
}
