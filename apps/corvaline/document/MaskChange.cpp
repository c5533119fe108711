#include "MaskChange.h"

#include <algorithm>
#include <cstring>

namespace editor {
namespace {

constexpr int FASTEST = 1; // of the compressor's levels

// The smallest rectangle outside which both rows' bytes are the same.
QRect DifferentPart(const QImage& one, const QImage& other) {
  QRect part;
  for (int y = 0; y < one.height(); ++y) {
    const uint8_t* const a = one.constScanLine(y);
    const uint8_t* const b = other.constScanLine(y);
    const int width = one.width();
    if (std::memcmp(a, b, static_cast<size_t>(width)) == 0)
      continue;
    const auto first = static_cast<int>(std::mismatch(a, a + width, b).first - a);
    int end = width;
    while (a[end - 1] == b[end - 1])
      --end;
    part |= QRect(first, y, end - first, 1);
  }
  return part;
}

QImage Even(QSize size, int value) {
  QImage mask(size, QImage::Format_Grayscale8);
  mask.fill(value);
  return mask;
}

} // namespace

MaskChange::MaskChange(const QImage& from, const QImage& to) : _size(to.size()) {
  if (from.cacheKey() == to.cacheKey())
    return;
  if (to.isNull()) {
    _ground = Ground::None;
    return;
  }
  // Strokes leave most of a new mask as it began.
  _ground = !from.isNull()                  ? Ground::From
            : to.constScanLine(0)[0] >= 128 ? Ground::White
                                            : Ground::Black;
  _part = DifferentPart(
      _ground == Ground::From ? from : Even(_size, _ground == Ground::White ? 255 : 0), to);
  QByteArray rows;
  for (int y = _part.top(); y <= _part.bottom(); ++y)
    rows.append(reinterpret_cast<const char*>(to.constScanLine(y)) + _part.left(), _part.width());
  _bytes = qCompress(rows, FASTEST);
}

QImage MaskChange::apply(const QImage& from) const {
  if (_ground == Ground::Same)
    return from;
  if (_ground == Ground::None)
    return {};
  QImage mask = _ground == Ground::From ? from : Even(_size, _ground == Ground::White ? 255 : 0);
  const QByteArray rows = qUncompress(_bytes);
  for (int y = 0; y < _part.height(); ++y)
    std::copy_n(rows.constData() + qsizetype{y} * _part.width(), _part.width(),
                reinterpret_cast<char*>(mask.scanLine(_part.top() + y)) + _part.left());
  return mask;
}

} // namespace editor
