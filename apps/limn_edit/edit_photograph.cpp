#include "edit_photograph.h"

#include "run_window.h"

#include "apply_command.h"
#include "deep_lighting.h"
#include "image_library.h"
#include "image_source.h"
#include "lighting.h"
#include "lit_photograph.h"
#include "output_target.h"
#include "report.h"
#include "style_source.h"

#include "LM_style_json.h"
#include "LM_style_of_parameters.h"
#include "LimnResources.h"
#include "MacResources.h"
#include "MacStrings.h"
#include "ToolboxDesktop.h"

#include <QApplication>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <optional>
#include <unistd.h>

namespace limn {
namespace {

// All that is read before the dialog opens.
struct Sources {
  Photograph photograph;
  Surroundings surroundings;
};

void PrintNotices(const EditOptions& options, const std::string& file,
                  const std::vector<std::string>& notices) {
  for (const std::string& notice : options.quiet ? std::vector<std::string>() : notices)
    PrintProblem(std::string(file).append(": ").append(notice));
}

// most: what the output holds.
Sources ReadSources(const EditOptions& options, VipsBandFormat most) {
  Sources sources;
  sources.surroundings = ReadSurroundings(ParseArea(options.area), options.mask, options.channels);
  sources.photograph = ReadPhotograph(options.image, most);
  return sources;
}

// The list of strings that this window's texts are in, and their places there.
constexpr int16_t TEXTS = 156;
enum Text : int16_t { LIGHTING = 1, WRITING, CANCEL };

// In the user's language, with ^0 as it stands there.
QString TextOf(Text text) {
  Str255 string;
  GetIndString(string, TEXTS, text);
  return QString::fromStdString(TB_StdString(string));
}

QString Task(Text text, const std::string& file) {
  return TextOf(text).replace(QStringLiteral("^0"), QString::fromStdString(Printable(file)));
}

// The functions of the contract have no argument for whom they work.
RunWindow* runWindow = nullptr;

int16_t ShowPixels(const CVPixelMap* map, const CVRect32* source, int32_t row, int32_t column,
                   void*) {
  runWindow->DialogShown();
  return ShowPixelMap(map, source, row, column);
}

// The dialog alone: the run that OK begins is ended, and its pixels are left. Its parameters are
// the session's then.
CVResult RunDialog(CVFilterSession& session, CVDocument& document, CVRect area, RunWindow& window) {
  CVRunOptions options;
  options.dialog = CVDialog::Yes;
  options.showPixels = ShowPixels;
  options.progress = [&](double share) { window.Show(share); };
  options.cancelled = [&] { return window.HasRunBegun(); };
  options.passing.finishRows = [](int, const std::shared_ptr<const CVBuffer>&) {};
  runWindow = &window;
  CVResult result = session.run(document, area, options);
  runWindow = nullptr;
  if (window.HasRunBegun() && result.outcome == CVOutcome::Cancelled)
    return {};
  return result;
}

// Lights and writes at the same time, as `limn apply` does, with what the dialog has left. False
// when it was cancelled.
bool LightAndWrite(const EditOptions& options, const CVFilterSession& session, Sources& sources,
                   const OutputName& output, RunWindow& window) {
  const Existing existing = options.force ? Existing::Replace : Existing::Keep;
  Photograph& photograph = sources.photograph;
  Surroundings& surroundings = sources.surroundings;
  LitSettings settings = SettingsFor(
      surroundings, SubjectOf(options.image, photograph.width, photograph.height, surroundings),
      true);
  settings.parameters = ParametersOfBlock(session.parameters());
  if (settings.parameters == nullptr)
    throw Failure(ExitCode::Refused, options.image + ": the plug-in is not Limn's");
  const vips::VImage lit = LitPlanes(photograph, settings, options.image);
  const ProgressAsker asker(lit, [&](double share) {
    window.Show(share);
    if (share == 1.0) // some formats are packed only now
      window.ShowWriting(Task(WRITING, output.path));
    return !window.IsCancelled();
  });
  try {
    WritePhotograph(photograph, lit, output, ResolveTarget(output.path), existing);
  } catch (...) {
    if (window.IsCancelled())
      return false;
    throw;
  }
  PrintNotices(options, options.image, photograph.notices);
  return true;
}

// Has the plug-in's dialog begin with the style.
void BeginWithStyle(const EditOptions& options) {
  const NamedStyle named = FindStyle(options.style);
  if (!named.warning.empty())
    PrintNotices(options, options.style, {named.warning});
  setenv("LIMN_STYLE", LM_StyleToJson(named.style).c_str(), 1);
}

// That makes the same file again; none when no style lights exactly like this.
std::optional<std::string> CommandFor(const EditOptions& options, const OutputName& output,
                                      const std::vector<uint8_t>& block, CVRect area) {
  const auto parameters = ParametersOfBlock(block);
  LM_style style;
  if (parameters == nullptr ||
      !LM_StyleOfParameters(*parameters, area.right - area.left, area.bottom - area.top, style))
    return std::nullopt;
  return CommandLine({style, options.image, output.path + output.options, options.area,
                      options.mask, options.channels, options.maxPixels, options.force});
}

void PrintCommand(const EditOptions& options, const std::optional<std::string>& command) {
  if (!command)
    PrintProblem(options.image + ": no style lights it exactly like this, so there is no command");
  else if (HasControls(*command) && isatty(STDOUT_FILENO) != 0)
    PrintProblem(options.image + ": a terminal would act on its name, so there is no command");
  else
    PrintLine(*command);
}

// The output that is named, or one beside the photograph.
OutputName OutputOf(const EditOptions& options) {
  if (!options.output.empty())
    return ParseOutputName(options.output);
  const std::filesystem::path image(options.image);
  if (options.image == STANDARD_INPUT || !IsName(options.image, Use::Writing))
    throw Failure(ExitCode::WrongUsage, ShownName(options.image) +
                                            ": -o has to say what is written, and in which format");
  const std::string name = image.stem().string() + "-lit" + image.extension().string();
  return {image.parent_path() / name, ""};
}

// Windows belong to the desktop's entry limn.desktop, and their titles end with the picture's name.
void NameWindows(const std::string& image) {
  const std::string name = std::filesystem::path(image).filename();
  QApplication::setApplicationName(QStringLiteral("limn"));
  QApplication::setDesktopFileName(QStringLiteral("limn"));
  QApplication::setApplicationDisplayName(QString::fromStdString(Printable(name)));
}

} // namespace

ExitCode EditPhotograph(const EditOptions& options, int& argc, char** argv) {
  const Existing existing = options.force ? Existing::Replace : Existing::Keep;
  const OutputName output = OutputOf(options);
  CheckTarget(options.image, output, existing);
  if (!options.style.empty())
    BeginWithStyle(options);
  // What would stop the writing is reported before the lights are set, as far as it can be known.
  { const AtomicFile probe(ResolveTarget(output.path), existing); }
  StartImageLibrary(ALL_THREADS, {options.maxPixels, MAX_PIXELS_ADVICE});
  CheckOutputFormat(output);
  const CVPlugin plugin = LoadPlugin();
  // The picture is decoded while the desktop starts.
  std::future<Sources> reading = std::async(std::launch::async, ReadSources, std::cref(options),
                                            DepthOfBits(BitsOf(output).most));
  const bool hasDesktop = TB_StartDesktop(argc, argv);
  Sources sources = reading.get();
  if (!hasDesktop)
    throw Failure(ExitCode::Refused, "there is no display to show the dialog on");
  NameWindows(ShownName(options.image));
  CVDocument document = MakeDocument(sources.surroundings, sources.photograph, options.image);
  const CVRect area = AreaOf(sources.surroundings, sources.photograph.width,
                             sources.photograph.height, options.image);
  TB_UseResources(LM_RESOURCES, LM_RESOURCES_COUNT);
  RunWindow window(Task(LIGHTING, options.image), TextOf(CANCEL));
  CVFilterSession session(plugin);
  const CVResult result = RunDialog(session, document, area, window);
  if (result.outcome == CVOutcome::Cancelled)
    return ExitCode::Cancelled;
  CheckRun(result, options.image);
  const auto command = CommandFor(options, output, session.parameters(), area);
  try {
    if (!LightAndWrite(options, session, sources, output, window))
      return ExitCode::Cancelled;
  } catch (...) {
    if (command) // or the lights that were set by hand would be lost
      PrintProblem("the lights are those of: " + *command);
    throw;
  }
  if (options.printCommand)
    PrintCommand(options, command);
  return FlushedOutput(ExitCode::Done);
}

} // namespace limn
