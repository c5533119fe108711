// The result of a run while it grows: the filter area of the channels that the plug-in writes.
#pragma once

#include "CVBuffer.h"
#include "CVDocument.h"

#include <cstdint>
#include <vector>

// The document keeps its content until store(), so that a later tile's margin still sees the
// original pixels, and a run that fails has nothing to undo.
class CVResultImage {
public:
  // area: inside the document, not empty. The document outlives this.
  CVResultImage(CVDocument& document, CVRect area);

  const CVRect& area() const { return _area; }

  // Makes sure that these channels can be written; at first they are what the document has. False
  // when there is no memory. May throw std::bad_alloc.
  bool open(int firstChannel, int lastChannel);

  // A channel that was opened; its pixel (0, 0) is the area's top-left.
  CVChannelView<uint8_t> channel(int index) const;

  // Puts what was written into the document. Cannot fail.
  void store();

private:
  CVBuffer _copy(const CVDocument::Plane& plane) const;
  void _store(CVBuffer& copy, CVDocument::Plane& plane) const;

  CVDocument& _document;
  CVRect _area;
  CVBuffer _base;
  std::vector<CVBuffer> _extras; // by their position after the base; an empty one is not opened
};
