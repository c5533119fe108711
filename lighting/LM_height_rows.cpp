#include "LM_height_rows.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "LM_arithmetic.h"
#include "LM_heights.h"

namespace {

uint16_t ReadWord(const uint8_t* bytes) {
  uint16_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

uint16_t ReadFloat(const uint8_t* bytes) {
  float value;
  std::memcpy(&value, bytes, sizeof value);
  return LM_RoundWord(value * 65535.0F);
}

} // namespace

template <class Tap, class Read> void LM_height_rows::_FillTaps(int32_t y, Tap* taps, Read read) {
  const int32_t row = std::clamp(y, _edges.top, _edges.bottom - 1);
  const int32_t begin = _first - 1;
  const int32_t end = _first + _count + 1;
  const int32_t left = std::clamp(begin, _edges.left, _edges.right - 1);
  const int32_t right = std::clamp(end, left + 1, _edges.right);
  const uint8_t* pixel = _plane.At(left, row);
  Tap* out = std::fill_n(taps, std::min(left, end) - begin, read(pixel));
  if (LM_ComponentBytes(_kind) == sizeof(Tap) && _plane.pixelStep == sizeof(Tap)) {
    std::memcpy(out, pixel, static_cast<size_t>(right - left) * sizeof(Tap));
    out += right - left;
  } else {
    const ptrdiff_t step = _plane.pixelStep; // which bytes that are written might be
    for (int32_t x = left; x < right; ++x, pixel += step)
      *out++ = read(pixel);
  }
  std::fill_n(out, end - begin - (out - taps), read(_plane.At(right - 1, row)));
}

void LM_height_rows::_FillTaps(int32_t y) {
  if (_kind == LM_pixel_kind::Bytes)
    _FillTaps(y, _taps.bytes->At(y), [](const uint8_t* byte) { return *byte; });
  else if (_kind == LM_pixel_kind::Words)
    _FillTaps(y, _taps.words->At(y), ReadWord);
  else
    _FillTaps(y, _taps.words->At(y), ReadFloat);
}

void LM_height_rows::Make(int32_t y, int32_t* heights) {
  for (int32_t row = _hasRowsAbove ? y + 1 : y - 1; row <= y + 1; ++row)
    _FillTaps(row);
  _hasRowsAbove = true;
  const auto weigh = [&](const auto* above, const auto* middle, const auto* below) {
    for (int i = 0; i < _count; ++i)
      heights[i] = LM_WeighHeight(above + i, middle + i, below + i, _scale);
  };
  const auto filter = [&](auto& rows, auto kernel) {
    const std::remove_reference_t<decltype(*rows.At(y))>* const taps[3] = {
        rows.At(y - 1), rows.At(y), rows.At(y + 1)};
    if (kernel != nullptr)
      kernel(taps, _count, _scale, heights);
    else
      weigh(taps[0], taps[1], taps[2]);
  };
  if (_kind == LM_pixel_kind::Bytes)
    filter(*_taps.bytes, _kernels != nullptr ? _kernels->heights : nullptr);
  else
    filter(*_taps.words, _kernels != nullptr && std::abs(_scale) <= LM_WORD_HEIGHTS_SCALE
                             ? _kernels->wordHeights
                             : nullptr);
}
