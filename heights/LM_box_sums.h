// Sums over a square that goes over a plane: each costs the same however large the square is.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

// Half the side of a square around a pixel, beside the pixel itself, in sixteenths of a pixel: the
// pixels at its rim count for the part of them that is inside.
struct LM_box_radius {
  int whole = 0;
  int sixteenths = 0;

  static LM_box_radius Of(double pixels);
  // What all pixels of the square count together.
  double Weight() const;
};

// Sums down a plane, row by row from the top. Beyond its edges a plane goes on with its last
// values. Whole numbers, so that no order of adding changes a sum.
class LM_box_sums {
public:
  LM_box_sums(int width, int height, const LM_box_radius& radius)
      : _width(width), _height(height), _radius(radius), _columns(static_cast<size_t>(width)),
        _padded(static_cast<size_t>(width) + 2 * (static_cast<size_t>(radius.whole) + 1)) {}

  // The sums around each pixel of row y, any first and then the one below each time. valueAt: gives
  // the value at (x, y), at most 32 bits.
  template <class ValueAt> void MakeRow(int y, uint64_t* sums, const ValueAt& valueAt) {
    const int reach = _radius.whole;
    if (_isBegun)
      _MoveTo(y, valueAt);
    else
      for (int row = y - reach; row <= y + reach; ++row)
        _AddRow(row, valueAt);
    _isBegun = true;
    _SumAcross(y, sums, valueAt);
  }

private:
  int _Within(int y) const { return std::clamp(y, 0, _height - 1); }

  template <class ValueAt> void _AddRow(int row, const ValueAt& valueAt) {
    for (int x = 0; x < _width; ++x)
      _columns[static_cast<size_t>(x)] += valueAt(x, _Within(row));
  }

  template <class ValueAt> void _MoveTo(int y, const ValueAt& valueAt) {
    const int added = _Within(y + _radius.whole);
    const int left = _Within(y - _radius.whole - 1);
    for (int x = 0; x < _width; ++x)
      _columns[static_cast<size_t>(x)] += uint64_t{valueAt(x, added)} - valueAt(x, left);
  }

  template <class ValueAt> void _SumAcross(int y, uint64_t* sums, const ValueAt& valueAt) {
    const int margin = _radius.whole + 1;
    const auto rim = static_cast<uint64_t>(_radius.sixteenths);
    const int above = _Within(y - margin);
    const int below = _Within(y + margin);
    uint64_t* const padded = _padded.data() + margin;
    for (int x = 0; x < _width; ++x)
      padded[x] = 16 * _columns[static_cast<size_t>(x)] +
                  rim * (uint64_t{valueAt(x, above)} + valueAt(x, below));
    std::fill_n(_padded.data(), margin, padded[0]);
    std::fill_n(padded + _width, margin, padded[_width - 1]);
    uint64_t inner = 0;
    for (int x = 1 - margin; x < margin; ++x)
      inner += padded[x];
    for (int x = 0; x < _width; ++x) {
      const uint64_t left = padded[x - margin];
      const uint64_t right = padded[x + margin];
      sums[x] = 16 * inner + rim * (left + right);
      inner += right - padded[x - margin + 1];
    }
  }

  int _width;
  int _height;
  LM_box_radius _radius;
  bool _isBegun = false;
  std::vector<uint64_t> _columns; // of 2 * whole + 1 rows
  std::vector<uint64_t> _padded;  // with the rim's rows, and a margin on both sides
};
