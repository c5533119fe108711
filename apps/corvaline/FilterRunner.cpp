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

// A style as the dialog has it: of whole lengths.
LM_style InDialog(LM_style style) {
  for (int i = 0; i < style.lightsRead; ++i) {
    LM_style_light& light = style.lights[i];
    for (LM_vector2f* lengths : {&light.center, &light.handle1, &light.handle2})
      *lengths = LM_WholeLengths(*lengths).Floats();
    light.radius = LM_WholeLength(light.radius);
  }
  return style;
}

bool Gives(const LM_style& style, const EditorDocument& document, const foo& parameters) {
  const QSize area = document.filterArea().size();
  const auto channels = static_cast<int>(document.channelNames().size());
  foo made;
  return LM_ParametersFromStyle(style, area.width(), area.height(), channels, &made) &&
         LM_SameShading(made, parameters);
}

// The style that gives the parameters. Lights that are off are in no parameters: they stay where
// the others are as they were.
std::optional<LM_style> StyleOf(const foo& parameters, const EditorDocument& document) {
  const QSize area = document.filterArea().size();
  LM_style found;
  if (!LM_StyleOfParameters(parameters, area.width(), area.height(), found))
    return std::nullopt;
  if (document.lights() == nullptr)
    return found;
  LM_style before = InDialog(*document.lights());
  before.bumpChannel = found.bumpChannel;
  before.whiteIsHigh = found.whiteIsHigh;
  before.bumpAmplitude = found.bumpAmplitude;
  before.ambientColor = found.ambientColor;
  before.material = found.material;
  before.gloss = found.gloss;
  before.exposure = found.exposure;
  before.ambientBrightness = found.ambientBrightness;
  return Gives(before, document, parameters) ? before : found;
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
  if (document.lights() != nullptr && Gives(InDialog(*document.lights()), document, *parameters))
    return {};
  Recipe recipe = document.recipe();
  recipe.lights = StyleOf(*parameters, document);
  recipe.block = recipe.lights ? nullptr : parameters;
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
  options.showPixels = ShowPixels;
  options.progress = [&](double share) { progress.show(share); };
  currentProgress = &progress;
  _running = true;
  CVResult result =
      isOwn() ? _ask(document, options, progress, title) : _run(document, options, progress, title);
  _running = false;
  currentProgress = nullptr;
  return result;
}

} // namespace editor
