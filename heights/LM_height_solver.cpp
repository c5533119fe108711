#include "LM_height_solver.h"

#include <algorithm>

namespace {

// Each takes some nine tenths of the error away.
constexpr int NUM_CYCLES = 10;
constexpr int NUM_SWEEPS = 2;

// Cells along one side: how long each is, in pixels, and one over the distance of the middles of
// cells i - 1 and i, which is 0 beyond the edges: nothing is known of what lies there.
struct Side {
  std::vector<double> length;
  std::vector<double> nearness;

  explicit Side(std::vector<double> lengths)
      : length(std::move(lengths)), nearness(length.size() + 1) {
    for (size_t i = 1; i < length.size(); ++i)
      nearness[i] = 2 / (length[i - 1] + length[i]);
  }
  int Count() const { return static_cast<int>(length.size()); }
  // Two cells made one; the last stays alone where there is an odd number.
  Side Halved() const {
    std::vector<double> halved((length.size() + 1) / 2);
    for (size_t i = 0; i < length.size(); ++i)
      halved[i / 2] += length[i];
    return Side(std::move(halved));
  }
};

// A grid of cells, coarser from level to level. What flows into a cell from its neighbours, by
// their differences in height, has to be `inflow`.
struct Level {
  Side columns;
  Side rows;
  std::vector<double> height;
  std::vector<double> inflow;

  Level(Side levelColumns, Side levelRows)
      : columns(std::move(levelColumns)), rows(std::move(levelRows)),
        height(columns.length.size() * rows.length.size()), inflow(height.size()) {}
};

// A row's cells, and their neighbours' heights, weighted.
class RowView {
public:
  RowView(const Level& level, int y)
      : _columns(level.columns), _width(level.columns.Count()),
        _row(level.height.data() + static_cast<ptrdiff_t>(y) * _width),
        _above(y > 0 ? _row - _width : _row),
        _below(y + 1 < level.rows.Count() ? _row + _width : _row),
        _up(level.rows.nearness[static_cast<size_t>(y)]),
        _down(level.rows.nearness[static_cast<size_t>(y) + 1]),
        _length(level.rows.length[static_cast<size_t>(y)]) {}

  struct Sum {
    double heights;
    double weights;
  };
  Sum Around(int x) const {
    const auto at = static_cast<size_t>(x);
    const double left = _length * _columns.nearness[at];
    const double right = _length * _columns.nearness[at + 1];
    const double up = _columns.length[at] * _up;
    const double down = _columns.length[at] * _down;
    return {left * _row[x > 0 ? x - 1 : x] + right * _row[x + 1 < _width ? x + 1 : x] +
                up * _above[x] + down * _below[x],
            left + right + up + down};
  }

private:
  const Side& _columns;
  int _width;
  const double* _row;
  const double* _above;
  const double* _below;
  double _up, _down, _length;
};

// Every second cell as on a chessboard, then the others.
void Relax(Level& level) {
  const int width = level.columns.Count();
  for (int step = 0; step < 2 * NUM_SWEEPS; ++step)
    for (int y = 0; y < level.rows.Count(); ++y) {
      const RowView row(level, y);
      const ptrdiff_t first = static_cast<ptrdiff_t>(y) * width;
      for (int x = (y + step) % 2; x < width; x += 2) {
        const RowView::Sum sum = row.Around(x);
        level.height[static_cast<size_t>(first + x)] =
            (sum.heights - level.inflow[static_cast<size_t>(first + x)]) / sum.weights;
      }
    }
}

// What the fine level still lacks becomes the coarse one's.
void HandDown(const Level& fine, Level& coarse) {
  std::fill(coarse.height.begin(), coarse.height.end(), 0);
  std::fill(coarse.inflow.begin(), coarse.inflow.end(), 0);
  const int width = fine.columns.Count();
  for (int y = 0; y < fine.rows.Count(); ++y) {
    const RowView row(fine, y);
    double* const sums = coarse.inflow.data() + ptrdiff_t{y / 2} * coarse.columns.Count();
    for (int x = 0; x < width; ++x) {
      const RowView::Sum sum = row.Around(x);
      const auto at = static_cast<size_t>(static_cast<ptrdiff_t>(y) * width + x);
      sums[x / 2] += fine.inflow[at] - (sum.heights - sum.weights * fine.height[at]);
    }
  }
}

// The coarse cell that a fine one lies in, and the one it is next to, of which it takes a quarter.
struct Parents {
  ptrdiff_t own, other;
};
Parents ParentsOf(int i, int numFine, int numCoarse) {
  const int own = i / 2;
  if (i == numFine - 1 && i % 2 == 0) // alone in its cell, and in its middle
    return {own, own};
  return {own, std::clamp(i % 2 == 0 ? own - 1 : own + 1, 0, numCoarse - 1)};
}

void HandUp(const Level& coarse, Level& fine) {
  const int width = fine.columns.Count();
  const int coarseWidth = coarse.columns.Count();
  for (int y = 0; y < fine.rows.Count(); ++y) {
    const Parents down = ParentsOf(y, fine.rows.Count(), coarse.rows.Count());
    const double* const own = coarse.height.data() + down.own * coarseWidth;
    const double* const other = coarse.height.data() + down.other * coarseWidth;
    double* const row = fine.height.data() + static_cast<ptrdiff_t>(y) * width;
    for (int x = 0; x < width; ++x) {
      const Parents across = ParentsOf(x, width, coarseWidth);
      row[x] += 0.75 * (0.75 * own[across.own] + 0.25 * own[across.other]) +
                0.25 * (0.75 * other[across.own] + 0.25 * other[across.other]);
    }
  }
}

// Down to a single cell and up again: each level evens out the waves as long as its cells.
void Cycle(std::vector<Level>& levels) {
  const size_t last = levels.size() - 1;
  for (size_t i = 0; i < last; ++i) {
    Relax(levels[i]);
    HandDown(levels[i], levels[i + 1]);
  }
  for (size_t i = last; i-- > 0;) {
    HandUp(levels[i + 1], levels[i]);
    Relax(levels[i]);
  }
}

// From the middle of pixel i to that of the next, of n along a line: the integral of a curve
// through the six slopes around, near the edges four.
double Rise(const float* slope, ptrdiff_t step, int i, int n) {
  const auto at = [&](int place) { return double{slope[place * step]}; };
  if (n < 4)
    return (at(i) + at(i + 1)) / 2;
  if (i == 0)
    return (9 * at(0) + 19 * at(1) - 5 * at(2) + at(3)) / 24;
  if (i == n - 2)
    return (9 * at(n - 1) + 19 * at(n - 2) - 5 * at(n - 3) + at(n - 4)) / 24;
  if (i == 1 || i == n - 3)
    return (13 * (at(i) + at(i + 1)) - at(i - 1) - at(i + 2)) / 24;
  return (802 * (at(i) + at(i + 1)) - 93 * (at(i - 1) + at(i + 2)) + 11 * (at(i - 2) + at(i + 3))) /
         1440;
}

void TakeRises(const LM_slopes& slopes, std::vector<double>& inflow) {
  const ptrdiff_t width = slopes.width;
  for (int y = 0; y < slopes.height; ++y) {
    double* const row = inflow.data() + y * width;
    for (int x = 0; x + 1 < slopes.width; ++x) {
      const double rise = Rise(slopes.across.data() + y * width, 1, x, slopes.width);
      row[x] += rise;
      row[x + 1] -= rise;
    }
    if (y + 1 < slopes.height)
      for (int x = 0; x < slopes.width; ++x) {
        const double rise = Rise(slopes.down.data() + x, width, y, slopes.height);
        row[x] += rise;
        row[x + width] -= rise;
      }
  }
}

Side Pixels(int count) {
  return Side(std::vector<double>(static_cast<size_t>(count), 1.0));
}

} // namespace

std::vector<double> LM_SurfaceOfSlopes(const LM_slopes& slopes) {
  std::vector<Level> levels;
  levels.emplace_back(Pixels(slopes.width), Pixels(slopes.height));
  while (levels.back().height.size() > 1)
    levels.emplace_back(levels.back().columns.Halved(), levels.back().rows.Halved());
  TakeRises(slopes, levels[0].inflow);
  for (int i = 0; i < NUM_CYCLES; ++i)
    Cycle(levels);
  std::vector<double>& surface = levels[0].height;
  double sum = 0;
  for (const double height : surface)
    sum += height;
  const double mean = sum / static_cast<double>(surface.size());
  for (double& height : surface)
    height -= mean;
  return std::move(surface);
}
