// Sums and means over a square that goes down a plane: each costs the same however large the square
// is.
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
  // What a whole row or column of pixels counts: sixteenths only where there are any.
  unsigned Unit() const { return sixteenths == 0 ? 1 : 16; }
  // What all pixels of the square count together.
  double Weight() const;
  // The rows below a pixel's own of which something is needed for it, and as many above.
  int Reach() const { return whole + 1; }
};

// Sums down a plane, row by row from the top. Beyond its edges a plane goes on with its last
// values. Whole numbers, so that no order of adding changes a sum. Column: holds the sum of all
// values of a column of the square.
template <class Column> class LM_box_sums {
public:
  LM_box_sums(int width, int height, const LM_box_radius& radius)
      : _width(width), _height(height), _radius(radius),
        _margin(static_cast<size_t>(radius.Reach())),
        _columns(static_cast<size_t>(width) + 2 * _margin),
        _weighted(radius.sixteenths == 0 ? 0 : _columns.size()) {}

  // The sums around each pixel of row y, any first and then the one below each time. rows: has the
  // plane's from y - Reach() to y + Reach(). valueOf: what of its values is summed.
  template <class Rows, class ValueOf>
  void MakeRow(int y, Rows& rows, const ValueOf& valueOf, uint64_t* sums) {
    const auto rowWithin = [&](int row) { return rows.Row(std::clamp(row, 0, _height - 1)); };
    const int whole = _radius.whole;
    if (_isBegun)
      _Move(rowWithin(y + whole), rowWithin(y - whole - 1), valueOf);
    else
      for (int row = y - whole; row <= y + whole; ++row)
        _Add(rowWithin(row), valueOf);
    _isBegun = true;
    if (_radius.sixteenths == 0) {
      _PadEdges(_columns.data());
      _SumAcross<1>(_columns.data(), sums);
    } else {
      _Weigh(rowWithin(y - _radius.Reach()), rowWithin(y + _radius.Reach()), valueOf);
      _PadEdges(_weighted.data());
      _SumAcross<16>(_weighted.data(), sums);
    }
  }

private:
  template <class ValueOf> void _Add(const uint16_t* row, const ValueOf& valueOf) {
    Column* const columns = _columns.data() + _margin;
    for (int x = 0; x < _width; ++x)
      columns[x] += valueOf(row[x]);
  }

  template <class ValueOf>
  void _Move(const uint16_t* added, const uint16_t* left, const ValueOf& valueOf) {
    Column* const columns = _columns.data() + _margin;
    for (int x = 0; x < _width; ++x)
      columns[x] += Column{valueOf(added[x])} - Column{valueOf(left[x])};
  }

  template <class ValueOf>
  void _Weigh(const uint16_t* above, const uint16_t* below, const ValueOf& valueOf) {
    const auto rim = static_cast<uint64_t>(_radius.sixteenths);
    const Column* const columns = _columns.data() + _margin;
    uint64_t* const weighted = _weighted.data() + _margin;
    for (int x = 0; x < _width; ++x)
      weighted[x] = 16 * uint64_t{columns[x]} +
                    rim * (uint64_t{valueOf(above[x])} + uint64_t{valueOf(below[x])});
  }

  template <class Sum> void _PadEdges(Sum* padded) const {
    Sum* const row = padded + _margin;
    std::fill_n(padded, _margin, row[0]);
    std::fill_n(row + _width, _margin, row[_width - 1]);
  }

  template <unsigned UNIT, class Sum> void _SumAcross(const Sum* padded, uint64_t* sums) const {
    const auto rim = static_cast<uint64_t>(_radius.sixteenths);
    const Sum* const right = padded + 2 * _margin;
    uint64_t inner = 0;
    for (size_t i = 1; i < 2 * _margin; ++i)
      inner += padded[i];
    for (int x = 0; x < _width; ++x) {
      sums[x] = UNIT == 1 ? inner : UNIT * inner + rim * (uint64_t{padded[x]} + right[x]);
      inner += uint64_t{right[x]} - padded[x + 1];
    }
  }

  int _width;
  int _height;
  LM_box_radius _radius;
  size_t _margin; // on both sides of a row
  bool _isBegun = false;
  std::vector<Column> _columns;    // of 2 * whole + 1 rows
  std::vector<uint64_t> _weighted; // with the rim's rows, where there is a rim
};

// The means over squares, likewise.
class LM_box_means {
public:
  LM_box_means(int width, int height, double radius);

  int Reach() const { return _radius.Reach(); }
  // Whether row y can be made of the first numRows rows.
  bool CanMake(int y, int numRows) const {
    return y < _height && (numRows == _height || y + Reach() < numRows);
  }
  // As LM_box_sums'.
  template <class Rows> void MakeRow(int y, Rows& rows, uint16_t* means) {
    _box.MakeRow(
        y, rows, [](uint16_t value) { return uint32_t{value}; }, _sums.data());
    _Divide(means);
  }

private:
  void _Divide(uint16_t* means) const;

  int _height;
  LM_box_radius _radius;
  double _share;
  LM_box_sums<uint32_t> _box;
  std::vector<uint64_t> _sums;
};
