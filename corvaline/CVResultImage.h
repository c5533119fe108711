// The result of a run while it grows: the filter area of the channels that the plug-in writes.
#pragma once

#include "CVBuffer.h"
#include "CVDocument.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

// The document keeps its content until store(), so that a later tile's margin still sees the
// original pixels, and a run that fails has nothing to undo.
class CVResultImage {
public:
  // area: inside the document, not empty. The document outlives this.
  CVResultImage(CVDocument& document, CVRect area);

  const CVRect& area() const { return _area; }

  // Makes sure that the area's rows above `bottom`, an image coordinate, can be written in these
  // channels; at first they are what the document has. False when there is no memory. May throw
  // std::bad_alloc.
  bool open(int firstChannel, int lastChannel, int bottom);

  // A channel that was opened; its pixel (0, 0) is the area's top-left.
  CVChannelView<uint8_t> channel(int index) const;
  // The base channels with all rows above `bottom`, for whoever goes on with them.
  std::shared_ptr<const CVBuffer> base(int bottom);

  // Puts what was written into the document. Cannot fail.
  void store();

private:
  // The area of a plane. Rows are copied when they are first opened, which for a walk from top to
  // bottom is shortly before they are written.
  struct Copy {
    std::shared_ptr<CVBuffer> pixels; // null: not opened
    size_t rows = 0;                  // that have been copied
  };

  const Copy& _copyOf(int channel) const;
  bool _copy(int channel, int bottom);

  CVDocument& _document;
  CVRect _area;
  std::vector<Copy> _copies; // by channel; that of the base is at 0
};
