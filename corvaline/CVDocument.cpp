#include "CVDocument.h"

#include <cstring>
#include <limits>
#include <utility>

static CVResult badImage(std::string message) {
  return {CVOutcome::BadImage, 0, std::move(message)};
}

static int planesOfMode(int colorMode, int basePlanes) {
  if (colorMode == CV_MODE_GRAY)
    return 1;
  return colorMode == CV_MODE_RGB ? 3 : basePlanes;
}

static CVResult checkShape(int width, int height, int colorMode, int planes) {
  const std::string size = std::to_string(width) + " x " + std::to_string(height);
  if (width < 1 || height < 1)
    return badImage("an image of " + size + " pixels has no content");
  if (width > CV_MAX_SIDE || height > CV_MAX_SIDE)
    return badImage("the image is " + size + " pixels; its sides may have at most " +
                    std::to_string(CV_MAX_SIDE));
  if (colorMode < 0 || colorMode > std::numeric_limits<int16_t>::max())
    return badImage("there is no colour mode " + std::to_string(colorMode));
  if (planes < 1 || planes > CV_MAX_CHANNELS || planes < planesOfMode(colorMode, planes))
    return badImage("an image of colour mode " + std::to_string(colorMode) + " cannot have " +
                    std::to_string(planes) + " planes");
  return {};
}

static std::string defaultName(int colorMode, int modePlanes, int index) {
  static const char* const rgb[] = {"Red", "Green", "Blue"};
  if (colorMode == CV_MODE_RGB && index < 3)
    return rgb[index];
  if (colorMode == CV_MODE_GRAY && index == 0)
    return "Gray";
  if (index == modePlanes)
    return "Alpha";
  return "Channel " + std::to_string(index + 1);
}

static bool rowsHold(const uint8_t* pixels, size_t rowStride, size_t rowBytes, int rows) {
  const size_t largest = std::numeric_limits<ptrdiff_t>::max();
  return pixels != nullptr && rowStride >= rowBytes &&
         rowStride <= largest / static_cast<size_t>(rows);
}

void CVDocument::_become(Plane base, int width, int height, int colorMode, int planes) {
  CVDocument fresh;
  fresh._width = width;
  fresh._height = height;
  fresh._colorMode = colorMode;
  fresh._modePlanes = planesOfMode(colorMode, planes);
  fresh._basePlanes = planes;
  fresh._base = std::move(base);
  for (int i = 0; i < planes; ++i)
    fresh._names.push_back(defaultName(colorMode, fresh._modePlanes, i));
  *this = std::move(fresh);
}

CVResult CVDocument::create(int width, int height, int colorMode, int planes) {
  return CVGuarded("the image", [&]() -> CVResult {
    if (CVResult shape = checkShape(width, height, colorMode, planes); !shape.ok())
      return shape;
    const auto rowBytes = static_cast<size_t>(width) * static_cast<size_t>(planes);
    Plane base;
    base.owned = CVBuffer::zeroed(static_cast<size_t>(height), rowBytes);
    if (!base.owned)
      return CVOutOfMemory("the image");
    base.view = {base.owned.data(), rowBytes, static_cast<size_t>(planes)};
    _become(std::move(base), width, height, colorMode, planes);
    return {};
  });
}

CVResult CVDocument::wrap(uint8_t* pixels, size_t rowStride, int width, int height, int colorMode,
                          int planes) {
  return CVGuarded("the image", [&]() -> CVResult {
    if (CVResult shape = checkShape(width, height, colorMode, planes); !shape.ok())
      return shape;
    const auto rowBytes = static_cast<size_t>(width) * static_cast<size_t>(planes);
    if (!rowsHold(pixels, rowStride, rowBytes, height))
      return badImage("rows of " + std::to_string(rowStride) + " bytes do not hold an image of " +
                      std::to_string(width) + " pixels and " + std::to_string(planes) + " planes");
    Plane base;
    base.view = {pixels, rowStride, static_cast<size_t>(planes)};
    _become(std::move(base), width, height, colorMode, planes);
    return {};
  });
}

CVResult CVDocument::_checkAppend() const {
  if (_basePlanes == 0)
    return badImage("a channel needs an image to belong to");
  if (channelCount() >= CV_MAX_CHANNELS)
    return badImage("an image has at most " + std::to_string(CV_MAX_CHANNELS) + " channels");
  return {};
}

void CVDocument::_append(const std::string& name, Plane plane) {
  std::string copy = name;
  _extras.reserve(_extras.size() + 1); // so that the lists cannot end up of different lengths
  _names.push_back(std::move(copy));
  _extras.push_back(std::move(plane));
}

CVResult CVDocument::addChannel(const std::string& name) {
  return CVGuarded("a channel", [&]() -> CVResult {
    if (CVResult fits = _checkAppend(); !fits.ok())
      return fits;
    Plane plane;
    const auto rowBytes = static_cast<size_t>(_width);
    plane.owned = CVBuffer::zeroed(static_cast<size_t>(_height), rowBytes);
    if (!plane.owned)
      return CVOutOfMemory("a channel");
    plane.view = {plane.owned.data(), rowBytes, 1};
    _append(name, std::move(plane));
    return {};
  });
}

CVResult CVDocument::wrapChannel(const std::string& name, uint8_t* pixels, size_t rowStride) {
  return CVGuarded("a channel", [&]() -> CVResult {
    if (CVResult fits = _checkAppend(); !fits.ok())
      return fits;
    if (!rowsHold(pixels, rowStride, static_cast<size_t>(_width), _height))
      return badImage("the rows of channel \"" + name + "\" are too short for the image");
    Plane plane;
    plane.view = {pixels, rowStride, 1};
    _append(name, std::move(plane));
    return {};
  });
}

CVResult CVDocument::createMask(uint8_t fill) {
  return CVGuarded("the selection", [&]() -> CVResult {
    if (_basePlanes == 0)
      return badImage("a selection needs an image to belong to");
    const auto rowBytes = static_cast<size_t>(_width);
    CVBuffer buffer = CVBuffer::zeroed(static_cast<size_t>(_height), rowBytes);
    if (!buffer)
      return CVOutOfMemory("the selection");
    std::memset(buffer.data(), fill, buffer.size());
    _maskBuffer = std::move(buffer);
    _mask = {_maskBuffer.data(), rowBytes, 1};
    return {};
  });
}

CVResult CVDocument::wrapMask(uint8_t* pixels, size_t rowStride) {
  return CVGuarded("the selection", [&]() -> CVResult {
    if (_basePlanes == 0)
      return badImage("a selection needs an image to belong to");
    if (!rowsHold(pixels, rowStride, static_cast<size_t>(_width), _height))
      return badImage("the rows of the selection are too short for the image");
    _maskBuffer = CVBuffer();
    _mask = {pixels, rowStride, 1};
    return {};
  });
}

CVChannelView<const uint8_t> CVDocument::mask() const {
  return {_mask.data, _mask.rowStride, _mask.pixelStep};
}

CVRect CVDocument::bounds() const {
  return {0, 0, static_cast<int16_t>(_height), static_cast<int16_t>(_width)};
}

CVChannelView<uint8_t> CVDocument::channel(int index) {
  if (index < _basePlanes)
    return {_base.view.data + index, _base.view.rowStride, _base.view.pixelStep};
  return _extras[static_cast<size_t>(index - _basePlanes)].view;
}

CVChannelView<const uint8_t> CVDocument::channel(int index) const {
  if (index < _basePlanes)
    return {_base.view.data + index, _base.view.rowStride, _base.view.pixelStep};
  const auto& view = _extras[static_cast<size_t>(index - _basePlanes)].view;
  return {view.data, view.rowStride, view.pixelStep};
}
