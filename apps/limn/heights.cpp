// limn heights: the heights of a photograph's relief as a picture.
#include "command_line.h"

#include "height_image.h"
#include "image_library.h"
#include "image_output.h"
#include "image_source.h"
#include "lighting.h"
#include "lit_image.h"
#include "normal_map.h"
#include "option_value.h"
#include "output_target.h"
#include "relief_options.h"
#include "report.h"

#include "LM_style_fields.h"

#include <algorithm>

namespace limn {
namespace {

using vips::VImage;

struct HeightsOptions {
  std::string image;
  std::string output;
  std::string preview; // lit, to be looked at; or empty
  ReliefOptions relief;
  std::vector<std::string> channels;
  uint64_t maxPixels = 0;        // as for limn apply
  bool isWritingNormals = false; // of the heights, green up
  bool force = false;
};

// A low sun on the upper left, where eyes expect the light to be.
LM_style PreviewStyle() {
  LM_style style = LM_NewStyle();
  style.gloss = 0;
  style.bumpAmplitude = 96;
  style.numLights = style.lightsRead = 1;
  LM_style_light& sun = style.lights[0];
  sun = LM_NewStyleLight();
  sun.type = LM_STYLE_DIRECTIONAL;
  sun.handle1 = {-55, -55};
  return style;
}

VImage LitPreview(const VImage& heights) {
  const VImage grey =
      (VImage::black(heights.width(), heights.height(), VImage::option()->set("bands", 3)) + 128)
          .cast(VIPS_FORMAT_UCHAR);
  LitSettings settings;
  settings.style = PreviewStyle();
  settings.channels = {heights};
  settings.style.bumpChannel = 4;
  return LitImage(grey.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB)),
                  settings);
}

void Write(const VImage& planes, const OutputName& output, Existing existing,
           const Complaints& complaints) {
  std::vector<std::string> notices;
  WriteImage({planes, VImage::black(1, 1), "", nullptr}, output, ResolveTarget(output.path),
             existing, complaints, notices);
  for (const std::string& notice : notices)
    PrintProblem(output.path + ": " + notice);
}

// Fails for what is wrong with an output before there is any work.
void CheckOutput(const std::string& input, const OutputName& output, Existing existing) {
  CheckTarget(input, output, existing);
  CheckOutputFormat(output);
  if (BitsOf(output).least > 16)
    throw Failure(ExitCode::WrongUsage, output.path + ": heights are written with 16 bits at most");
}

// Of a style that has relief.
LM_height_source SourceOf(const HeightsOptions& options) {
  NamedStyle named{};
  named.style.bumpChannel = 1;
  named.relief.kind = LM_height_kind::Auto;
  LM_height_source source = ReliefOf(options.relief, named, options.channels);
  if (source.kind == LM_height_kind::None)
    throw Failure(ExitCode::WrongUsage, "--relief none: leaves no heights to write");
  return source;
}

// Writes the heights that limn apply would light with. Throws Failure.
ExitCode WriteHeights(const HeightsOptions& options) {
  const Existing existing = options.force ? Existing::Replace : Existing::Keep;
  const LM_height_source source = SourceOf(options);
  const OutputName output = ParseOutputName(options.output);
  const OutputName preview = ParseOutputName(options.preview);
  StartImageLibrary(ALL_THREADS, {options.maxPixels, MAX_PIXELS_ADVICE});
  CheckOutput(options.image, output, existing);
  if (!options.preview.empty())
    CheckOutput(options.image, preview, existing);
  if (BitsOf(output).most == 8)
    PrintProblem(output.path + ": has 8 bits; in PNG or TIFF the heights have 16");
  std::vector<std::string> notices;
  Surroundings surroundings = ReadSurroundings({}, "", options.channels);
  if (source.kind == LM_height_kind::File)
    surroundings.relief = ReadHeights(options.relief, source, notices);
  for (const std::string& notice : notices)
    PrintProblem(notice);
  const std::string shown = ShownName(options.image);
  const Complaints complaints;
  try {
    const VImage planes = OpenPhotograph(options.image).planes;
    CheckSurroundings(surroundings, planes.width(), planes.height(), shown);
    const VImage heights =
        HeightImage(source, {options.image, planes.width(), planes.height(), surroundings.channels,
                             surroundings.relief ? &*surroundings.relief : nullptr});
    complaints.Check(ExitCode::BadInput, shown);
    Write(options.isWritingNormals ? NormalMapOf(heights, LM_normals_y::Up) : heights, output,
          existing, complaints);
    if (!options.preview.empty())
      Write(LitPreview(heights), preview, existing, complaints);
  } catch (...) {
    throw CaughtLibraryFailure(ExitCode::BadInput, shown);
  }
  return ExitCode::Done;
}

} // namespace

void AddHeights(CLI::App& app, Command& command) {
  auto [heights, options] = AddCommand(
      app, command, "heights", "Write the heights that a photograph is lit with", WriteHeights);
  heights.footer("White is high. The picture has 16 bits where its format has, and can be given\n"
                 "to limn apply --relief or --channel, or painted on first.\n\n"
                 "  limn heights photo.jpg -o heights.png --preview look.jpg\n\n" +
                 std::string(EXIT_CODES));
  heights.add_option("IMAGE", options.image, "The photograph")->required();
  AddValue(heights, "-o,--output", options.output, "FILE", "The file to write, as for limn apply")
      ->required();
  AddValue(heights, "--preview", options.preview, "FILE",
           "Write them lit from the upper left too, to be looked at");
  heights.add_flag("--as-normals", options.isWritingNormals,
                   "Write a normal map instead, green up: heights that\ndiffer by 4096 of 65535 "
                   "from pixel to pixel rise by 45\ndegrees");
  AddReliefOptions(heights, options.relief, "auto");
  AddValue(heights, "--channel", options.channels, "IMAGE", "As for limn apply; may be repeated");
  AddMaxPixels(heights, options.maxPixels);
  heights.add_flag("-f,--force", options.force, "Replace existing files");
}

} // namespace limn
