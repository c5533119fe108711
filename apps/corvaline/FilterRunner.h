// The editor's filter: found in the plug-in folder, run on the image.
#pragma once

#include "EditorDocument.h"

#include "CVFilterSession.h"

#include <QString>
#include <QWidget>

namespace editor {

class FilterProgress;

// The filter from $CORVALINE_PLUGINS, the lib folder beside the program's own, or the one that was
// installed. Otherwise than with Done `plugin` is not loaded.
CVResult LoadFilter(CVPlugin& plugin);

class FilterRunner {
public:
  explicit FilterRunner(CVPlugin plugin) : _session(std::move(plugin)) {}

  bool isLoaded() const { return _session.plugin().isLoaded(); }
  // A run has left parameters to repeat.
  bool canRepeat() const { return isLoaded() && _session.hasParameters(); }

  // Runs the filter as one step that can be undone; a deep image is lit with the parameters that
  // the run would have taken. owner: the window to keep alive; it is blocked meanwhile. title: for
  // the progress.
  CVResult run(EditorDocument& document, CVDialog dialog, const QString& title, QWidget* owner);
  // Makes these the parameters to repeat.
  CVResult setParameters(const void* bytes, size_t size) {
    return _session.setParameters(bytes, size);
  }
  // The parameters of the last run.
  std::vector<uint8_t> parameters() const { return _session.parameters(); }
  CVResult about() { return _session.about(nullptr); }
  bool isRunning() const { return _running; }

private:
  CVResult _runDeep(EditorDocument& document, CVRunOptions& options, FilterProgress& progress);

  CVFilterSession _session;
  bool _running = false;
};

} // namespace editor
