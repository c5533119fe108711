#include "FilterRunner.h"

#include "FilterProgress.h"

#include "deep_lighting.h"

#include "ToolboxDesktop.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace editor {
namespace {

// The functions of the contract have no argument for whom they work.
FilterProgress* currentProgress = nullptr;

int16_t ShowPixels(const CVPixelMap* map, const CVRect32* source, int32_t row, int32_t column,
                   void*) {
  if (currentProgress != nullptr)
    currentProgress->yieldToDialog();
  return ShowPixelMap(map, source, row, column);
}

constexpr const char* FILTER_FILE = "limn.so";

} // namespace

CVResult LoadFilter(CVPlugin& plugin) {
  QString folder = qEnvironmentVariable("CORVALINE_PLUGINS");
  if (folder.isEmpty()) {
    const QDir own(QCoreApplication::applicationDirPath());
    const QString installed = own.filePath(CORVALINE_PLUGIN_FOLDER);
    folder = QFile::exists(installed + "/" + FILTER_FILE) ? installed : own.filePath("../lib");
  }
  return plugin.load(QFile::encodeName(QDir(folder).absoluteFilePath(FILTER_FILE)).toStdString());
}

CVResult FilterRunner::_runDeep(EditorDocument& document, CVRunOptions& options,
                                FilterProgress& progress) {
  // Another filter could only work on the 8 bits.
  if (_session.plugin().name() != FILTER_FILE)
    return {CVOutcome::BadMode, 0,
            QObject::tr("This filter works with 8 bits a channel, and the image has more.")
                .toStdString()};
  if (options.dialog == CVDialog::Yes) {
    // The run is ended where the dialog is.
    options.cancelled = [&] { return progress.hasDialogEnded() || progress.isCancelled(); };
    CVResult asked = document.ask(
        [&](CVDocument& image, CVRect area) { return _session.run(image, area, options); });
    if (!asked.ok() && !progress.hasDialogEnded())
      return asked;
  }
  auto parameters = limn::ParametersOfBlock(_session.parameters());
  if (parameters == nullptr)
    return {CVOutcome::Failed, 0, "there are no settings to light with"};
  return document.light(std::move(parameters), [&](double share) {
    progress.show(share);
    return !progress.isCancelled();
  });
}

CVResult FilterRunner::run(EditorDocument& document, CVDialog dialog, const QString& title,
                           QWidget* owner) {
  FilterProgress progress(title, owner);
  CVRunOptions options;
  options.dialog = dialog;
  options.services.showPixels = ShowPixels;
  options.progress = [&](double share) { progress.show(share); };
  options.cancelled = [&] { return progress.isCancelled(); };
  currentProgress = &progress;
  _running = true;
  CVResult result = document.isDeep() ? _runDeep(document, options, progress)
                                      : document.change([&](CVDocument& image, CVRect area) {
                                          return _session.run(image, area, options);
                                        });
  _running = false;
  currentProgress = nullptr;
  return result;
}

} // namespace editor
