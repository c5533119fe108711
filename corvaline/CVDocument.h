// The image that a filter works on: channels of 8 bits, their names, and the user's selection.
#pragma once

#include "CVBuffer.h"
#include "CVFilterRecord.h"
#include "CVResult.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Sides of a document: rectangles of the contract hold 16-bit numbers.
inline constexpr int CV_MAX_SIDE = 32767;
inline constexpr int CV_MAX_CHANNELS = 1000;
inline constexpr int CV_COLOUR_PLANES = 3;

// One channel as bytes: pixel (row, column) is data[row * rowStride + column * pixelStep].
// Byte is uint8_t or const uint8_t; the memory stays its owner's.
template <typename Byte> struct CVChannelView {
  Byte* data = nullptr;
  size_t rowStride = 0;
  size_t pixelStep = 0;
};

// Channels 0 to basePlanes() − 1 lie interleaved in one base buffer; each further channel is a
// plane of the caller's. The first CV_COLOUR_PLANES channels are red, green and blue; alpha and
// extra channels follow. Memory that is wrapped stays the caller's, must outlive the document, and
// is written by a successful filter run.
//
// Rows of memory that the document owns follow each other without a gap.
//
// Functions that return a CVResult leave the document as it was unless the result is Done:
// BadImage for wrong arguments, NoMemory. They do not throw.
class CVDocument {
public:
  CVDocument() = default; // 0 × 0, without channels

  // A black image in memory of its own. Replaces everything that the document held.
  // width, height: 1 to CV_MAX_SIDE; planes: CV_COLOUR_PLANES to CV_MAX_CHANNELS.
  CVResult create(int width, int height, int planes);
  // The same over the caller's pixels: `planes` interleaved bytes a pixel, rowStride bytes a row
  // (at least width × planes).
  CVResult wrap(uint8_t* pixels, size_t rowStride, int width, int height, int planes);

  // Appends a channel over the caller's memory: one byte a pixel, rowStride bytes a row.
  CVResult wrapChannel(const std::string& name, uint8_t* pixels, size_t rowStride);

  // The selection: one byte a pixel, 255 fully selected. Without one everything is selected.
  CVResult wrapMask(const uint8_t* pixels, size_t rowStride);
  bool hasMask() const { return _mask.data != nullptr; }
  // data is null without a mask; pixelStep is 1.
  CVChannelView<const uint8_t> mask() const { return _mask; }

  int width() const { return _width; }
  int height() const { return _height; }
  int basePlanes() const { return static_cast<int>(_base.pixelStep); }
  int channelCount() const { return static_cast<int>(_names.size()); }
  CVRect bounds() const;

  // index: 0 to channelCount() − 1. The view of channel 0 is the base buffer too: its pixelStep is
  // basePlanes().
  CVChannelView<uint8_t> channel(int index);
  CVChannelView<const uint8_t> channel(int index) const;

  // Names are the bytes that a plug-in is given; the image's own are Red, Green, Blue and Alpha,
  // then "Channel 5" and so on.
  const std::string& channelName(int index) const { return _names[static_cast<size_t>(index)]; }

private:
  friend class CVResultImage;

  int _width = 0;
  int _height = 0;
  CVBuffer _owned; // the base's memory; empty when that is the caller's
  CVChannelView<uint8_t> _base;
  std::vector<CVChannelView<uint8_t>> _extras;
  std::vector<std::string> _names;
  CVChannelView<const uint8_t> _mask;
};
