// One run of a filter: the record, the order of the calls, and what the plug-in can ask meanwhile.
#pragma once

#include "CVDocument.h"
#include "CVFilterRecord.h"
#include "CVFilterSession.h"
#include "CVResult.h"
#include "CVResultImage.h"
#include "CVTileDelivery.h"

#include <cstdint>
#include <new>
#include <string>

// What `work` returns. What throws there is the memory of a message, or a function that the caller
// of the run gave.
template <typename Work> CVResult CVGuardedRun(Work work) noexcept {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return CVOutOfMemory("the filter's run");
  } catch (...) {
    return CVGuarded("a message", [] {
      return CVResult{CVOutcome::Failed, 0, "a function that serves the filter failed"};
    });
  }
}

// While it exists it is its thread's current run, which the functions in the record, having no
// argument for it, work on. There is at most one on a thread.
class CVFilterRun {
public:
  CVFilterRun(CVFilterSession& session, CVDocument& document, CVRect area,
              const CVRunOptions& options);
  ~CVFilterRun();
  CVFilterRun(const CVFilterRun&) = delete;
  CVFilterRun& operator=(const CVFilterRun&) = delete;

  static CVFilterRun* current();

  // Everything from the first call to the changed document.
  CVResult execute() noexcept;

  // The services. They may throw; what calls them from the plug-in's side must not.
  bool testCancel();
  void reportProgress(int32_t done);
  int16_t nextTile();
  int16_t queryProperty(uint32_t signature, uint32_t key, int32_t index, int32_t* simpleValue,
                        CVHandle* handle) const;
  // Ends the run as soon as the plug-in returns, unless it is Done. Only the first such result
  // counts.
  void fail(CVResult result) noexcept;

private:
  CVResult _walk();
  CVResult _step(int selector);
  CVResult _judge(int selector, int16_t code);
  int16_t _call(int selector) noexcept;
  void _fillHostFields();
  CVResult _named(const CVResult& result) const;
  CVResult _describe(int selector, int16_t code) const;
  CVResult _needRows(int bottom);
  CVResult _finishRows(int bottom);
  CVResult _passRows();
  CVResult _deliver();
  void _showProgress();

  CVFilterSession& _session;
  const CVDocument& _document;
  CVRect _area;
  const CVRunOptions& _options;
  FilterRecord _record{};
  CVResultImage _result;
  CVTileDelivery _tiles;
  CVResult _failure; // Done until something other than the plug-in's answer ends the run
  int _selector = LM_SEL_PREPARE;
  int _neededBottom = 0;   // rows above it have been asked for
  int _finishedBottom = 0; // rows above it have been given away
  bool _cancelled = false;
  double _progressShown = -1.0;
};
