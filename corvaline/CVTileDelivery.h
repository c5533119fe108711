// Hands a plug-in the pixels it asked for and takes back what it made of them.
#pragma once

#include "CVBuffer.h"
#include "CVDocument.h"
#include "CVFilterRecord.h"
#include "CVResult.h"
#include "CVResultImage.h"
#include "CVTileRequest.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// Input and mask are always the document's, as it was before the run. They are lent straight from
// its memory where the request allows that and copied otherwise; so is the output from the result,
// unless it has to be put together with the present content through a selection.
class CVTileDelivery {
public:
  CVTileDelivery(const CVDocument& document, CVResultImage& result)
      : _document(document), _result(result) {}

  // Reads and checks the request in the record. BadRequest as CVReadRequest.
  CVResult read(const FilterRecord& record) { return CVReadRequest(record, _document, _request); }
  const CVTileRequest& request() const { return _request; }
  // False at the end of a walk: neither input nor output is asked for.
  bool wanted() const { return !_request.input.isEmpty() || !_request.output.isEmpty(); }

  // Delivers the request last read into the record. Otherwise than with Done (NoMemory, or
  // BadRequest for a tile too large to be copied) nothing is delivered and the record's pointers
  // are null.
  CVResult deliver(FilterRecord& record);
  // Takes all delivered pixels back, the output tile as if it had never been out.
  void withdraw(FilterRecord& record);

  // Puts what the plug-in left in the output tile, if one is out, into the result: through the
  // selection, and inside the filter area only.
  void takeOutput();

  // Pixels of the area taken so far, those taken twice counted twice.
  int64_t pixelsTaken() const { return _pixelsTaken; }
  void countFromZero() { _pixelsTaken = 0; }

private:
  // The document's own content, as input or mask.
  CVResult _deliverContent(const char* what, const CVTile& tile, CVBuffer& buffer,
                           const uint8_t*& pixels, int32_t& rowStride);
  CVResult _deliverOutput(FilterRecord& record);
  CVChannelView<const uint8_t> _channel(int index) const;
  void _copyTile(const CVTile& tile, const CVBuffer& buffer);
  template <typename Row>
  void _forRows(const CVTile& tile, const CVTile& part, bool whole, Row row);
  void _fillOutput(const CVTile& tile, const CVTile& part);
  bool _hasWholePixels(const CVTile& tile) const;
  bool _lendable(const CVTile& tile) const;
  bool _outputLendable(const CVTile& tile, const CVTile& part) const;

  const CVDocument& _document;
  CVResultImage& _result;
  CVTileRequest _request;
  CVTile _output; // the tile that is out, or empty
  bool _isOutputLent = false;
  CVBuffer _inputBuffer;
  CVBuffer _outputBuffer;
  CVBuffer _maskBuffer;
  std::vector<size_t> _columns; // scratch of a copy: image column of each delivered one
  int64_t _pixelsTaken = 0;
};
