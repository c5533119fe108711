// A mask told by what makes it differ from another one.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>

namespace editor {

// Costs the memory of the part that differs, compressed. Masks are null, or 8-bit grey of one size.
class MaskChange {
public:
  MaskChange() = default; // none
  MaskChange(const QImage& from, const QImage& to);

  // What `from` was changed to.
  QImage apply(const QImage& from) const;
  size_t bytes() const { return static_cast<size_t>(_bytes.size()); }

private:
  // What the part is laid upon.
  enum class Ground { Same, None, From, Black, White };

  Ground _ground = Ground::Same;
  QSize _size;
  QRect _part;
  QByteArray _bytes; // of the part, row after row, compressed
};

} // namespace editor
