// limn preview: the picture that the dialog shows.
#include "command_line.h"

#include "image_library.h"
#include "lighting.h"
#include "option_value.h"
#include "output_target.h"
#include "preview_frame.h"
#include "report.h"
#include "style_source.h"

namespace limn {
namespace {

struct PreviewOptions {
  std::string image;
  std::string output;
  std::string style;
  std::vector<std::string> settings;
  std::string area; // "X,Y,W,H", or empty
  std::vector<std::string> channels;
  uint64_t maxPixels = 0; // as for limn apply
  bool isUnlit = false;
  bool force = false;
};

// Writes the dialog's frame with the preview of the image in it. Throws Failure.
ExitCode WritePreview(const PreviewOptions& options) {
  const Existing existing = options.force ? Existing::Replace : Existing::Keep;
  const OutputName output = ParseOutputName(options.output);
  const NamedStyle named = FindStyle(options.style, options.settings);
  if (!named.warning.empty())
    PrintProblem(options.style + ": " + named.warning);
  CheckTarget(options.image, output, existing);
  StartImageLibrary(ALL_THREADS, {options.maxPixels, MAX_PIXELS_ADVICE});
  CheckOutputFormat(output);
  Surroundings surroundings = ReadSurroundings(ParseArea(options.area), "", options.channels);
  Photograph photograph = ReadPhotograph(options.image);
  CVDocument document = MakeDocument(surroundings, photograph, options.image);
  if (!options.isUnlit)
    NoteMissingRelief(named.style, document.channelCount(), photograph.notices);
  for (const std::string& notice : photograph.notices)
    PrintProblem(std::string(options.image).append(": ").append(notice));
  Photograph frame =
      DrawFrame(document, AreaOf(surroundings, photograph.width, photograph.height, options.image),
                named.style, options.isUnlit ? Light::Off : Light::On, options.image);
  WritePhotograph(frame, PlanesOf(frame), output, ResolveTarget(output.path), existing);
  return ExitCode::Done;
}

} // namespace

void AddPreview(CLI::App& app, Command& command) {
  auto [preview, options] = AddCommand(
      app, command, "preview", "Write the picture that the dialog shows of a style", WritePreview);
  preview.footer("The picture is the dialog's frame, 280 × 280 pixels, the photograph in it.");
  preview.add_option("IMAGE", options.image, "The photograph")->required();
  AddValue(preview, "-o,--output", options.output, "FILE", "The file to write, as for limn apply")
      ->required();
  AddValue(preview, "-s,--style", options.style, "NAME|FILE",
           "A style file, its JSON form, the JSON itself, or the\nname of a style "
           "(default: Default)");
  AddValue(preview, "--set", options.settings, "KEY=VALUE", "As for limn apply");
  AddValue(preview, "--area", options.area, "X,Y,W,H", "Show only this rectangle, in pixels");
  AddValue(preview, "--channel", options.channels, "IMAGE", "As for limn apply; may be repeated");
  AddMaxPixels(preview, options.maxPixels);
  preview.add_flag("--unlit", options.isUnlit, "As with the dialog's preview switched off");
  preview.add_flag("-f,--force", options.force, "Replace an existing file");
}

} // namespace limn
