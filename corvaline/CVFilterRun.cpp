#include "CVFilterRun.h"

#include "CVHostProcs.h"
#include "MacMemory.h"

#include <algorithm>
#include <cstring>
#include <utility>

static thread_local CVFilterRun* currentRun = nullptr;

CVFilterRun* CVFilterRun::current() {
  return currentRun;
}

static std::string stepName(int selector) {
  static const char* const names[] = {"about", "parameters", "prepare",
                                      "start", "continue",   "finish"};
  return names[selector];
}

CVFilterRun::CVFilterRun(CVFilterSession& session, CVDocument& document, CVRect area,
                         const CVRunOptions& options)
    : _session(session), _document(document), _area(area), _options(options),
      _result(document, area), _tiles(document, _result) {
  _record.savedParams = session._parameters;
  _record.inLastPlane = _record.outLastPlane = CV_COLOUR_PLANES - 1;
  _record.inEdgeMode = CV_EDGE_NONE;
  _record.inSampleStep = CV_FIXED_ONE;
  _record.maskSampleStep = CV_FIXED_ONE;
  currentRun = this;
}

CVFilterRun::~CVFilterRun() {
  currentRun = nullptr;
}

// Before every call, in case that the plug-in wrote over what is the host's.
void CVFilterRun::_fillHostFields() {
  CVSetHostProcs(_record);
  _record.filterArea = _area;
  _record.maskUsable = _document.hasMask() ? 1 : 0;
  _record.maskPresent = _document.hasMask() ? 1 : 0;
  _record.hostSignature = CV_HOST_SIGNATURE;
  _record.colorMode = CV_MODE_RGB;
  _record.processEvent = nullptr;
  _record.showPixels = _options.showPixels;
  _record.handleServices = nullptr; // handles are the Toolbox's
  _record.absolutePlanesSupported = 1;
  _record.colorPicker = nullptr; // the Toolbox's too
}

int16_t CVFilterRun::_call(int selector) noexcept {
  _fillHostFields();
  _selector = selector;
  int16_t code = CV_RESULT_OK;
  if (!_session._plugin.call(selector, &_record, &_session._dataSlot, &code))
    fail(CVGuarded("a message", [] {
      return CVResult{CVOutcome::Failed, 0, "the plug-in let an exception out of a call"};
    }));
  _session._parameters = _record.savedParams;
  return code;
}

void CVFilterRun::fail(CVResult result) noexcept {
  if (_failure.ok())
    _failure = std::move(result);
}

CVResult CVFilterRun::_named(const CVResult& result) const {
  return {result.outcome, result.code, _session._plugin.name() + ": " + result.message};
}

// What an answer other than 0 means to the user.
CVResult CVFilterRun::_describe(int selector, int16_t code) const {
  switch (code) {
  case CV_RESULT_STOPPED:
    return {CVOutcome::Stopped, code, "the filter stopped after telling the reason"};
  case CV_RESULT_NO_MEMORY:
    return {CVOutcome::NoMemory, code, "there is not enough memory for the filter"};
  case CV_RESULT_BAD_MODE:
    return {CVOutcome::BadMode, code, "the filter does not work on images of this colour mode"};
  case CV_RESULT_BAD_SELECTOR:
    return {CVOutcome::Failed, code,
            "the filter does not know the step \"" + stepName(selector) + "\""};
  case CV_RESULT_NO_SERVICE:
    return {CVOutcome::Failed, code, "the filter needs a service that this host lacks"};
  default:
    return {CVOutcome::Failed, code,
            "the filter failed with code " + std::to_string(code) + " in its step \"" +
                stepName(selector) + "\""};
  }
}

CVResult CVFilterRun::_judge(int selector, int16_t code) {
  if (!_failure.ok())
    return _named(_failure);
  // In a run with a dialog a continue call that stops was ended there, or through the cancel test.
  const bool dialogEnded = _options.dialog == CVDialog::Yes && selector == LM_SEL_CONTINUE;
  if (code == CV_RESULT_STOPPED && (_cancelled || dialogEnded))
    return _named({CVOutcome::Cancelled, code, "the filter was cancelled"});
  if (code != CV_RESULT_OK)
    return _named(_describe(selector, code));
  if (std::memcmp(&_record.filterArea, &_area, sizeof _area) != 0)
    return _named({CVOutcome::BadRequest, 0,
                   "the plug-in did not put the filter area back after its step \"" +
                       stepName(selector) + "\""});
  return {};
}

CVResult CVFilterRun::_step(int selector) {
  return _judge(selector, _call(selector));
}

CVResult CVFilterRun::_needRows(int bottom) {
  if (bottom <= _neededBottom)
    return {};
  _neededBottom = bottom;
  if (_options.passing.needRows && !_options.passing.needRows(bottom))
    return {CVOutcome::Failed, 0, "the image could not be read"};
  return {};
}

CVResult CVFilterRun::_finishRows(int bottom) {
  if (!_options.passing.finishRows || bottom <= std::max<int>(_finishedBottom, _area.top))
    return {};
  if (CVResult needed = _needRows(bottom); !needed.ok())
    return needed;
  const auto rows = _result.base(bottom);
  if (rows == nullptr)
    return CVOutOfMemory("the filtered image");
  _finishedBottom = bottom;
  _options.passing.finishRows(bottom, rows);
  return {};
}

// Tells the caller which rows are finished, since a walk from top to bottom has left them, and
// which the request needs.
CVResult CVFilterRun::_passRows() {
  const CVTileRequest& request = _tiles.request();
  CVResult result;
  if (!request.output.isEmpty() && request.output.top < _finishedBottom)
    result = {CVOutcome::BadRequest, 0, "the plug-in asked to write to rows that it had left"};
  else if (!request.output.isEmpty())
    result = _finishRows(std::min<int>(request.output.top, _area.bottom));
  for (const CVTile* tile : {&request.input, &request.output})
    if (result.ok() && !tile->isEmpty())
      result = _needRows(std::clamp(tile->top + tile->height, 1, _document.height()));
  return result;
}

CVResult CVFilterRun::_deliver() {
  CVResult result = _passRows();
  return result.ok() ? _tiles.deliver(_record) : result;
}

// More calls than any sensible walk makes: row by row or column by column 64 times over, or in
// tiles of 4 × 4 pixels.
static int64_t mostCalls(const CVRect& area) {
  const int64_t width = area.right - area.left;
  const int64_t height = area.bottom - area.top;
  return 4096 + 64 * (width + height) + width * height / 16;
}

CVResult CVFilterRun::_walk() {
  if (_options.dialog == CVDialog::Yes)
    if (CVResult result = _step(LM_SEL_PARAMETERS); !result.ok())
      return result;
  for (const int selector : {LM_SEL_PREPARE, LM_SEL_START})
    if (CVResult result = _step(selector); !result.ok())
      return result;

  const int64_t most = mostCalls(_area);
  for (int64_t calls = 0;; ++calls) {
    if (testCancel())
      return _named({CVOutcome::Cancelled, 0, "the filter was cancelled"});
    CVResult result = _tiles.read(_record);
    if (result.ok() && !_tiles.wanted())
      return result;
    if (result.ok() && calls == most)
      result = {CVOutcome::BadRequest, 0,
                "the plug-in still asked for tiles after " + std::to_string(calls) + " of them"};
    if (result.ok())
      result = _deliver();
    if (!result.ok())
      return _named(result);
    if (result = _step(LM_SEL_CONTINUE); !result.ok())
      return result;
    _tiles.takeOutput();
    _showProgress();
  }
}

CVResult CVFilterRun::execute() noexcept {
  CVResult result = CVGuardedRun([this] { return _walk(); });
  _tiles.withdraw(_record);
  const int16_t code = _call(LM_SEL_FINISH);
  if (result.ok())
    result = CVGuardedRun([this, code] { return _judge(LM_SEL_FINISH, code); });
  if (result.ok() && _options.passing.finishRows)
    result = CVGuardedRun([this] { return _finishRows(_area.bottom); });
  else if (result.ok())
    _result.store();
  return result;
}

bool CVFilterRun::testCancel() {
  if (!_cancelled && _options.cancelled)
    _cancelled = _options.cancelled();
  return _cancelled || !_failure.ok();
}

// A plug-in that reports nothing done begins its walk: what it took part in before was its preview.
void CVFilterRun::reportProgress(int32_t done) {
  if (done > 0)
    return;
  _tiles.countFromZero();
  _progressShown = -1.0;
  _showProgress();
}

void CVFilterRun::_showProgress() {
  const double pixels = static_cast<double>(_area.right - _area.left) * (_area.bottom - _area.top);
  const double done = std::min(1.0, static_cast<double>(_tiles.pixelsTaken()) / pixels);
  const bool worthShowing = done - _progressShown >= 0.001 || (done >= 1.0 && _progressShown < 1.0);
  if (!_options.progress || !worthShowing)
    return;
  _progressShown = done;
  _options.progress(done);
}

int16_t CVFilterRun::nextTile() {
  if (_selector != LM_SEL_START && _selector != LM_SEL_CONTINUE)
    return CV_RESULT_NO_SERVICE;
  _tiles.takeOutput();
  _tiles.withdraw(_record);
  CVResult result = _tiles.read(_record);
  if (result.ok())
    result = _deliver();
  // The plug-in may get by with a smaller tile, but a wrong request is its fault and ends the run.
  if (result.outcome == CVOutcome::NoMemory)
    return CV_RESULT_NO_MEMORY;
  if (result.ok())
    return noErr;
  fail(std::move(result));
  return paramErr;
}

int16_t CVFilterRun::queryProperty(uint32_t signature, uint32_t key, int32_t index,
                                   int32_t* simpleValue, CVHandle* handle) const {
  if (signature != CV_HOST_SIGNATURE)
    return CV_RESULT_NO_SERVICE;
  if (key == CV_PROPERTY_NUM_CHANNELS) {
    if (simpleValue == nullptr)
      return paramErr;
    *simpleValue = _document.channelCount();
    return noErr;
  }
  if (key != CV_PROPERTY_CHANNEL_NAME)
    return CV_RESULT_NO_SERVICE;
  if (handle == nullptr || index < 0 || index >= _document.channelCount())
    return paramErr;
  const std::string& name = _document.channelName(index);
  Handle block = NewHandle(static_cast<Size>(name.size()));
  if (block == nullptr)
    return CV_RESULT_NO_MEMORY;
  std::memcpy(*block, name.data(), name.size());
  *handle = block;
  return noErr;
}
