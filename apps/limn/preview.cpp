#include "preview.h"

#include "image_library.h"
#include "lighting.h"
#include "output_target.h"
#include "preview_frame.h"
#include "report.h"
#include "style_source.h"

namespace limn {
namespace {

void WriteFrame(FramePicture frame, const OutputName& output, Existing existing) {
  Photograph picture;
  picture.width = frame.width;
  picture.height = frame.height;
  picture.numPlanes = 3;
  picture.pixels = std::move(frame.pixels);
  picture.metadata = vips::VImage::black(1, 1);
  WritePhotograph(picture, PlanesOf(picture), output, ResolveTarget(output.path), existing);
}

} // namespace

ExitCode WritePreview(const PreviewOptions& options) {
  const Existing existing = options.force ? Existing::Replace : Existing::Keep;
  const OutputName output = ParseOutputName(options.output);
  NamedStyle named = FindStyle(options.style);
  for (const std::string& setting : options.settings)
    SetField(named.style, setting);
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
  FramePicture frame =
      DrawFrame(document, AreaOf(surroundings, photograph.width, photograph.height, options.image),
                named.style, options.isUnlit ? Light::Off : Light::On, options.image);
  WriteFrame(std::move(frame), output, existing);
  return ExitCode::Done;
}

} // namespace limn
