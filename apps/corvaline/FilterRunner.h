// The editor's filter: found in the plug-in folder, asked for a recipe, or run on the image.
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

// Limn's own plug-in is asked for lights, which become the document's recipe; any other changes
// pixels.
class FilterRunner {
public:
  explicit FilterRunner(CVPlugin plugin) : _session(std::move(plugin)) {}

  // Limn's own.
  bool isOwn() const;
  bool isLoaded() const { return _session.plugin().isLoaded(); }
  // There is something to repeat.
  bool canRepeat(const EditorDocument& document) const;

  // With Yes, opens the filter's dialog; with No, does again what a filter other than ours last
  // did. title: for the progress, and what undoing it is called. owner: the window to keep
  // alive; it is blocked meanwhile.
  CVResult run(EditorDocument& document, CVDialog dialog, const QString& title, QWidget* owner);
  CVResult about() { return _session.about(nullptr); }
  bool isRunning() const { return _running; }

private:
  CVResult _ask(EditorDocument& document, CVRunOptions& options, FilterProgress& progress,
                const QString& title);
  CVResult _run(EditorDocument& document, CVRunOptions& options, FilterProgress& progress,
                const QString& title);

  CVFilterSession _session; // of a filter that changes pixels
  bool _running = false;
};

} // namespace editor
