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
            "the plug-in asked for an " + std::string(what) + " tile of " + std::to_string(bytes) +
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

namespace {

// Samples at every step-th byte.
struct Samples {
  uint8_t* first;
  size_t step;
};

} // namespace

static void copyRow(const uint8_t* source, size_t sourceStep, Samples dest, size_t count) {
  if (sourceStep == 1 && dest.step == 1) {
    std::memcpy(dest.first, source, count);
    return;
  }
  for (size_t i = 0; i < count; ++i)
    dest.first[i * dest.step] = source[i * sourceStep];
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
      copyRow(source + columns.front() * channel.pixelStep, channel.pixelStep,
              {sample, dest.pixelStep}, columns.size());
      continue;
    }
    for (const size_t x : columns) {
      *sample = source[x * channel.pixelStep];
      sample += dest.pixelStep;
    }
  }
}

CVChannelView<const uint8_t> CVTileDelivery::_channel(int index) const {
  return index == CV_MASK_CHANNEL ? _document.mask() : _document.channel(index);
}

// Copies what the document has in the tile.
void CVTileDelivery::_copyTile(const CVTile& tile, const CVBuffer& buffer) {
  _columns.resize(static_cast<size_t>(tile.columns()));
  for (size_t i = 0; i < _columns.size(); ++i)
    _columns[i] = samplePosition(tile.left, static_cast<int>(i), tile.step, _document.width());
  for (int i = 0; i < tile.channels(); ++i)
    copySamples(_channel(tile.firstChannel + i), tile, _document.height(), _columns,
                {buffer.data() + i, strideOfCopy(tile), static_cast<size_t>(tile.channels())});
}

// True when a pixel of the tile is the same bytes as a pixel of the buffer it belongs to.
bool CVTileDelivery::_hasWholePixels(const CVTile& tile) const {
  return _channel(tile.firstChannel).pixelStep == static_cast<size_t>(tile.channels()) &&
         (tile.firstChannel <= 0 || tile.firstChannel >= _document.basePlanes());
}

// True when the document's own bytes are what the tile asks for: whole pixels, every one of them,
// and nothing outside the image.
bool CVTileDelivery::_lendable(const CVTile& tile) const {
  const bool inside = tile.top >= 0 && tile.left >= 0 &&
                      tile.top + tile.height <= _document.height() &&
                      tile.left + tile.width <= _document.width();
  return inside && tile.step == CV_FIXED_ONE && _hasWholePixels(tile) &&
         _channel(tile.firstChannel).rowStride <=
             static_cast<size_t>(std::numeric_limits<int32_t>::max());
}

// Where pixel (y, x) of the image is in a view whose pixel (0, 0) is the image's (top, left).
template <typename Byte>
static Byte* at(const CVChannelView<Byte>& view, int y, int x, int top = 0, int left = 0) {
  return view.data + static_cast<size_t>(y - top) * view.rowStride +
         static_cast<size_t>(x - left) * view.pixelStep;
}

CVResult CVTileDelivery::_deliverContent(const char* what, const CVTile& tile, CVBuffer& buffer,
                                         const uint8_t*& pixels, int32_t& rowStride) {
  if (tile.isEmpty())
    return {};
  if (_lendable(tile)) {
    const auto view = _channel(tile.firstChannel);
    pixels = at(view, tile.top, tile.left);
    rowStride = static_cast<int32_t>(view.rowStride);
    return {};
  }
  if (CVResult room = makeRoom(what, tile, buffer); !room.ok())
    return room;
  _copyTile(tile, buffer);
  pixels = buffer.data();
  rowStride = static_cast<int32_t>(strideOfCopy(tile));
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

// Calls `row` for each row of the part and each channel, or with whole pixels once for all of them,
// with its samples in the copy of the tile and in the result, their number, and the row's.
template <typename Row>
void CVTileDelivery::_forRows(const CVTile& tile, const CVTile& part, bool whole, Row row) {
  const CVRect& area = _result.area();
  const auto channels = static_cast<size_t>(tile.channels());
  const size_t count = static_cast<size_t>(part.width) * (whole ? channels : 1);
  for (int i = 0; i < (whole ? 1 : tile.channels()); ++i) {
    const CVChannelView<uint8_t> copy{_outputBuffer.data() + i, strideOfCopy(tile), channels};
    const auto result = _result.channel(tile.firstChannel + i);
    for (int y = part.top; y < part.top + part.height; ++y)
      row(Samples{at(copy, y, part.left, tile.top, tile.left), whole ? 1 : channels},
          Samples{at(result, y, part.left, area.top, area.left), whole ? 1 : result.pixelStep},
          count, y);
  }
}

// Fills the output tile with the present content: the document's, and in the filter area the
// result's.
void CVTileDelivery::_fillOutput(const CVTile& tile, const CVTile& part) {
  if (part.height != tile.height || part.width != tile.width)
    _copyTile(tile, _outputBuffer);
  if (!part.isEmpty())
    _forRows(tile, part, _hasWholePixels(tile),
             [](Samples copy, Samples result, size_t count, int) {
               copyRow(result.first, result.step, copy, count);
             });
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
  const CVRect& area = _result.area();
  const CVTile part = insideArea(tile, area);
  _isOutputLent = _outputLendable(tile, part);
  if (!_isOutputLent)
    if (CVResult room = makeRoom("output", tile, _outputBuffer); !room.ok())
      return room;
  if (!part.isEmpty() && !_result.open(tile.firstChannel, tile.lastChannel, part.top + part.height))
    return CVOutOfMemory("the filtered image");
  if (_isOutputLent) {
    const auto result = _result.channel(tile.firstChannel);
    record.outPixels = at(result, tile.top, tile.left, area.top, area.left);
    record.outRowStride = static_cast<int32_t>(result.rowStride);
  } else {
    _fillOutput(tile, part);
    record.outPixels = _outputBuffer.data();
    record.outRowStride = static_cast<int32_t>(strideOfCopy(tile));
  }
  _output = tile;
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
    CVResult step =
        _deliverContent("input", _request.input, _inputBuffer, record.inPixels, record.inRowStride);
    if (step.ok() && _document.hasMask())
      step = _deliverContent("mask", _request.mask, _maskBuffer, record.maskPixels,
                             record.maskRowStride);
    return step.ok() ? _deliverOutput(record) : step;
  });
  if (!result.ok())
    withdraw(record);
  return result;
}

void CVTileDelivery::takeOutput() {
  const CVTile tile = _output;
  const CVTile part = insideArea(tile, _result.area());
  _output = {};
  if (part.isEmpty())
    return;
  _pixelsTaken += int64_t{part.height} * part.width;
  if (_isOutputLent)
    return;
  const auto selection = _document.mask();
  const bool mixed = selection.data != nullptr;
  _forRows(tile, part, !mixed && _hasWholePixels(tile),
           [&](Samples copy, Samples result, size_t count, int y) {
             if (!mixed)
               return copyRow(copy.first, copy.step, result, count);
             const uint8_t* share = at(selection, y, part.left);
             for (size_t i = 0; i < count; ++i) {
               uint8_t& sample = result.first[i * result.step];
               sample = CVMixSelected(sample, copy.first[i * copy.step], share[i]);
             }
           });
}
