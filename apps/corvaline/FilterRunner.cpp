#include "FilterRunner.h"

#include "FilterProgress.h"

#include "deep_lighting.h"

#include "LM_style_json.h"
#include "LM_style_lighting.h"
#include "LM_style_of_parameters.h"
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

// Names the lights to the plug-in's dialog while it lives; none for its own.
class NamedLights {
public:
  explicit NamedLights(const std::optional<LM_style>& lights) {
    if (lights)
      qputenv(NAME, LM_StyleToJson(*lights).c_str());
  }
  ~NamedLights() { qunsetenv(NAME); }
  NamedLights(const NamedLights&) = delete;
  NamedLights& operator=(const NamedLights&) = delete;

private:
  static constexpr const char* NAME = "LIMN_STYLE";
};

// Whether the dialog was left as it was opened. Lights that are off are in no parameters, and stay.
bool IsUnchanged(const EditorDocument& document, const foo& parameters, QSize area) {
  if (document.lights() == nullptr)
    return false;
  LM_style whole = *document.lights(); // as the dialog has it
  for (int i = 0; i < whole.lightsRead; ++i) {
    LM_style_light& light = whole.lights[i];
    for (LM_vector2f* lengths : {&light.center, &light.handle1, &light.handle2})
      *lengths = LM_WholeLengths(*lengths).Floats();
    light.radius = LM_WholeLength(light.radius);
  }
  foo before;
  const auto channels = static_cast<int>(document.channelNames().size());
  return LM_ParametersFromStyle(whole, area.width(), area.height(), channels, &before) &&
         LM_SameShading(before, parameters);
}

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

bool FilterRunner::isOwn() const {
  return _session.plugin().name() == FILTER_FILE;
}

bool FilterRunner::canRepeat(const EditorDocument& document) const {
  return isLoaded() && (isOwn() ? document.lastLit().isLit() : _session.hasParameters());
}

CVResult FilterRunner::_ask(EditorDocument& document, CVRunOptions& options,
                            FilterProgress& progress, const QString& title) {
  // A session of its own begins with the lights that are named to it.
  CVFilterSession session(_session.plugin());
  const Recipe& begin = document.recipe().isLit() ? document.recipe() : document.lastLit();
  const NamedLights named(begin.lights);
  // The run is ended where the dialog is.
  options.cancelled = [&] { return progress.hasDialogEnded() || progress.isCancelled(); };
  CVResult asked = document.ask(
      [&](CVDocument& image, CVRect area) { return session.run(image, area, options); });
  if (!progress.hasDialogEnded())
    return asked;
  const auto parameters = limn::ParametersOfBlock(session.parameters());
  if (parameters == nullptr)
    return {CVOutcome::Failed, 0, "there are no settings to light with"};
  const QSize area = document.filterArea().size();
  if (IsUnchanged(document, *parameters, area))
    return {};
  Recipe recipe = document.recipe();
  LM_style lights;
  const bool isStyle = LM_StyleOfParameters(*parameters, area.width(), area.height(), lights);
  recipe.lights = isStyle ? std::optional(lights) : std::nullopt;
  recipe.block = isStyle ? nullptr : parameters;
  document.keep(recipe, title);
  return {};
}

CVResult FilterRunner::_run(EditorDocument& document, CVRunOptions& options,
                            FilterProgress& progress, const QString& title) {
  if (document.isDeep())
    return {CVOutcome::BadMode, 0,
            QObject::tr("This filter works with 8 bits a channel, and the image has more.")
                .toStdString()};
  options.cancelled = [&] { return progress.isCancelled(); };
  return document.change(
      title, [&](CVDocument& image, CVRect area) { return _session.run(image, area, options); },
      [&](double) { return !progress.isCancelled(); });
}

CVResult FilterRunner::run(EditorDocument& document, CVDialog dialog, const QString& title,
                           QWidget* owner) {
  FilterProgress progress(title, owner);
  CVRunOptions options;
  options.dialog = dialog;
  options.services.showPixels = ShowPixels;
  options.progress = [&](double share) { progress.show(share); };
  currentProgress = &progress;
  _running = true;
  const CVResult result =
      isOwn() ? _ask(document, options, progress, title) : _run(document, options, progress, title);
  _running = false;
  currentProgress = nullptr;
  return result;
}

} // namespace editor
