// What a plug-in asks for between two calls, checked against the document.
#pragma once

#include "CVDocument.h"
#include "CVFilterRecord.h"
#include "CVResult.h"

#include <cstdint>

// What stands for the selection among the numbers of channels.
inline constexpr int CV_MASK_CHANNEL = -1;

// A rectangle of some channels. Sides are image pixels, wide enough for any difference of 16-bit
// numbers. Delivered are every step-th (16.16) pixel of every step-th row, the top-left one first.
struct CVTile {
  int top = 0, left = 0;
  int height = 0, width = 0; // 0 both when nothing is wanted
  int firstChannel = 0, lastChannel = 0;
  int32_t step = CV_FIXED_ONE;

  bool isEmpty() const { return width == 0; }
  int channels() const { return lastChannel - firstChannel + 1; }
  int rows() const { return _samples(height); }
  int columns() const { return _samples(width); }

private:
  int _samples(int length) const {
    return static_cast<int>((int64_t{length} * CV_FIXED_ONE + step - 1) / step);
  }
};

struct CVTileRequest {
  CVTile input; // may reach outside the image: its edge pixels are repeated there
  CVTile output;
  CVTile mask;
};

// Reads the request fields of the record into `request`. BadRequest for what is
// not a request that the contract allows. May throw std::bad_alloc.
CVResult CVReadRequest(const FilterRecord& record, const CVDocument& document,
                       CVTileRequest& request);
