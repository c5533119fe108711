#include "LM_height_filters.h"

#include <cmath>

namespace {

constexpr double WHITE = 65535;
constexpr double MIDDLE = 32768;

// A sum is far below 2^63; processors have an instruction for numbers with a sign only.
double AsDouble(uint64_t sum) {
  return static_cast<double>(static_cast<int64_t>(sum));
}

// As many rows as means over squares need at once.
int RowsFor(const LM_box_means& means) {
  return 2 * means.Reach() + 1;
}

} // namespace

LM_box_radius LM_box_radius::Of(double pixels) {
  const int sixteenths = static_cast<int>(std::lround(16 * pixels));
  return {sixteenths / 16, sixteenths % 16};
}

double LM_box_radius::Weight() const {
  const double side = static_cast<double>(Unit()) * (2 * whole + 1) + 2 * sixteenths;
  return side * side;
}

LM_box_means::LM_box_means(int width, int height, double radius)
    : _height(height), _radius(LM_box_radius::Of(radius)), _share(1 / _radius.Weight()),
      _box(width, height, _radius), _sums(static_cast<size_t>(width)) {}

void LM_box_means::_Divide(uint16_t* means) const {
  for (size_t x = 0; x < _sums.size(); ++x)
    means[x] = LM_NearestHeight(AsDouble(_sums[x]) * _share);
}

LM_edge_keeper::LM_edge_keeper(LM_height_plane& plane, double radius, double contrast)
    : _plane(plane), _share(1 / LM_box_radius::Of(radius).Weight()), _noise(contrast * contrast),
      _sums(plane.width, plane.height, LM_box_radius::Of(radius)),
      _squareSums(plane.width, plane.height, LM_box_radius::Of(radius)),
      _sumsOfRow(static_cast<size_t>(plane.width)), _squaresOfRow(_sumsOfRow.size()),
      _partMeans(plane.width, plane.height, radius), _restMeans(_partMeans),
      _parts(plane.width, plane.height, RowsFor(_partMeans)), _rests(_parts),
      _part(_sumsOfRow.size()), _rest(_sumsOfRow.size()) {}

void LM_edge_keeper::_FindKeptParts(int y) {
  _sums.MakeRow(
      y, _plane, [](uint16_t value) { return uint32_t{value}; }, _sumsOfRow.data());
  _squareSums.MakeRow(
      y, _plane, [](uint16_t value) { return uint32_t{value} * value; }, _squaresOfRow.data());
  uint16_t* const parts = _parts.Row(y);
  uint16_t* const rests = _rests.Row(y);
  for (size_t x = 0; x < _sumsOfRow.size(); ++x) {
    const double mean = AsDouble(_sumsOfRow[x]) * _share;
    const double spread = std::max(0.0, AsDouble(_squaresOfRow[x]) * _share - mean * mean);
    const double part = spread / (spread + _noise);
    parts[x] = LM_NearestHeight(part * WHITE);
    rests[x] = LM_NearestHeight((1 - part) * mean);
  }
}

void LM_edge_keeper::_Combine(int y) {
  _partMeans.MakeRow(y, _parts, _part.data());
  _restMeans.MakeRow(y, _rests, _rest.data());
  uint16_t* const row = _plane.Row(y);
  for (size_t x = 0; x < _part.size(); ++x) {
    const double value = row[x] * (_part[x] / WHITE) + _rest[x] + 0.5;
    row[x] = static_cast<uint16_t>(std::min(value, WHITE));
  }
}

// The squares over a row reach no further up than the means over what was found of the rows above,
// so a row is overwritten once nothing needs it any more.
int LM_edge_keeper::Advance(int numRows) {
  for (; _partMeans.CanMake(_numFound, numRows); ++_numFound) {
    _FindKeptParts(_numFound);
    for (; _partMeans.CanMake(_numDone, _numFound + 1); ++_numDone)
      _Combine(_numDone);
  }
  return _numDone;
}

LM_detail_keeper::LM_detail_keeper(LM_height_plane& plane, double radius, double fineness,
                                   double fit, double most)
    : _plane(plane), _fit(fit), _most(most), _wide{{plane.width, plane.height, radius},
                                                   {plane.width, plane.height, radius},
                                                   {plane.width, plane.height, radius}},
      _around{{plane.width, plane.height, RowsFor(_wide[0])},
              {plane.width, plane.height, RowsFor(_wide[0])}},
      _fine{{plane.width, plane.height, fineness}, {plane.width, plane.height, fineness}},
      _smoothed(plane.width, plane.height, RowsFor(_fine[0])),
      _aroundRow(static_cast<size_t>(plane.width)), _fineRow(_aroundRow.size()) {}

void LM_detail_keeper::_Finish(int y) {
  _wide[2].MakeRow(y, _around[1], _aroundRow.data());
  for (; _numSmoothed < _plane.height && _numSmoothed <= y + _fine[0].Reach(); ++_numSmoothed)
    _fine[0].MakeRow(_numSmoothed, _plane, _smoothed.Row(_numSmoothed));
  _fine[1].MakeRow(y, _smoothed, _fineRow.data());
  uint16_t* const row = _plane.Row(y);
  for (size_t x = 0; x < _fineRow.size(); ++x) {
    const int height = _fineRow[x] - _aroundRow[x];
    const double fitted = MIDDLE + _fit * (height / (1 + std::abs(height) / _most));
    row[x] = LM_NearestHeight(std::clamp(fitted, 0.0, WHITE));
  }
}

// A row is finished when the surroundings are three times their reach further down, where nothing
// needs it any more.
int LM_detail_keeper::Advance(int numRows) {
  for (; _wide[0].CanMake(_numAround[0], numRows); ++_numAround[0]) {
    _wide[0].MakeRow(_numAround[0], _plane, _around[0].Row(_numAround[0]));
    for (; _wide[1].CanMake(_numAround[1], _numAround[0] + 1); ++_numAround[1]) {
      _wide[1].MakeRow(_numAround[1], _around[0], _around[1].Row(_numAround[1]));
      for (; _wide[2].CanMake(_numDone, _numAround[1] + 1); ++_numDone)
        _Finish(_numDone);
    }
  }
  return _numDone;
}
