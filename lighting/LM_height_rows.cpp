#include "LM_height_rows.h"

#include <algorithm>

#include "LM_heights.h"

void LM_height_rows::_FillTaps(int32_t y) {
  const int32_t row = std::clamp(y, _edges.top, _edges.bottom - 1);
  const int32_t begin = _first - 1;
  const int32_t end = _first + _count + 1;
  const int32_t left = std::clamp(begin, _edges.left, _edges.right - 1);
  const int32_t right = std::clamp(end, left + 1, _edges.right);
  const uint8_t* pixel = _plane.At(left, row);
  uint8_t* const taps = _taps.At(y);
  uint8_t* out = std::fill_n(taps, std::min(left, end) - begin, *pixel);
  if (_plane.pixelStep == 1) {
    out = std::copy_n(pixel, right - left, out);
  } else {
    for (int32_t x = left; x < right; ++x, pixel += _plane.pixelStep)
      *out++ = *pixel;
  }
  std::fill_n(out, end - begin - (out - taps), *_plane.At(right - 1, row));
}

void LM_height_rows::Make(int32_t y, int32_t* heights) {
  for (int32_t row = _hasRowsAbove ? y + 1 : y - 1; row <= y + 1; ++row)
    _FillTaps(row);
  _hasRowsAbove = true;
  const uint8_t* const taps[3] = {_taps.At(y - 1), _taps.At(y), _taps.At(y + 1)};
  if (_kernels != nullptr) {
    _kernels->heights(taps, _count, _scale, heights);
    return;
  }
  for (int i = 0; i < _count; ++i)
    heights[i] = LM_WeighHeight(taps[0] + i, taps[1] + i, taps[2] + i, _scale);
}
