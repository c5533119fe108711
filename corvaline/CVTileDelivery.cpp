#include "CVTileDelivery.h"

#include "CVMix.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

// A tile may be the whole of any image, but only as much as this of it is copied for a plug-in: a
// margin can make a request of gigabytes out of an image of one pixel.
static constexpr int64_t LARGEST_COPY = 256 << 20;

// Rows of a copy begin at multiples of 16 bytes.
static size_t strideOfCopy(const CVTile& tile) {
  const size_t bytes = static_cast<size_t>(tile.columns()) * static_cast<size_t>(tile.channels());
  return (bytes + 15) / 16 * 16;
}

static CVResult makeRoom(const char* what, const CVTile& tile, CVBuffer& buffer) {
  const auto bytes = static_cast<int64_t>(tile.rows()) * static_cast<int64_t>(strideOfCopy(tile));
  if (bytes > LARGEST_COPY)
    return {CVOutcome::BadRequest, 0,
            "asked for an " + std::string(what) + " tile of " + std::to_string(bytes) +
                " bytes, more than the " + std::to_string(LARGEST_COPY) + " that a tile may have"};
  if (!buffer.reserve(static_cast<size_t>(bytes)))
    return CVOutOfMemory("a tile of the image");
  return {};
}

// The sample `index` of a tile side that starts at `start`, as a coordinate inside the image.
static size_t samplePosition(int start, int index, int32_t step, int imageSide) {
  const int64_t position = start + ((int64_t{index} * step) >> 16);
  return static_cast<size_t>(std::clamp<int64_t>(position, 0, imageSide - 1));
}

static void copyRow(const uint8_t* source, size_t sourceStep, uint8_t* dest, size_t destStep,
                    size_t count) {
  if (sourceStep == 1 && destStep == 1) {
    std::memcpy(dest, source, count);
    return;
  }
  for (size_t i = 0; i < count; ++i)
    dest[i * destStep] = source[i * sourceStep];
}

// Copies the tile's samples of one channel to every pixelStep-th byte of dest. columns: image
// column of each sample of a row.
static void copySamples(const CVChannelView<const uint8_t>& channel, const CVTile& tile,
                        int imageHeight, const std::vector<size_t>& columns,
                        const CVChannelView<uint8_t>& dest) {
  for (int row = 0; row < tile.rows(); ++row) {
    const size_t y = samplePosition(tile.top, row, tile.step, imageHeight);
    const uint8_t* source = channel.data + y * channel.rowStride;
    uint8_t* sample = dest.data + static_cast<size_t>(row) * dest.rowStride;
    if (tile.step == CV_FIXED_ONE && columns.back() - columns.front() == columns.size() - 1) {
      copyRow(source + columns.front() * channel.pixelStep, channel.pixelStep, sample,
              dest.pixelStep, columns.size());
      continue;
    }
    for (const size_t x : columns) {
      *sample = source[x * channel.pixelStep];
      sample += dest.pixelStep;
    }
  }
}

static void findColumns(const CVTile& tile, int imageWidth, std::vector<size_t>& columns) {
  columns.resize(static_cast<size_t>(tile.columns()));
  for (size_t i = 0; i < columns.size(); ++i)
    columns[i] = samplePosition(tile.left, static_cast<int>(i), tile.step, imageWidth);
}

// True when a pixel of the tile is the same bytes as a pixel of the buffer it belongs to.
bool CVTileDelivery::_hasWholePixels(const CVTile& tile) const {
  return _document.channel(tile.firstChannel).pixelStep == static_cast<size_t>(tile.channels()) &&
         (tile.firstChannel == 0 || tile.firstChannel >= _document.basePlanes());
}

// True when the document's own bytes are what the tile asks for: whole pixels, every one of them,
// and nothing outside the image.
bool CVTileDelivery::_lendable(const CVTile& tile) const {
  const bool inside = tile.top >= 0 && tile.left >= 0 &&
                      tile.top + tile.height <= _document.height() &&
                      tile.left + tile.width <= _document.width();
  return inside && tile.step == CV_FIXED_ONE && _hasWholePixels(tile) &&
         _document.channel(tile.firstChannel).rowStride <=
             static_cast<size_t>(std::numeric_limits<int32_t>::max());
}

static const uint8_t* at(const CVChannelView<const uint8_t>& view, int row, int column) {
  return view.data + static_cast<size_t>(row) * view.rowStride +
         static_cast<size_t>(column) * view.pixelStep;
}

CVResult CVTileDelivery::_deliverInput(FilterRecord& record) {
  const CVTile& tile = _request.input;
  if (tile.isEmpty())
    return {};
  if (_lendable(tile)) {
    const auto view = _document.channel(tile.firstChannel);
    record.inPixels = at(view, tile.top, tile.left);
    record.inRowStride = static_cast<int32_t>(view.rowStride);
    return {};
  }
  if (CVResult room = makeRoom("input", tile, _inputBuffer); !room.ok())
    return room;
  const size_t stride = strideOfCopy(tile);
  findColumns(tile, _document.width(), _columns);
  for (int i = 0; i < tile.channels(); ++i)
    copySamples(_document.channel(tile.firstChannel + i), tile, _document.height(), _columns,
                {_inputBuffer.data() + i, stride, static_cast<size_t>(tile.channels())});
  record.inPixels = _inputBuffer.data();
  record.inRowStride = static_cast<int32_t>(stride);
  return {};
}

CVResult CVTileDelivery::_deliverMask(FilterRecord& record) {
  const CVTile& tile = _request.mask;
  if (tile.isEmpty() || !_document.hasMask())
    return {};
  const auto view = _document.mask();
  if (tile.step == CV_FIXED_ONE && view.rowStride <= std::numeric_limits<int32_t>::max()) {
    record.maskPixels = at(view, tile.top, tile.left);
    record.maskRowStride = static_cast<int32_t>(view.rowStride);
    return {};
  }
  if (CVResult room = makeRoom("mask", tile, _maskBuffer); !room.ok())
    return room;
  const size_t stride = strideOfCopy(tile);
  findColumns(tile, _document.width(), _columns);
  copySamples(view, tile, _document.height(), _columns, {_maskBuffer.data(), stride, 1});
  record.maskPixels = _maskBuffer.data();
  record.maskRowStride = static_cast<int32_t>(stride);
  return {};
}

// The part of an output tile that lies in the filter area, in image coordinates. Empty: width 0.
static CVTile insideArea(const CVTile& tile, const CVRect& area) {
  CVTile part = tile;
  part.top = std::max<int>(tile.top, area.top);
  part.left = std::max<int>(tile.left, area.left);
  part.height = std::min<int>(tile.top + tile.height, area.bottom) - part.top;
  part.width = std::min<int>(tile.left + tile.width, area.right) - part.left;
  if (part.height <= 0 || part.width <= 0)
    part.height = part.width = 0;
  return part;
}

// The row of `view`, whose pixel (0, 0) is (top, left) of the image, at image position (y, x).
static uint8_t* rowAt(const CVChannelView<uint8_t>& view, int top, int left, int y, int x) {
  return view.data + static_cast<size_t>(y - top) * view.rowStride +
         static_cast<size_t>(x - left) * view.pixelStep;
}

// Fills the output tile with the present content: the document's, and in the filter area the
// result's.
void CVTileDelivery::_fillOutput(const CVTile& tile, const CVTile& part) {
  const size_t stride = strideOfCopy(tile);
  const auto channels = static_cast<size_t>(tile.channels());
  if (part.height != tile.height || part.width != tile.width) {
    findColumns(tile, _document.width(), _columns);
    for (int i = 0; i < tile.channels(); ++i)
      copySamples(_document.channel(tile.firstChannel + i), tile, _document.height(), _columns,
                  {_outputBuffer.data() + i, stride, channels});
  }
  if (part.isEmpty())
    return;
  const CVRect& area = _result.area();
  const bool whole = _hasWholePixels(tile); // then a row goes over at once
  const auto width = static_cast<size_t>(part.width);
  for (int i = 0; i < (whole ? 1 : tile.channels()); ++i) {
    const CVChannelView<uint8_t> copy{_outputBuffer.data() + i, stride, channels};
    const auto present = _result.channel(tile.firstChannel + i);
    for (int row = part.top; row < part.top + part.height; ++row)
      copyRow(rowAt(present, area.top, area.left, row, part.left), whole ? 1 : present.pixelStep,
              rowAt(copy, tile.top, tile.left, row, part.left), whole ? 1 : channels,
              whole ? width * channels : width);
  }
}

// True when the plug-in may write into the result itself: whole pixels, all of them in the filter
// area, which nothing is mixed with.
bool CVTileDelivery::_outputLendable(const CVTile& tile, const CVTile& part) const {
  return !_document.hasMask() && part.height == tile.height && part.width == tile.width &&
         _hasWholePixels(tile);
}

CVResult CVTileDelivery::_deliverOutput(FilterRecord& record) {
  const CVTile& tile = _request.output;
  if (tile.isEmpty())
    return {};
  const CVTile part = insideArea(tile, _result.area());
  _isOutputLent = _outputLendable(tile, part);
  if (!_isOutputLent)
    if (CVResult room = makeRoom("output", tile, _outputBuffer); !room.ok())
      return room;
  if (!part.isEmpty() && !_result.open(tile.firstChannel, tile.lastChannel, part.top + part.height))
    return CVOutOfMemory("the filtered image");
  if (_isOutputLent) {
    const CVRect& area = _result.area();
    const auto present = _result.channel(tile.firstChannel);
    _output = tile;
    record.outPixels = rowAt(present, area.top, area.left, tile.top, tile.left);
    record.outRowStride = static_cast<int32_t>(present.rowStride);
    return {};
  }
  _fillOutput(tile, part);
  _output = tile;
  record.outPixels = _outputBuffer.data();
  record.outRowStride = static_cast<int32_t>(strideOfCopy(tile));
  return {};
}

void CVTileDelivery::withdraw(FilterRecord& record) {
  _output = {};
  record.inPixels = nullptr;
  record.outPixels = nullptr;
  record.maskPixels = nullptr;
  record.inRowStride = record.outRowStride = record.maskRowStride = 0;
}

CVResult CVTileDelivery::deliver(FilterRecord& record) {
  withdraw(record);
  CVResult result = CVGuarded("a tile of the image", [&] {
    CVResult step = _deliverInput(record);
    if (step.ok())
      step = _deliverMask(record);
    return step.ok() ? _deliverOutput(record) : step;
  });
  if (!result.ok())
    withdraw(record);
  return result;
}

// Puts a row of a channel into the result in the selection's share, rounded to the nearest.
static void mixRow(const uint8_t* left, size_t leftStep, const uint8_t* selection, uint8_t* result,
                   size_t resultStep, int count) {
  for (int i = 0; i < count; ++i) {
    *result = CVMixSelected(*result, *left, selection[i]);
    left += leftStep;
    result += resultStep;
  }
}

void CVTileDelivery::takeOutput() {
  const CVRect& area = _result.area();
  const CVTile tile = _output;
  const CVTile part = insideArea(tile, area);
  _output = {};
  if (part.isEmpty())
    return;
  _pixelsTaken += int64_t{part.height} * part.width;
  if (_isOutputLent)
    return;
  const auto selection = _document.mask();
  const bool mixed = selection.data != nullptr;
  const bool whole = !mixed && _hasWholePixels(tile);
  const size_t stride = strideOfCopy(tile);
  const auto channels = static_cast<size_t>(tile.channels());
  const auto width = static_cast<size_t>(part.width);
  for (int i = 0; i < (whole ? 1 : tile.channels()); ++i) {
    const CVChannelView<uint8_t> left{_outputBuffer.data() + i, stride, channels};
    const auto result = _result.channel(tile.firstChannel + i);
    for (int row = part.top; row < part.top + part.height; ++row) {
      const uint8_t* source = rowAt(left, tile.top, tile.left, row, part.left);
      uint8_t* dest = rowAt(result, area.top, area.left, row, part.left);
      if (mixed)
        mixRow(source, channels, at(selection, row, part.left), dest, result.pixelStep, part.width);
      else
        copyRow(source, whole ? 1 : channels, dest, whole ? 1 : result.pixelStep,
                whole ? width * channels : width);
    }
  }
}
