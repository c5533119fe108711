#include "preview.h"

#include "image_library.h"
#include "lighting.h"
#include "output_target.h"
#include "preview_frame.h"
#include "report.h"
#include "style_source.h"

#include <algorithm>
#include <thread>

namespace limn {
namespace {

void PrintNotices(const std::string& file, const std::vector<std::string>& notices) {
  for (const std::string& notice : notices)
    PrintProblem(std::string(file).append(": ").append(notice));
}

Surroundings ReadSurroundings(const PreviewOptions& options) {
  Surroundings surroundings;
  surroundings.area = ParseArea(options.area);
  for (const std::string& channel : options.channels) {
    std::vector<std::string> notices;
    surroundings.channels.push_back(ReadGreyImage(channel, notices));
    PrintNotices(channel, notices);
  }
  return surroundings;
}

void WriteFrame(FramePicture frame, const OutputName& output, Existing existing) {
  Photograph picture;
  picture.width = frame.width;
  picture.height = frame.height;
  picture.numPlanes = 3;
  picture.pixels = std::move(frame.pixels);
  picture.metadata = vips::VImage::black(1, 1);
  WritePhotograph(picture, output, ResolveTarget(output.path), existing);
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
  StartImageLibrary(static_cast<int>(std::max(1U, std::thread::hardware_concurrency())),
                    {options.maxPixels, MAX_PIXELS_ADVICE});
  CheckOutputFormat(output);
  Surroundings surroundings = ReadSurroundings(options);
  Photograph photograph = ReadPhotograph(options.image);
  CVDocument document = MakeDocument(surroundings, photograph, options.image);
  if (!options.isUnlit)
    NoteMissingRelief(named.style, document.channelCount(), photograph.notices);
  PrintNotices(options.image, photograph.notices);
  FramePicture frame =
      DrawFrame(document, AreaOf(surroundings, photograph.width, photograph.height, options.image),
                named.style, options.isUnlit ? Light::Off : Light::On, options.image);
  WriteFrame(std::move(frame), output, existing);
  return ExitCode::Done;
}

} // namespace limn
