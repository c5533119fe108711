// Running a filter plug-in: what is kept between its runs, and the runs themselves.
#pragma once

#include "CVDocument.h"
#include "CVFilterRecord.h"
#include "CVPlugin.h"
#include "CVResult.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// The showPixels of a host without a screen: draws nothing, answers 0 when the map, its rectangle
// and its buffer make sense and −50 when they do not.
int16_t CVCheckPixelMap(const CVPixelMap* map, const CVRect32* source, int32_t row, int32_t column,
                        void* platformContext);

enum class CVDialog { No, Yes };

// For a caller that reads and writes the image while the filter runs. Either function may be empty.
struct CVPassing {
  // Called before rows of the base channels above `bottom` are first read. False: they cannot be
  // had, and the run ends.
  std::function<bool(int bottom)> needRows;
  // Called when the rows of the filter area above `bottom` are finished; with the area's bottom
  // last. rows: the area's base channels, a row after the other; it may be kept. With this function
  // the document is left as it is, and a plug-in that wants to write to finished rows once more is
  // refused.
  std::function<void(int bottom, const std::shared_ptr<const CVBuffer>& rows)> finishRows;
};

// dialog: Yes lets the plug-in ask the user first; No repeats the filter with the kept parameters.
// Both functions may be empty; they are called on the run's thread, also in the middle of the
// plug-in's work. One that throws ends the run.
struct CVRunOptions {
  CVDialog dialog = CVDialog::No;
  // Share of the filter area that is done, 0 to 1, never falling except back to 0 when the filter
  // starts over after its dialog. Measured by the host: what plug-ins report need not make sense.
  std::function<void(double)> progress;
  // True when the user wants to stop. Once true it is not asked again in that run.
  std::function<bool()> cancelled;
  CVPassing passing;
  CVShowPixelsProc showPixels = CVCheckPixelMap; // draws the dialog's preview
};

// The host session of one plug-in. Holds the data slot and the parameter block for as long as it
// lives, so that a run finds what the last one left. Runs one at a time: a second one on the same
// session, or from within a callback of a run on the same thread, is refused.
class CVFilterSession {
public:
  explicit CVFilterSession(CVPlugin plugin);
  ~CVFilterSession(); // disposes of the parameter block
  CVFilterSession(const CVFilterSession&) = delete;
  CVFilterSession& operator=(const CVFilterSession&) = delete;

  // Filters `area` of the document, which lies inside it and is not empty, through the document's
  // selection mask. Sends parameters (with a dialog), prepare, start, continue …, finish; finish is
  // sent however the others end. Every request of the plug-in is checked. The document changes only
  // when the result is Done, and only inside the area; views of it taken before are then void.
  // options.passing may leave it unchanged. Does not throw.
  CVResult run(CVDocument& document, CVRect area, const CVRunOptions& options);

  // Shows the plug-in's about box. hostWindow: as CVAboutRecord says; may be null.
  CVResult about(void* hostWindow);

  // Makes `bytes` the parameter block that the next run finds, in place of the one kept.
  CVResult setParameters(const void* bytes, size_t size);
  bool hasParameters() const { return _parameters != nullptr; }
  // A copy of the block as the last run left it; empty without one.
  std::vector<uint8_t> parameters() const;

  const CVPlugin& plugin() const { return _plugin; }

private:
  friend class CVFilterRun;

  CVPlugin _plugin;
  intptr_t _dataSlot = 0;
  CVHandle _parameters = nullptr;
  std::atomic<bool> _running{false};
};
