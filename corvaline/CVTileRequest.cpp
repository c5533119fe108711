#include "CVTileRequest.h"

#include <string>

static CVResult refused(const std::string& message) {
  return {CVOutcome::BadRequest, 0, "the plug-in asked for " + message};
}

static std::string describe(const char* what, const CVRect& rect) {
  return std::string(what) + " rectangle of rows " + std::to_string(rect.top) + " to " +
         std::to_string(rect.bottom) + " and columns " + std::to_string(rect.left) + " to " +
         std::to_string(rect.right);
}

enum class Outside { Refused, Repeated };

static CVResult readRect(const char* what, const CVRect& rect, const CVDocument& document,
                         Outside outside, CVTile& tile) {
  if (rect.bottom < rect.top || rect.right < rect.left)
    return refused("an inverted " + describe(what, rect));
  if (rect.bottom == rect.top || rect.right == rect.left)
    return {};
  const bool inside = rect.top >= 0 && rect.left >= 0 && rect.bottom <= document.height() &&
                      rect.right <= document.width();
  if (!inside && outside == Outside::Refused)
    return refused("the " + describe(what, rect) + " outside the image of " +
                   std::to_string(document.width()) + " x " + std::to_string(document.height()) +
                   " pixels");
  tile.top = rect.top;
  tile.left = rect.left;
  tile.height = rect.bottom - rect.top;
  tile.width = rect.right - rect.left;
  return {};
}

static CVResult readPlanes(const char* what, int first, int last, int available, CVTile& tile) {
  if (first < 0 || last < first || last >= available)
    return refused("" + std::string(what) + " planes " + std::to_string(first) + " to " +
                   std::to_string(last) + " where planes 0 to " + std::to_string(available - 1) +
                   " exist");
  tile.firstChannel = first;
  tile.lastChannel = last;
  return {};
}

static CVResult readStep(const char* what, int32_t step, CVTile& tile) {
  if (step < CV_FIXED_ONE)
    return refused("the " + std::string(what) + " sampling step of " + std::to_string(step) +
                   "/65536 pixel, which is below 1");
  tile.step = step;
  return {};
}

static CVResult readInput(const FilterRecord& record, const CVDocument& document, int planes,
                          CVTile& tile) {
  const int mode = record.inEdgeMode;
  const auto outside = mode == CV_EDGE_REPLICATE ? Outside::Repeated : Outside::Refused;
  CVResult result = readRect("input", record.inTileRect, document, outside, tile);
  if (!result.ok() || tile.isEmpty())
    return result;
  if (mode != CV_EDGE_REPLICATE && mode != CV_EDGE_NONE)
    return refused("the unknown edge mode " + std::to_string(mode));
  result = readPlanes("input", record.inFirstPlane, record.inLastPlane, planes, tile);
  return result.ok() ? readStep("input", record.inSampleStep, tile) : result;
}

CVResult CVReadRequest(const FilterRecord& record, const CVDocument& document,
                       CVTileRequest& request) {
  request = {};
  const bool absolute = record.absolutePlanesWanted != 0;
  const int planes = absolute ? document.channelCount() : CV_COLOUR_PLANES;

  CVResult result = readInput(record, document, planes, request.input);
  if (!result.ok())
    return result;

  CVTile& output = request.output;
  result = readRect("output", record.outTileRect, document, Outside::Refused, output);
  if (result.ok() && !output.isEmpty())
    result = readPlanes("output", record.outFirstPlane, record.outLastPlane, planes, output);
  if (!result.ok())
    return result;

  CVTile& mask = request.mask;
  mask.firstChannel = mask.lastChannel = CV_MASK_CHANNEL;
  result = readRect("mask", record.maskTileRect, document, Outside::Refused, mask);
  if (result.ok() && !mask.isEmpty())
    result = readStep("mask", record.maskSampleStep, mask);
  return result;
}
