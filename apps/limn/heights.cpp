#include "heights.h"

#include "height_image.h"
#include "image_library.h"
#include "image_output.h"
#include "image_source.h"
#include "lighting.h"
#include "lit_image.h"
#include "normal_map.h"
#include "output_target.h"
#include "report.h"

#include "LM_style_fields.h"

#include <algorithm>

namespace limn {
namespace {

using vips::VImage;

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
      (VImage::black(heights.width(), heights.height()) + 128).cast(VIPS_FORMAT_UCHAR);
  LitSettings settings;
  settings.style = PreviewStyle();
  settings.channels = {heights};
  settings.style.bumpChannel = 4;
  return LitImage(VImage::bandjoin({grey, grey, grey})
                      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB)),
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

} // namespace

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

} // namespace limn
