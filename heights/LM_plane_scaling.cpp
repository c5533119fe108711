#include "LM_plane_scaling.h"

#include <algorithm>
#include <cmath>

LM_plane_reducer::LM_plane_reducer(int width, int height, int toWidth, int toHeight)
    : _width(width), _height(height), _room(static_cast<uint64_t>(height)),
      _across(static_cast<size_t>(toWidth)), _sums(static_cast<size_t>(toWidth)),
      _plane(toWidth, toHeight) {}

// A pixel is `toWidth` wide, and a pixel of the result `width`.
void LM_plane_reducer::_ReduceRow(const uint16_t* row) {
  const auto whole = static_cast<uint64_t>(_width);
  const uint64_t pixel = _across.size();
  uint64_t sum = 0;
  uint64_t room = whole;
  uint64_t* out = _across.data();
  for (int x = 0; x < _width; ++x) {
    const uint64_t value = row[x];
    if (pixel < room) {
      sum += value * pixel;
      room -= pixel;
      continue;
    }
    *out++ = sum + value * room;
    sum = value * (pixel - room);
    room = whole - (pixel - room);
  }
}

void LM_plane_reducer::_AddPart(uint64_t part) {
  for (size_t x = 0; x < _sums.size(); ++x)
    _sums[x] += _across[x] * part;
}

void LM_plane_reducer::Add(const uint16_t* row) {
  _ReduceRow(row);
  const auto pixel = static_cast<uint64_t>(_plane.height);
  if (pixel < _room) {
    _AddPart(pixel);
    _room -= pixel;
    return;
  }
  _AddPart(_room);
  const uint64_t total = static_cast<uint64_t>(_width) * static_cast<uint64_t>(_height);
  uint16_t* const out = _plane.Row(_row++);
  for (size_t x = 0; x < _sums.size(); ++x)
    out[x] = static_cast<uint16_t>((_sums[x] + total / 2) / total);
  std::fill(_sums.begin(), _sums.end(), 0);
  _AddPart(pixel - _room);
  _room = static_cast<uint64_t>(_height) - (pixel - _room);
}

LM_plane_enlarger::Taps LM_plane_enlarger::_MakeTaps(int from, int to) {
  Taps taps;
  for (int i = 0; i < to; ++i) {
    // In the middle of pixel i; pixels are whole numbers in their middles.
    const double place = (2.0 * i + 1) * from / (2.0 * to) - 0.5;
    const double floor = std::floor(place);
    const double t = place - floor;
    taps.first.push_back(static_cast<int>(floor) - 1);
    taps.weight[0].push_back(((-0.5 * t + 1) * t - 0.5) * t);
    taps.weight[1].push_back((1.5 * t - 2.5) * t * t + 1);
    taps.weight[2].push_back(((-1.5 * t + 2) * t + 0.5) * t);
    taps.weight[3].push_back((0.5 * t - 0.5) * t * t);
  }
  return taps;
}

LM_plane_enlarger::LM_plane_enlarger(const LM_height_plane& plane, int width, int height)
    : _plane(plane), _columns(_MakeTaps(plane.width, width)),
      _rows(_MakeTaps(plane.height, height)) {}

// Columns `first` to `end` of the plane, which may lie beyond its edges, as they are at row y.
void LM_plane_enlarger::_MixRows(int y, int first, int end, double* mixed) const {
  const uint16_t* from[4];
  double weight[4];
  for (int i = 0; i < 4; ++i) {
    from[i] = _plane.Row(std::clamp(_rows.first[static_cast<size_t>(y)] + i, 0, _plane.height - 1));
    weight[i] = _rows.weight[i][static_cast<size_t>(y)];
  }
  const int inside = std::clamp(first, 0, _plane.width - 1);
  const int insideEnd = std::clamp(end, inside + 1, _plane.width);
  double* const out = mixed - first;
  for (int x = inside; x < insideEnd; ++x)
    out[x] = weight[0] * from[0][x] + weight[1] * from[1][x] + weight[2] * from[2][x] +
             weight[3] * from[3][x];
  std::fill(mixed, out + std::min(inside, end), out[inside]);
  std::fill(out + insideEnd, out + std::max(end, insideEnd), out[insideEnd - 1]);
}

void LM_plane_enlarger::MakeRow(int y, int left, int count, uint16_t* row,
                                std::vector<double>& scratch) const {
  const int* const taps = _columns.first.data() + left;
  const int first = taps[0];
  const int end = taps[count - 1] + 4;
  scratch.resize(static_cast<size_t>(end - first));
  _MixRows(y, first, end, scratch.data());
  const double* const mixed = scratch.data();
  const double* weight[4];
  for (int i = 0; i < 4; ++i)
    weight[i] = _columns.weight[i].data() + left;
  for (int i = 0; i < count; ++i) {
    const double* const at = mixed + (taps[i] - first);
    const double value =
        weight[0][i] * at[0] + weight[1][i] * at[1] + weight[2][i] * at[2] + weight[3][i] * at[3];
    // LM_NearestHeight, as vectors have it. Curves overshoot by an eighth, far inside an int.
    const double above = value + 0.5;
    row[i] = static_cast<uint16_t>(std::clamp(static_cast<int>(above), 0, 65535));
  }
}

LM_height_plane LM_ScaledPlane(const LM_height_plane& plane, int width, int height) {
  LM_plane_reducer reducer(plane.width, plane.height, std::min(width, plane.width),
                           std::min(height, plane.height));
  for (int y = 0; y < plane.height; ++y)
    reducer.Add(plane.Row(y));
  LM_height_plane reduced = reducer.Take();
  if (reduced.width == width && reduced.height == height)
    return reduced;
  LM_height_plane scaled(width, height);
  const LM_plane_enlarger enlarger(reduced, width, height);
  std::vector<double> scratch;
  for (int y = 0; y < height; ++y)
    enlarger.MakeRow(y, 0, width, scaled.Row(y), scratch);
  return scaled;
}
