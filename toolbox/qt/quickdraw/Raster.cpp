#include "Raster.h"

#include <algorithm>
#include <cmath>

namespace {

QRegion FromRows(const std::vector<QRect>& rows) {
  QRegion region;
  if (!rows.empty())
    region.setRects(rows.data(), static_cast<int>(rows.size()));
  return region;
}

// Appends a row, or makes the last one taller when it has the same ends.
void AddRow(std::vector<QRect>& rows, int left, int right, int y) {
  if (right < left)
    return;
  if (!rows.empty() && rows.back().bottom() == y - 1 && rows.back().left() == left &&
      rows.back().right() == right)
    rows.back().setBottom(y);
  else
    rows.push_back(QRect(QPoint(left, y), QPoint(right, y)));
}

// How far pixel middles may be from a corner's centre, at a vertical distance from it.
double HalfWidthAt(double distance, double halfWidth, double halfHeight) {
  const double part = distance / halfHeight;
  return part * part >= 1 ? -1 : halfWidth * std::sqrt(1 - part * part);
}

// Steps of a line's minor coordinate for each major one.
struct Slope {
  int majorFrom, majorTo; // with from <= to
  int minorFrom, minorTo;
  double shift; // of the middle of the pen's run

  int MinorAt(int major) const {
    if (majorTo == majorFrom)
      return minorFrom;
    const double along = static_cast<double>(major - majorFrom) + shift;
    const double rise = static_cast<double>(minorTo - minorFrom) / (majorTo - majorFrom);
    const int minor = static_cast<int>(std::floor(minorFrom + along * rise + 0.5));
    return std::clamp(minor, std::min(minorFrom, minorTo), std::max(minorFrom, minorTo));
  }
};

Slope SlopeOf(QPoint from, QPoint to, bool steep, int thickness) {
  if (steep) {
    from = from.transposed();
    to = to.transposed();
  }
  if (from.x() > to.x())
    std::swap(from, to);
  return {from.x(), to.x(), from.y(), to.y(), 0.5 - thickness * 0.5};
}

QRect Oriented(int major, int minor, int length, int thickness, bool steep) {
  return steep ? QRect(minor, major, thickness, length) : QRect(major, minor, length, thickness);
}

} // namespace

QRegion RoundRectPixels(const QRect& rect, int ovalWidth, int ovalHeight, const QRect& rows) {
  if (rect.isEmpty())
    return QRegion();
  const double halfWidth = std::clamp(ovalWidth, 0, rect.width()) * 0.5;
  const double halfHeight = std::clamp(ovalHeight, 0, rect.height()) * 0.5;
  const double upper = rect.top() + halfHeight;
  const double lower = rect.bottom() + 1 - halfHeight;
  std::vector<QRect> pixels;
  for (int y = std::max(rect.top(), rows.top()); y <= std::min(rect.bottom(), rows.bottom()); ++y) {
    const double middle = y + 0.5;
    const double distance = std::max({upper - middle, middle - lower, 0.0});
    if (distance == 0 || halfWidth == 0) {
      AddRow(pixels, rect.left(), rect.right(), y);
      continue;
    }
    const double half = HalfWidthAt(distance, halfWidth, halfHeight);
    if (half < 0)
      continue;
    const int left = static_cast<int>(std::ceil(rect.left() + halfWidth - half - 0.5));
    const int right = static_cast<int>(std::floor(rect.right() + 1 - halfWidth + half - 0.5));
    AddRow(pixels, left, right, y);
  }
  return FromRows(pixels);
}

std::vector<QRect> LinePixels(QPoint from, QPoint to, int thickness, const QRect& visible) {
  const bool steep = std::abs(to.y() - from.y()) > std::abs(to.x() - from.x());
  const Slope slope = SlopeOf(from, to, steep, thickness);
  const int first = std::max(slope.majorFrom, steep ? visible.top() : visible.left());
  const int last =
      std::min(slope.majorTo + thickness - 1, steep ? visible.bottom() : visible.right());
  std::vector<QRect> pixels;
  for (int major = first; major <= last;) {
    const int minor = slope.MinorAt(major);
    int end = major + 1;
    while (end <= last && slope.MinorAt(end) == minor)
      ++end;
    pixels.push_back(Oriented(major, minor, end - major, thickness, steep));
    major = end;
  }
  return pixels;
}

QRegion SurroundedPixels(const std::vector<RecordedLine>& lines) {
  int top = 32767;
  int bottom = -32768;
  for (const RecordedLine& line : lines) {
    top = std::min({top, line.from.y(), line.to.y()});
    bottom = std::max({bottom, line.from.y(), line.to.y()});
  }
  std::vector<QRect> pixels;
  std::vector<double> crossings;
  for (int y = top; y < bottom; ++y) {
    const double middle = y + 0.5;
    crossings.clear();
    for (const RecordedLine& line : lines) {
      const bool startsAbove = line.from.y() < middle;
      if (startsAbove == (line.to.y() < middle))
        continue;
      const double part = (middle - line.from.y()) / (line.to.y() - line.from.y());
      crossings.push_back(line.from.x() + part * (line.to.x() - line.from.x()));
    }
    std::sort(crossings.begin(), crossings.end());
    int end = -32769;
    for (size_t i = 0; i + 1 < crossings.size(); i += 2) {
      const int left = std::max(end + 1, static_cast<int>(std::ceil(crossings[i] - 0.5)));
      const int right = static_cast<int>(std::ceil(crossings[i + 1] - 0.5)) - 1;
      if (right < left)
        continue;
      if (left == end + 1 && !pixels.empty() && pixels.back().top() == y)
        pixels.back().setRight(right);
      else
        pixels.push_back(QRect(QPoint(left, y), QPoint(right, y)));
      end = right;
    }
  }
  return FromRows(pixels);
}
