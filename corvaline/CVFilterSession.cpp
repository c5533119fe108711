#include "CVFilterSession.h"

#include "CVFilterRun.h"
#include "MacMemory.h"

#include <cstring>
#include <limits>
#include <utility>

CVFilterSession::CVFilterSession(CVPlugin module) : _plugin(std::move(module)) {}

CVFilterSession::~CVFilterSession() {
  DisposeHandle(_parameters);
}

namespace {

struct EndTurn {
  void operator()(std::atomic<bool>* running) const { *running = false; }
};
// Holds a session for one call, so that no second one begins before it has ended; null while there
// is another.
using Turn = std::unique_ptr<std::atomic<bool>, EndTurn>;

Turn takeTurn(std::atomic<bool>& running) {
  return Turn(running.exchange(true) ? nullptr : &running);
}

CVResult checkTurn(const Turn& turn, const CVPlugin& plugin) {
  if (!plugin.isLoaded())
    return {CVOutcome::BadPlugin, 0, "no plug-in is loaded"};
  if (turn == nullptr || CVFilterRun::current() != nullptr)
    return {CVOutcome::BadPlugin, 0, plugin.name() + ": a filter is still at work"};
  return {};
}

} // namespace

static CVResult checkArea(const CVDocument& document, const CVRect& area) {
  const bool inside = area.top >= 0 && area.left >= 0 && area.bottom <= document.height() &&
                      area.right <= document.width();
  if (inside && area.top < area.bottom && area.left < area.right)
    return {};
  const std::string rows = std::to_string(area.top) + " to " + std::to_string(area.bottom);
  const std::string columns = std::to_string(area.left) + " to " + std::to_string(area.right);
  return {CVOutcome::BadImage, 0,
          "the filter area of rows " + rows + " and columns " + columns +
              " is not a part of the image of " + std::to_string(document.width()) + " x " +
              std::to_string(document.height()) + " pixels"};
}

CVResult CVFilterSession::run(CVDocument& document, CVRect area, const CVRunOptions& options) {
  return CVGuarded("the filter's run", [&]() -> CVResult {
    const Turn turn = takeTurn(_running);
    if (CVResult free = checkTurn(turn, _plugin); !free.ok())
      return free;
    if (CVResult inside = checkArea(document, area); !inside.ok())
      return inside;
    CVFilterRun run(*this, document, area, options);
    return run.execute();
  });
}

CVResult CVFilterSession::about(void* hostWindow) {
  return CVGuarded("the about box", [&]() -> CVResult {
    const Turn turn = takeTurn(_running);
    if (CVResult free = checkTurn(turn, _plugin); !free.ok())
      return free;
    CVAboutRecord record{hostWindow};
    int16_t code = CV_RESULT_OK;
    if (_plugin.call(LM_SEL_ABOUT, &record, &_dataSlot, &code) && code == CV_RESULT_OK)
      return {};
    return {CVOutcome::Failed, code, _plugin.name() + ": the plug-in cannot say what it is"};
  });
}

CVResult CVFilterSession::setParameters(const void* bytes, size_t size) {
  return CVGuarded("the filter's parameters", [&]() -> CVResult {
    const Turn turn = takeTurn(_running);
    if (turn == nullptr)
      return {CVOutcome::BadPlugin, 0, _plugin.name() + ": a filter is still at work"};
    if (size > static_cast<size_t>(std::numeric_limits<int32_t>::max()))
      return CVOutOfMemory("the filter's parameters");
    Handle block = NewHandle(static_cast<Size>(size));
    if (block == nullptr)
      return CVOutOfMemory("the filter's parameters");
    if (size > 0)
      std::memcpy(*block, bytes, size);
    DisposeHandle(_parameters);
    _parameters = block;
    return {};
  });
}

std::vector<uint8_t> CVFilterSession::parameters() const {
  const Size size = GetHandleSize(_parameters);
  if (_parameters == nullptr || size <= 0)
    return {};
  std::vector<uint8_t> bytes(static_cast<size_t>(size));
  std::memcpy(bytes.data(), *_parameters, bytes.size());
  return bytes;
}
