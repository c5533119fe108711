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

std::vector<LM_plane_enlarger::Taps> LM_plane_enlarger::_MakeTaps(int from, int to) {
  std::vector<Taps> taps(static_cast<size_t>(to));
  for (int i = 0; i < to; ++i) {
    // In the middle of pixel i; pixels are whole numbers in their middles.
    const double place = (2.0 * i + 1) * from / (2.0 * to) - 0.5;
    const double floor = std::floor(place);
    const double t = place - floor;
    taps[static_cast<size_t>(i)] = {static_cast<int>(floor) - 1,
                                    {((-0.5 * t + 1) * t - 0.5) * t, (1.5 * t - 2.5) * t * t + 1,
                                     ((-1.5 * t + 2) * t + 0.5) * t, (0.5 * t - 0.5) * t * t}};
  }
  return taps;
}

LM_plane_enlarger::LM_plane_enlarger(const LM_height_plane& plane, int width, int height)
    : _plane(plane), _columns(_MakeTaps(plane.width, width)),
      _rows(_MakeTaps(plane.height, height)) {}

void LM_plane_enlarger::MakeRow(int y, int left, int count, uint16_t* row,
                                std::vector<double>& scratch) const {
  const Taps& down = _rows[static_cast<size_t>(y)];
  const uint16_t* from[4];
  for (int i = 0; i < 4; ++i)
    from[i] = _plane.Row(std::clamp(down.first + i, 0, _plane.height - 1));
  const int first = _columns[static_cast<size_t>(left)].first;
  const int end = _columns[static_cast<size_t>(left + count - 1)].first + 4;
  scratch.resize(static_cast<size_t>(end - first));
  for (int x = first; x < end; ++x) {
    const int at = std::clamp(x, 0, _plane.width - 1);
    scratch[static_cast<size_t>(x - first)] =
        down.weight[0] * from[0][at] + down.weight[1] * from[1][at] + down.weight[2] * from[2][at] +
        down.weight[3] * from[3][at];
  }
  for (int i = 0; i < count; ++i) {
    const Taps& across = _columns[static_cast<size_t>(left) + static_cast<size_t>(i)];
    const double* const at = scratch.data() + (across.first - first);
    const double value = across.weight[0] * at[0] + across.weight[1] * at[1] +
                         across.weight[2] * at[2] + across.weight[3] * at[3];
    row[i] = LM_NearestHeight(std::clamp(value, 0.0, 65535.0));
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
